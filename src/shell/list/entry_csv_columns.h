// The columns of an exported list of entries, and the entries as texts for them.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "shell/entry/entry_inputs.h"
#include "shell/run/desk.h"

namespace korvane {

inline constexpr std::string_view kIdColumn = "id";

/// Null stands for the id.
using CsvColumns = std::vector<const EntryInput*>;

/// Returns the columns in their order, the id first. What a safeguard adds to the editor is there while it is on.
CsvColumns AllCsvColumns(const Desk& desk, bool withPasswords);

std::string_view CsvNameOf(const EntryInput* column);
std::string CsvTextOf(const EntryInput& input, const EntryFields& fields);
/// As it is exported; passwords in other columns are hidden by a safeguard.
std::string ExportedText(const Desk& desk, const EntryInput& input, const EntryFields& fields, bool withPasswords);

/// The order of ids, which are numbers without leading zeros.
struct OrderOfIds {
    bool operator()(const std::string& a, const std::string& b) const {
        return a.size() == b.size() ? a < b : a.size() < b.size();
    }
};
using EntriesById = std::map<std::string, EntryFields, OrderOfIds>;

/// Throws Error.
EntriesById ReadAllEntries(const Desk& desk);

}  // namespace korvane
