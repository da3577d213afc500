// The words of the command line, read by the table of commands.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/error.h"
#include "shell/cli/command_table.h"

namespace korvane {

/// The words of the command line are not understood.
class WrongWords : public Error {
public:
    using Error::Error;
};

struct Words {
    const Command* command = nullptr;
    std::vector<std::string> arguments = {};
    std::map<std::string, std::string, std::less<>> options = {};
    std::vector<std::pair<std::string, std::string>> columns = {};  ///< as exported, and the value

    bool Has(std::string_view option) const { return options.contains(option); }
    std::string Option(std::string_view option, const std::string& otherwise = "") const;
};

/// Reads the words after the program's name. Throws WrongWords, which names the nearest word there is.
Words ReadWords(const std::vector<std::string>& words);

/// Returns whether these words are a command, or meant as one: the words that a start has always had are not.
bool IsCommand(const std::vector<std::string>& words);

/// Returns " Did you mean 'list'?"; empty if nothing is near.
std::string Nearest(std::string_view word, const std::vector<std::string>& words);

}  // namespace korvane
