// Settings files as somebody's editor leaves them. An input is a section, a key and a value, with a "|" after each, and then the file.
#include <map>

#include "base/text.h"
#include "fuzz/fuzz.h"
#include "store/ini_document.h"

namespace korvane {
namespace {

using IniValues = std::map<std::pair<std::string, std::string>, std::string>;

// The values of all keys that the file may hold.
IniValues AllValues(const IniDocument& document, std::string_view file) {
    IniValues values;
    for (int lines = 0; !file.empty() && lines < 50; ++lines) {
        const std::string_view line = TakeUpTo('\n', file);
        const std::string key = Trim(line.substr(0, line.find('=')));
        for (const std::string& section : document.SectionNames()) {
            const auto value = document.Find(section, key);
            if (value) values[{ToLower(section), ToLower(key)}] = *value;
        }
    }
    return values;
}

struct IniSetting {
    std::string section, key, value;
};

// Names and values of this program are single lines; names are without blanks around them.
IniSetting TakeSetting(std::string_view& input) {
    const auto clean = [&input](std::string_view without) {
        std::string text(TakeUpTo('|', input));
        std::erase_if(text, [&](char c) { return IsControl(c) || Holds(without, std::string_view(&c, 1)); });
        return Trim(text);
    };
    return {clean("]"), clean("=;["), clean("")};
}

}  // namespace

void FuzzIni(std::string_view file) {
    const IniSetting setting = TakeSetting(file);
    if (setting.key.empty()) return;
    IniDocument document(file);
    Require(document.Text() == file, "a file that is only read stays byte for byte");
    IniValues values = AllValues(document, file);

    const bool changed = document.Set(setting.section, setting.key, setting.value);
    const std::string after = document.Text();
    Require(changed != (after == file), "what says that nothing changed changes nothing");
    values[{ToLower(setting.section), ToLower(setting.key)}] = setting.value;
    IniDocument again(after);
    for (const IniDocument* read : {&document, &again}) {
        for (const auto& [name, value] : values)
            Require(read->Find(name.first, name.second) == value,
                    "the key is there, also when the file is read again, and all others");
    }
}

}  // namespace korvane
