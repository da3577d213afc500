// One entry of an older settings file: the texts of a numbered section "Settings<n>" and the rules of "Commands<n>".
// server_entry.cpp has the table of its keys with their defaults and their columns in `Servers`.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "store/ini_file.h"

namespace korvane {

struct ScanRule {
    std::string strFailText;  ///< empty: there is no such rule
    std::string strFailCommand;
};

/// An entry of the settings file has at most this many scan rules.
using ScanRules = std::array<ScanRule, 9>;

struct ServerEntry {
    /// The texts of the settings file by their columns in `Servers`; nothing is checked before the entry is stored.
    std::map<std::string_view, std::string> texts;
    ScanRules rules;

    const std::string& operator[](std::string_view column) const { return texts.at(column); }
};

struct ServerEntryKey {
    std::string_view key;          ///< in the section
    std::string_view column;       ///< of `Servers`
    std::string_view ordinary;     ///< default
    std::string_view placeholder;  ///< default in an entry without an address
    bool onlyIfFilled = false;     ///< an empty value leaves the column unchanged
};

/// The keys in the order in which they are read, written, and put into their columns.
std::span<const ServerEntryKey> ServerEntryKeys();

/// Reads entry `number` (from 1) of the file with its rules. An entry without an address becomes a sample entry. `newID` is called
/// only when the entry has no id.
ServerEntry ReadServerEntry(IniFile& file, int number, const std::function<std::string()>& newID);
void WriteServerEntry(IniFile& file, int number, const ServerEntry& entry);

/// Read and write the rules of entry `number`.
ScanRules ReadInCommands(IniFile& file, int number);
void WriteOutCommands(IniFile& file, int number, const ScanRules& rules);

}  // namespace korvane
