// Room `cli`: the command line. Words, tables and JSON over what the shell does; it has no rules of its own.
//
// The table of the commands. It drives how words are read, the help, the list in the manual page and the completion of the shell.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane {

class Session;

/// How a command ends. `status` has the four of monitoring plugins instead.
enum CommandEnd { kDone = 0, kNotDone = 1, kFails = 2, kWrongWords = 3 };

struct CommandOption {
    std::string_view name;   ///< without its dashes
    std::string_view value;  ///< what stands for the value in the help; empty: it has none
    std::string_view help;
};

struct Command {
    std::string_view word;
    std::string_view arguments;  ///< as the help shows them
    std::string_view help;       ///< one sentence
    std::string_view options;    ///< names in the table of options, between blanks
    int least, most;             ///< how many arguments; most < 0: any number
    bool columns;                ///< takes column=value and --column value, too
    int (*run)(Session& session);
};

std::span<const Command> AllCommands();
/// Return null and nothing for another name. The column is returned as exported.
const Command* FindCommand(std::string_view word);
const CommandOption* FindOption(std::string_view name);
std::optional<std::string> ColumnOf(std::string_view name);

/// Return names as they are typed, without dashes.
std::vector<std::string> OptionNamesOf(const Command& command);
std::vector<std::string> CommandWords();
std::vector<std::string> ColumnWords();

/// The short names of an entry's columns: "interval" for nIntervalSeconds.
struct ColumnName {
    std::string_view name;
    std::string_view column;  ///< as exported
    std::string_view help;
};
std::span<const ColumnName> ColumnNames();

// What the commands do. Each returns the exit status, and throws Error for what could not be done.
int RunList(Session& session);
int RunShow(Session& session);
int RunAdd(Session& session);
int RunSet(Session& session);
int RunRemove(Session& session);
int RunPause(Session& session);
int RunResume(Session& session);
int RunCheck(Session& session);
int RunStatus(Session& session);
int RunFailures(Session& session);
int RunLog(Session& session);
int RunExport(Session& session);
int RunImport(Session& session);
int RunSettings(Session& session);
int RunTestMail(Session& session);
int RunWhy(Session& session);
int RunDatabase(Session& session);
int RunHelp(Session& session);

}  // namespace korvane
