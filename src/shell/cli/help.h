// The texts of `help`, which follow from the table of commands.
#pragma once

#include <string>

#include "shell/cli/command_table.h"

namespace korvane {

/// For people, for the manual page and for the completion of the shell.
std::string HelpText();
std::string HelpOf(const Command& command);
std::string ManualPageText();
std::string CompletionWords(const std::string& word);

}  // namespace korvane
