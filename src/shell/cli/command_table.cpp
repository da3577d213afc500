#include "shell/cli/command_table.h"

#include <algorithm>

#include "base/text.h"

namespace korvane {
namespace {

constexpr CommandOption kOptions[] = {
    {"home", "<folder>", "the home to work on, instead of KORVANE_HOME"},
    {"json", "", "print one JSON object, for programs"},
    {"quiet", "", "print nothing but errors, or only what a script needs"},
    {"state", "<state>", "only entries that are down, failing, up, down-time or inactive"},
    {"show-passwords", "", "print passwords, too"},
    {"count", "", "let the running monitor check it next, with all consequences"},
    {"lines", "<number>", "how many of the newest to print"},
    {"follow", "", "go on with what is written later, until interrupted"},
    {"dry-run", "", "only say what would change"},
    {"skip-refused", "", "import the other rows when some are refused"},
    {"from", "<address>", "the sender"},
    {"help", "", "explain the command"},
};

constexpr Command kCommands[] = {
    {"list", "[<word>...]", "List the entries, problems first; only those that have all the words.", "state json quiet", 0, -1,
     false, RunList},
    {"show", "<entry>", "Show all that is known of an entry.", "json quiet show-passwords", 1, 1, false, RunShow},
    {"add", "<address> [<column>=<value>...]", "Add an entry; what is not given has the editor's default.", "json quiet", 1, 1,
     true, RunAdd},
    {"set", "<entry> <column>=<value>...", "Change columns of an entry.", "json quiet", 1, 1, true, RunSet},
    {"remove", "<entry>...", "Remove entries with their failures, response times and rules.", "json quiet", 1, -1, false,
     RunRemove},
    {"pause", "<entry>...", "Stop checking these entries.", "json quiet", 1, -1, false, RunPause},
    {"resume", "<entry>...", "Check them again, at once.", "json quiet", 1, -1, false, RunResume},
    {"check", "<entry or address> [<column>=<value>...]", "Check it now, and change nothing.", "count json quiet", 1, 1, true,
     RunCheck},
    {"status", "", "Say in one line how all is, and end with 0, 1, 2 or 3 as monitoring plugins do.", "json quiet", 0, 0, false,
     RunStatus},
    {"failures", "[<entry>]", "List the newest failures.", "lines json quiet", 0, 1, false, RunFailures},
    {"log", "", "Print the end of today's log.", "follow lines", 0, 0, false, RunLog},
    {"export", "[<file>]", "Write all entries as CSV or JSON.", "json show-passwords quiet", 0, 1, false, RunExport},
    {"import", "<file>", "Import entries from CSV or JSON (- reads standard input): all rows or none.",
     "dry-run skip-refused json quiet", 1, 1, false, RunImport},
    {"settings", "[list | get <key> | set <key> <value>]", "Print or change settings.", "json quiet show-passwords", 0, 3, false,
     RunSettings},
    {"test-mail", "<address>", "Send a test mail through both mail servers.", "from quiet", 1, 1, false, RunTestMail},
    {"why", "<entry>", "Explain its state: what led there, who was notified, and what comes next.", "json", 1, 1, false, RunWhy},
    {"database", "[copy <from> <to>]",
     "Say where the list is, or copy it; <from> and <to>: 'file', or the address of a database.", "dry-run json quiet", 0, 3,
     false, RunDatabase},
    {"help", "[<command>]", "Explain a command.", "", 0, 2, false, RunHelp},
};

constexpr ColumnName kColumnNames[] = {
    {"name", "strDesc", "short name"},
    {"group", "strGroup", "report in which it appears"},
    {"type", "strType", "server type, such as HTTP, HTTPS, PING or SMTP"},
    {"address", "strAddress_IP", "name or address, with a path for pages"},
    {"port", "strPort", "port"},
    {"interval", "nIntervalSeconds", "seconds between checks"},
    {"tries", "nTries", "failures in a row until it is down"},
    {"timeout", "nTimeout", "seconds that the server has"},
    {"expect", "strExpectedText", "text that the answer must hold, or the conversation"},
    {"request", "strRequestText", "request"},
    {"to", "strEmailList1", "recipients, with ; between"},
    {"to2", "strEmailList2", "more recipients"},
    {"from", "strEmailFrom", "sender of the mails"},
    {"subject", "strEmailText", "subject of the mails"},
    {"body", "strEmailBody", "first line of the mails"},
    {"only-body", "bNotSendBody", "True: mails consist of that line"},
    {"recovery-mail", "bSendUpNotify", "True: also mail when it is up again"},
    {"command", "strCMD", "program to run when it goes down"},
    {"up-command", "strCMDUP", "program to run when it is up again"},
    {"user", "strUserName", "user name for the page"},
    {"password", "strPassword", "password for the page"},
    {"monitored", "bIsMonitoring", "True or False"},
    {"down-time-1", "strDownTime1", "when the first daily pause begins"},
    {"down-minutes-1", "nDownDuration1", "how long it lasts"},
    {"down-time-2", "strDownTime2", "when the second begins"},
    {"down-minutes-2", "nDownDuration2", "how long it lasts"},
    {"good-statuses", "HTTPStatusGood", "statuses from 400 on that are good"},
};

/// Every command has them.
constexpr std::string_view kCommonOptions = "home help";

}  // namespace

std::span<const Command> AllCommands() {
    return kCommands;
}

std::span<const ColumnName> ColumnNames() {
    return kColumnNames;
}

std::vector<std::string> OptionNamesOf(const Command& command) {
    std::vector<std::string> names = Split(command.options, ' ');
    for (const std::string& each : Split(kCommonOptions, ' '))
        names.push_back(each);
    std::erase(names, "");
    return names;
}

const CommandOption* FindOption(std::string_view name) {
    const auto* const found = std::ranges::find(kOptions, name, &CommandOption::name);
    return found == std::end(kOptions) ? nullptr : found;
}

const Command* FindCommand(std::string_view word) {
    const auto* const found = std::ranges::find(kCommands, word, &Command::word);
    return found == std::end(kCommands) ? nullptr : found;
}

std::vector<std::string> CommandWords() {
    std::vector<std::string> words;
    for (const Command& command : kCommands)
        words.emplace_back(command.word);
    return words;
}

std::vector<std::string> ColumnWords() {
    std::vector<std::string> words;
    for (const ColumnName& each : kColumnNames)
        words.emplace_back(each.name);
    return words;
}

std::optional<std::string> ColumnOf(std::string_view name) {
    for (const ColumnName& each : kColumnNames)
        if (EqualsNoCase(each.name, name) || EqualsNoCase(each.column, name)) return std::string(each.column);
    return std::nullopt;
}

}  // namespace korvane
