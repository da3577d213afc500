#include "store/server_entry.h"

#include "base/error.h"
#include "base/text.h"
#include "base/value.h"

namespace korvane {
namespace {

// Names and addresses that are reserved for examples (RFC 2606).
constexpr std::string_view kSampleWebHost = "www.example.com";
constexpr std::string_view kSampleAddress = "you@example.com";
constexpr std::string_view kSampleEmailText = "Korvane: This Server could not be reached.";

constexpr std::string_view kEntrySection = "Settings";
constexpr std::string_view kRulesSection = "Commands";

using enum ColumnKind;
using Entry = ServerEntry;
constexpr ServerEntryKey kKeys[] = {
    {"URL", "strAddress_IP", &Entry::strAddress_IP, "", kSampleWebHost},
    {"ID", "ID", &Entry::ID, "", "", Id},
    {"PRETTY", "strDesc", &Entry::strDesc, "", ""},
    {"GROUP", "strGroup", &Entry::strGroup, "Group1", "Group1"},
    {"CMD", "strCMD", &Entry::strCMD, "", "notepad.exe"},
    {"CMDUP", "strCMDUP", &Entry::strCMDUP, "", ""},
    {"Email", "strEmailList1", &Entry::strEmailList1, "", kSampleAddress},
    {"Email2", "strEmailList2", &Entry::strEmailList2, "", ""},
    {"EmailFrom", "strEmailFrom", &Entry::strEmailFrom, "", ""},
    {"MustHaveText", "strExpectedText", &Entry::strExpectedText, "", ""},
    {"EmailText", "strEmailText", &Entry::strEmailText, "", kSampleEmailText},
    {"EmailTextBody", "strEmailBody", &Entry::strEmailBody, "", kSampleEmailText},
    {"Tries", "nTries", &Entry::nTries, "", "3", Int16},
    {"IsMonitoring", "bIsMonitoring", &Entry::bIsMonitoring, "1", "1", YesNo},
    {"bSendUpNotify", "bSendUpNotify", &Entry::bSendUpNotify, "1", "1", YesNo},
    {"bSendBody", "bNotSendBody", &Entry::bNotSendBody, "0", "0", YesNo},
    {"DownTime1", "strDownTime1", &Entry::strDownTime1, "", "", Text, true},
    {"DownTime2", "strDownTime2", &Entry::strDownTime2, "", "", Text, true},
    {"DownDuration1", "nDownDuration1", &Entry::nDownDuration1, "", "", Int16, true},
    {"DownDuration2", "nDownDuration2", &Entry::nDownDuration2, "", "", Int16, true},
    {"UserName", "strUserName", &Entry::strUserName, "", ""},
    {"Type", "strType", &Entry::strType, "HTTP", "HTTP"},
    {"ServPort", "strPort", &Entry::strPort, "80", "80"},
    {"Timeout", "nTimeout", &Entry::nTimeout, "60", "60", Int16},
    {"ServRequest", "strRequestText", &Entry::strRequestText, "", ""},
    {"PassWord", "strPassword", &Entry::strPassword, "", ""},
    {"nListAttempts", "nListFrequency", &Entry::nListFrequency, "1", "1", Int16},
};

std::string NumberedSection(std::string_view name, int number) {
    return std::string(name) + std::to_string(number);
}

// In an old file, the scheme of the address determines type and port and is then dropped. Only lower-case schemes are recognised.
void MendTypeAndPort(ServerEntry& entry) {
    if (ToLower(entry.strAddress_IP).starts_with("https")) entry.strType = "HTTPS";
    entry.strAddress_IP = ReplaceAll(ReplaceAll(entry.strAddress_IP, "http://", ""), "https://", "");
    if (entry.strPort == "80" && entry.strType == "HTTPS") entry.strPort = "443";
    if (entry.strPort == "443" && entry.strType == "HTTP") entry.strPort = "80";
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
    const std::string section = NumberedSection(kEntrySection, number);
    ServerEntry entry;
    entry.rules = ReadScanRules(file, number);
    const bool isPlaceholder = file.Read(section, "URL", "").empty();
    for (const ServerEntryKey& key : kKeys) {
        entry.*key.field = file.Read(section, key.key, isPlaceholder ? key.placeholder : key.ordinary);
    }
    if (entry.ID.empty()) entry.ID = newID();
    MendTypeAndPort(entry);
    return entry;
}

void WriteServerEntry(IniFile& file, int number, const ServerEntry& entry) {
    const std::string section = NumberedSection(kEntrySection, number);
    for (const ServerEntryKey& key : kKeys) {
        const std::string& text = entry.*key.field;
        file.Write(section, key.key, key.kind == YesNo ? YesNoWord(text) : text);
    }
}

std::array<ScanRule, kScanRules> ReadScanRules(IniFile& file, int number) {
    const std::string section = NumberedSection(kRulesSection, number);
    std::array<ScanRule, kScanRules> rules;
    for (int j = 1; ScanRule & rule : rules) {
        rule.strFailCommand = file.Read(section, "CMD" + std::to_string(j), "");
        rule.strFailText = file.Read(section, "SCAN" + std::to_string(j), "");
        ++j;
    }
    return rules;
}

void WriteScanRules(IniFile& file, int number, const std::array<ScanRule, kScanRules>& rules) {
    const std::string section = NumberedSection(kRulesSection, number);
    for (int j = 1; const ScanRule& rule : rules) {
        file.Write(section, "CMD" + std::to_string(j), rule.strFailCommand);
        file.Write(section, "SCAN" + std::to_string(j), rule.strFailText);
        ++j;
    }
}

}  // namespace korvane
