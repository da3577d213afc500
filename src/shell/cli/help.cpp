#include "shell/cli/help.h"

#include <algorithm>
#include <ostream>

#include "base/text.h"
#include "shell/cli/session.h"

namespace korvane {
namespace {

constexpr std::size_t kHelpColumn = 54;

std::string Line(std::string begin, std::string_view help) {
    begin.resize(std::max(begin.size() + 1, kHelpColumn), ' ');
    return begin + std::string(help) + "\n";
}

}  // namespace

std::string HelpText() {
    std::string text = "korvanecore <command>, for a home that is running or not:\n\n";
    for (const Command& command : AllCommands())
        text += Line("  " + std::string(command.word) + " " + std::string(command.arguments), command.help);
    return text + "\nAn entry is named by its id, name or address. 'korvanecore help <command>' explains one.\n";
}

std::string HelpOf(const Command& command) {
    std::string text = "korvanecore " + std::string(command.word) + " " + std::string(command.arguments) + "\n" +
                       std::string(command.help) + "\n\n";
    for (const std::string& name : OptionNamesOf(command)) {
        const CommandOption& option = *FindOption(name);
        text += Line("  --" + name + (option.value.empty() ? "" : " " + std::string(option.value)), option.help);
    }
    if (!command.columns) return text;
    text += "\nColumns, as column=value or --column value:\n\n";
    for (const ColumnName& each : ColumnNames())
        text += Line("  " + std::string(each.name) + " (" + std::string(each.column) + ")", each.help);
    return text;
}

std::string ManualPageText() {
    std::string text;
    for (const Command& command : AllCommands())
        text += ".TP\n.B " + ReplaceAll(command.word, "-", "\\-") + " " + ReplaceAll(command.arguments, "-", "\\-") + "\n" +
                std::string(command.help) + "\n";
    return text;
}

std::string CompletionWords(const std::string& word) {
    std::vector<std::string> all = CommandWords();
    if (const Command* const command = FindCommand(word); command != nullptr) {
        all.clear();
        for (const std::string& name : OptionNamesOf(*command))
            all.push_back("--" + name);
        if (command->columns)
            for (const std::string& name : ColumnWords())
                all.push_back(name + "=");
        if (command->word == "settings") all.insert(all.end(), {"list", "get", "set"});
        if (command->word == "database") all.insert(all.end(), {"copy", "file"});
    }
    std::string text;
    for (const std::string& each : all)
        text += each + "\n";
    return text;
}

// Beside the help there are texts for the manual page and the completion of the shell.
int RunHelp(Session& session) {
    const auto& arguments = session.Given().arguments;
    std::ostream& out = session.Place().out;
    const std::string word = arguments.empty() ? "" : arguments.front();
    if (word == "completion") {
        out << CompletionWords(arguments.size() > 1 ? arguments[1] : "");
    } else if (word == "manual-page") {
        out << ManualPageText();
    } else if (word.empty()) {
        out << HelpText();
    } else {
        out << HelpOf(*ReadWords({word, "--help"}).command);
    }
    return kDone;
}

}  // namespace korvane
