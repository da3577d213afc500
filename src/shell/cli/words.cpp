#include "shell/cli/words.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <numeric>

#include "base/text.h"

namespace korvane {
namespace {

/// The number of letters that must be changed, added or taken away (Levenshtein).
std::size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t before = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t changed = before + (a[i - 1] == b[j - 1] ? 0 : 1);
            before = std::exchange(row[j], std::min({row[j] + 1, row[j - 1] + 1, changed}));
        }
    }
    return row[b.size()];
}

/// Reads the words one after the other.
class WordReader {
public:
    explicit WordReader(const std::vector<std::string>& words) : words_(words) {}

    Words Read() {
        for (; at_ < words_.size(); ++at_)
            Take(words_[at_]);
        if (read_.command == nullptr) read_.command = FindCommand("help");
        const auto count = static_cast<int>(read_.arguments.size());
        if (read_.Has("help")) return read_;
        if (count < read_.command->least) Refuse("something is missing after '" + std::string(read_.command->word) + "'");
        if (read_.command->most >= 0 && count > read_.command->most) Refuse("'" + read_.arguments.back() + "' is too much");
        return read_;
    }

private:
    [[noreturn]] void Refuse(const std::string& why) const {
        const std::string usage = std::string(read_.command->word) + " " + std::string(read_.command->arguments);
        throw WrongWords(why + ".\nUsage: korvanecore " + usage);
    }

    void Take(const std::string& word) {
        const bool isOption = !onlyArguments_ && word.size() > 2 && word.starts_with("--");
        const bool isShort =
            !onlyArguments_ && word.size() > 1 && word[0] == '-' && std::isalpha(static_cast<unsigned char>(word[1])) != 0;
        if (word == "--" && !onlyArguments_) {
            onlyArguments_ = true;
        } else if (isOption) {
            TakeOption(word.substr(2));
        } else if (read_.command == nullptr) {
            read_.command = FindCommand(word);
            if (read_.command == nullptr)
                throw WrongWords("there is no command '" + word + "'." + Nearest(word, CommandWords()) +
                                 "\n'korvanecore help' lists them.");
        } else if (isShort) {
            RefuseOption(word);
        } else if (!read_.command->columns || read_.arguments.empty() || onlyArguments_) {
            read_.arguments.push_back(word);
        } else {
            TakeColumn(word);
        }
    }

    void TakeColumn(const std::string& word) {
        const auto end = word.find('=');
        if (end == std::string::npos) Refuse("'" + word + "' is no column=value");
        const std::string name = word.substr(0, end);
        const auto column = ColumnOf(name);
        if (!column) throw WrongWords("there is no column '" + name + "'." + Nearest(name, ColumnWords()));
        read_.columns.emplace_back(*column, word.substr(end + 1));
    }

    void TakeOption(const std::string& word) {
        const auto end = word.find('=');
        const std::string name = word.substr(0, end);
        const auto value = [&] {
            if (end != std::string::npos) return word.substr(end + 1);
            if (++at_ >= words_.size()) throw WrongWords("--" + name + " needs a value.");
            return words_[at_];
        };
        const CommandOption* const option = FindOption(name);
        const bool isCommon = name == "home" || name == "help";
        if (option != nullptr && (isCommon || (read_.command != nullptr && Has(OptionNamesOf(*read_.command), name)))) {
            if (option->value.empty() && end != std::string::npos) throw WrongWords("--" + name + " takes no value.");
            read_.options[name] = option->value.empty() ? "" : value();
            // A home that a script left empty must not become another one.
            if (!option->value.empty() && read_.options[name].empty()) throw WrongWords("--" + name + " needs a value.");
            return;
        }
        if (read_.command == nullptr) throw WrongWords("'--" + name + "' must stand after a command.");
        if (const auto column = ColumnOf(name); column && read_.command->columns) {
            read_.columns.emplace_back(*column, value());
            return;
        }
        RefuseOption("--" + name);
    }

    [[noreturn]] void RefuseOption(const std::string& option) const {
        std::vector<std::string> known = OptionNamesOf(*read_.command);
        if (read_.command->columns) std::ranges::copy(ColumnWords(), std::back_inserter(known));
        for (std::string& each : known)
            each = "--" + each;
        throw WrongWords("'" + std::string(read_.command->word) + "' has no option '" + option + "'." + Nearest(option, known) +
                         "\n'korvanecore help " + std::string(read_.command->word) + "' lists them.");
    }

    static bool Has(const std::vector<std::string>& names, const std::string& name) {
        return std::ranges::find(names, name) != names.end();
    }

    const std::vector<std::string>& words_;
    std::size_t at_ = 0;
    bool onlyArguments_ = false;
    Words read_;
};

}  // namespace

std::string Words::Option(std::string_view option, const std::string& otherwise) const {
    const auto found = options.find(option);
    return found == options.end() ? otherwise : found->second;
}

Words ReadWords(const std::vector<std::string>& words) {
    return WordReader(words).Read();
}

// A start looks for "restart" in its words, and options of the windows begin with a dash.
bool IsCommand(const std::vector<std::string>& words) {
    if (words.empty()) return false;
    const std::string& first = words.front();
    if (first.starts_with("-")) return first.starts_with("--") && FindOption(first.substr(2, first.find('=') - 2)) != nullptr;
    return !first.empty() && !Holds(first, "restart");
}

std::string Nearest(std::string_view word, const std::vector<std::string>& words) {
    const auto distance = [&](const std::string& each) { return Distance(ToLower(word), ToLower(each)); };
    const auto nearest = std::ranges::min_element(words, {}, distance);
    const bool isNear = nearest != words.end() && distance(*nearest) <= std::max<std::size_t>(1, word.size() / 2);
    return isNear ? " Did you mean '" + *nearest + "'?" : "";
}

}  // namespace korvane
