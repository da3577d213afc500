// The row of a server entry when its editor opens: added with defaults for a new entry, then read into the inputs.
#pragma once

#include <string>

#include "shell/entry/entry_fields.h"
#include "shell/run/desk.h"

namespace korvane {

struct OpenedEntry {
    std::string strID;   ///< of a new entry the id that it was given
    bool found = false;  ///< false: there is no such row, and the operator has been told
    EntryFields fields;
    std::string strLastResponse;
};

/// Adds the row first if `isAddUrl`; it is in the store then, whatever the operator does next. `strID` names the row
/// otherwise. Shows a message when there is no row. Throws nothing: what fails is passed over and logged.
OpenedEntry OpenEntry(const Desk& desk, bool isAddUrl, std::string strID);

/// The query by which the editor finds its row.
std::string EntryQuery(const std::string& strID);

}  // namespace korvane
