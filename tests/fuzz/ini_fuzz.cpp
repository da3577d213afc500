// Settings files as somebody's editor leaves them. An input is a section, a key and a value, a line each, and then the file.
#include <map>
#include <set>
#include <string>
#include <utility>

#include "base/text.h"
#include "fuzz/fuzz.h"
#include "store/ini_document.h"
#include "store/ini_file.h"
#include "support/memory_files.h"

namespace korvane {
namespace {

using Values = std::map<std::pair<std::string, std::string>, std::string>;

// The values of all keys that the file may hold.
Values AllValues(const IniDocument& document, std::string_view file) {
    constexpr std::size_t kMostKeys = 50;
    std::set<std::string, LessNoCase> keys;
    while (!file.empty() && keys.size() < kMostKeys) {
        const std::string_view line = TakeLine(file);
        keys.insert(Trim(line.substr(0, line.find('='))));
    }
    Values values;
    for (const std::string& section : document.SectionNames()) {
        for (const std::string& key : keys) {
            const auto value = document.Find(section, key);
            if (value) values[{ToLower(section), ToLower(key)}] = *value;
        }
    }
    return values;
}

struct Setting {
    std::string section;
    std::string key;
    std::string value;
};

// Names and values of this program are single lines; names are without blanks around them.
Setting TakeSetting(std::string_view& input) {
    const auto clean = [&input](std::string_view without) {
        std::string text(TakeLine(input));
        std::erase_if(text, [&](char c) { return c == '\r' || c == '\0' || without.find(c) != std::string_view::npos; });
        return Trim(text);
    };
    return {clean("]"), clean("=;["), clean("")};
}

void CheckDocument(std::string_view file, const Setting& setting) {
    IniDocument document(file);
    Require(document.Text() == file, "a file that is only read stays byte for byte");
    Values values = AllValues(document, file);

    const std::string before = document.Text();
    const IniDocument::Result result = document.Set(setting.section, setting.key, setting.value);
    const std::string after = document.Text();
    Require(document.Find(setting.section, setting.key) == setting.value, "a key that was set is there");
    if (result.change == IniDocument::Change::None) Require(before == after, "no change changes nothing");
    if (result.change == IniDocument::Change::SameLength) {
        std::string overwritten = before;
        overwritten.replace(result.offset, setting.value.size(), setting.value);
        Require(overwritten == after, "a value of the same length goes over the old one");
    }

    const IniDocument again(after);
    Require(again.Find(setting.section, setting.key) == setting.value, "it is there when the file is read again");
    values[{ToLower(setting.section), ToLower(setting.key)}] = setting.value;
    for (const auto& [name, value] : values) {
        const auto found = again.Find(name.first, name.second);
        Require(found && *found == value, "all other keys stay as they were");
    }
}

void CheckFile(std::string_view text, const Setting& setting) {
    MemoryFiles files;
    files.Replace("/kv.ini", text);
    IniFile file(files, "/kv.ini");
    if (!file.Problem().empty()) {
        file.Write(setting.section, setting.key, setting.value);
        Require(files.Text("/kv.ini") == text, "a file that makes no sense is not written to");
        return;
    }
    file.Write(setting.section, setting.key, setting.value);
    Require(file.LastWriteError().empty(), "the write succeeded");
    const std::string value = Trim(Left(ToUtf8(setting.value), kIniValueLimit));
    const std::string expected = value.empty() ? "default" : value;
    Require(file.Read(setting.section, setting.key, "default") == expected, "a key that was written is read");
    IniFile fresh(files, "/kv.ini");
    Require(fresh.Read(setting.section, setting.key, "default") == expected, "also by the next start");
}

}  // namespace

void Fuzz(std::string_view input) {
    const Setting setting = TakeSetting(input);
    if (setting.key.empty()) return;
    CheckDocument(input, setting);
    CheckFile(input, setting);
}

}  // namespace korvane
