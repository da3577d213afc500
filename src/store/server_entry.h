// One entry of an older settings file: the texts of a numbered section "Settings<n>" and the rules of "Commands<n>".
// server_entry.cpp has the table of its keys with their defaults and their columns in `Servers`.
#pragma once

#include <array>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "platform/connection.h"
#include "store/ini_file.h"

namespace korvane {

/// An entry of the settings file has at most this many scan rules.
constexpr int kScanRules = 9;

struct ScanRule {
    std::string strFailText;  ///< empty: there is no such rule
    std::string strFailCommand;
};

/// Every field is the text of the settings file; nothing is checked before the entry is stored.
struct ServerEntry {
    std::string strAddress_IP;
    std::string ID;
    std::string strDesc;
    std::string strGroup;
    std::string strCMD;
    std::string strCMDUP;
    std::string strEmailList1;
    std::string strEmailList2;
    std::string strEmailFrom;
    std::string strExpectedText;
    std::string strEmailText;
    std::string strEmailBody;
    std::string nTries;
    std::string bIsMonitoring;
    std::string bSendUpNotify;
    std::string bNotSendBody;
    std::string strDownTime1;
    std::string strDownTime2;
    std::string nDownDuration1;
    std::string nDownDuration2;
    std::string strUserName;
    std::string strType;
    std::string strPort;
    std::string nTimeout;
    std::string strRequestText;
    std::string strPassword;
    std::string nListFrequency;  ///< the file's `nListAttempts`
    std::array<ScanRule, kScanRules> rules;
};

struct ServerEntryKey {
    std::string_view key;     ///< in the section
    std::string_view column;  ///< of `Servers`
    std::string ServerEntry::*field;
    std::string_view ordinary;     ///< default
    std::string_view placeholder;  ///< default in an entry without an address
    ColumnKind kind = ColumnKind::Text;
    bool onlyIfFilled = false;  ///< an empty value leaves the column unchanged
};

/// The keys in the order in which they are read, written, and put into their columns.
std::span<const ServerEntryKey> ServerEntryKeys();

/// Reads entry `number` (from 1) of the file. An entry without an address becomes a sample entry. `newID` is called only when the
/// entry has no id.
ServerEntry ReadServerEntry(IniFile& file, int number, const std::function<std::string()>& newID);
void WriteServerEntry(IniFile& file, int number, const ServerEntry& entry);

/// Reads the rules of entry `number`, section "Commands<n>".
std::array<ScanRule, kScanRules> ReadScanRules(IniFile& file, int number);
void WriteScanRules(IniFile& file, int number, const std::array<ScanRule, kScanRules>& rules);

}  // namespace korvane
