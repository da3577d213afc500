// The row of a server entry when its editor opens: for a new entry it is added with defaults, then it is read into the inputs.
#pragma once

#include <string>

#include "shell/entry/entry_fields.h"
#include "shell/run/desk.h"

namespace korvane {

struct OpenedEntry {
    std::string strID;   ///< for a new entry, its new id
    bool found = false;  ///< false: there is no such row, and the operator has been notified
    EntryFields fields;
    std::string strLastResponse;
};

/// First adds the row if `isAddUrl`; it is then in the store, whatever the operator does next. Otherwise `strID` selects the row.
/// Shows a message when there is no row. Throws nothing: errors are ignored and logged.
OpenedEntry OpenEntry(const Desk& desk, bool isAddUrl, std::string strID);

/// Returns the query by which the editor finds its row.
std::string EntryQuery(const std::string& strID);

}  // namespace korvane
