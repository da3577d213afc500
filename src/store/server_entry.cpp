#include "store/server_entry.h"

#include "base/error.h"
#include "base/text.h"
#include "base/value.h"
#include "store/schema.h"

namespace korvane {
namespace {

// Names and addresses that are reserved for examples (RFC 2606).
constexpr std::string_view kSampleWebHost = "www.example.com";
constexpr std::string_view kSampleAddress = "you@example.com";
constexpr std::string_view kSampleEmailText = "Korvane: This Server could not be reached.";

constexpr ServerEntryKey kKeys[] = {
    {"URL", "strAddress_IP", "", kSampleWebHost},
    {"ID", "ID", "", ""},
    {"PRETTY", "strDesc", "", ""},
    {"GROUP", "strGroup", "Group1", "Group1"},
    {"CMD", "strCMD", "", "notepad.exe"},
    {"CMDUP", "strCMDUP", "", ""},
    {"Email", "strEmailList1", "", kSampleAddress},
    {"Email2", "strEmailList2", "", ""},
    {"EmailFrom", "strEmailFrom", "", ""},
    {"MustHaveText", "strExpectedText", "", ""},
    {"EmailText", "strEmailText", "", kSampleEmailText},
    {"EmailTextBody", "strEmailBody", "", kSampleEmailText},
    {"Tries", "nTries", "", "3"},
    {"IsMonitoring", "bIsMonitoring", "1", "1"},
    {"bSendUpNotify", "bSendUpNotify", "1", "1"},
    {"bSendBody", "bNotSendBody", "0", "0"},
    {"DownTime1", "strDownTime1", "", "", true},
    {"DownTime2", "strDownTime2", "", "", true},
    {"DownDuration1", "nDownDuration1", "", "", true},
    {"DownDuration2", "nDownDuration2", "", "", true},
    {"UserName", "strUserName", "", ""},
    {"Type", "strType", "HTTP", "HTTP"},
    {"ServPort", "strPort", "80", "80"},
    {"Timeout", "nTimeout", "60", "60"},
    {"ServRequest", "strRequestText", "", ""},
    {"PassWord", "strPassword", "", ""},
    {"nListAttempts", "nListFrequency", "1", "1"},
};

std::string EntrySection(int number) {
    return "Settings" + std::to_string(number);
}

std::string RulesSection(int number) {
    return "Commands" + std::to_string(number);
}

// In an old file, the scheme of the address determines type and port and is then dropped. Only lower-case schemes are recognised.
void RepairTypeAndPort(ServerEntry& entry) {
    std::string& address = entry.texts["strAddress_IP"];
    std::string& type = entry.texts["strType"];
    std::string& port = entry.texts["strPort"];
    if (ToLower(address).starts_with("https")) type = "HTTPS";
    address = ReplaceAll(ReplaceAll(address, "http://", ""), "https://", "");
    if (port == "80" && type == "HTTPS") port = "443";
    if (port == "443" && type == "HTTP") port = "80";
}

// Returns the word for yes or no; any other text stays, so that the operator can see it.
std::string YesNoWord(const std::string& text) {
    try {
        return Value(Value(text).Bool()).Text();
    } catch (const Error&) {
        return text;
    }
}

}  // namespace

std::span<const ServerEntryKey> ServerEntryKeys() {
    return kKeys;
}

ServerEntry ReadServerEntry(IniFile& file, int number, const std::function<std::string()>& newID) {
    const std::string section = EntrySection(number);
    ServerEntry entry{{}, ReadInCommands(file, number)};
    const bool isPlaceholder = file.Read(section, "URL", "").empty();
    for (const ServerEntryKey& key : kKeys)
        entry.texts[key.column] = file.Read(section, key.key, isPlaceholder ? key.placeholder : key.ordinary);
    if (entry["ID"].empty()) entry.texts["ID"] = newID();
    RepairTypeAndPort(entry);
    return entry;
}

void WriteServerEntry(IniFile& file, int number, const ServerEntry& entry) {
    for (const ServerEntryKey& key : kKeys) {
        const bool isYesNo = KindOfColumn("Servers", key.column) == ColumnKind::YesNo;
        file.Write(EntrySection(number), key.key, isYesNo ? YesNoWord(entry[key.column]) : entry[key.column]);
    }
}

ScanRules ReadInCommands(IniFile& file, int number) {
    ScanRules rules;
    for (int j = 1; ScanRule & rule : rules) {
        rule.strFailCommand = file.Read(RulesSection(number), "CMD" + std::to_string(j), "");
        rule.strFailText = file.Read(RulesSection(number), "SCAN" + std::to_string(j), "");
        ++j;
    }
    return rules;
}

void WriteOutCommands(IniFile& file, int number, const ScanRules& rules) {
    for (int j = 1; const ScanRule& rule : rules) {
        file.Write(RulesSection(number), "CMD" + std::to_string(j), rule.strFailCommand);
        file.Write(RulesSection(number), "SCAN" + std::to_string(j), rule.strFailText);
        ++j;
    }
}

}  // namespace korvane
