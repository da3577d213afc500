// The row of a server entry: for a new entry it is added with defaults, it is read into the editor's inputs, and they are saved to it
// with refusals and warnings. Reading and writing continue after errors.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "shell/entry/entry_inputs.h"
#include "shell/entry/fresh_entry.h"
#include "shell/run/desk.h"

namespace korvane {

struct OpenedEntry {
    std::string strID;   ///< for a new entry, its new id
    bool found = false;  ///< false: there is no such row, and the operator has been notified
    EntryFields fields;
    std::string strLastResponse;
};

/// Returns the values of a new entry: those of every new entry, and the global addresses.
ColumnValues NewEntryValues(const Desk& desk);

/// First adds the row if `isAddUrl`; it is then in the store, whatever the operator does next. Otherwise `strID` selects the row.
/// Shows a message when there is no row. Throws nothing: errors are ignored and logged.
OpenedEntry OpenEntry(const Desk& desk, bool isAddUrl, std::string strID);

/// An input that cannot be saved.
struct EntryRefusal {
    std::string EntryFields::*field;  ///< the invalid text
    std::string message;
};

/// Checks the down times and the good statuses.
std::optional<EntryRefusal> CheckInputs(const EntryFields& fields);

/// Returns why the column of the input cannot hold the text: it is not a number, or too large. Empty if it can.
std::string NumberRefusal(const EntryInput& input, const std::string& text);

/// Reads the column of the input. Throws Error.
void ReadInput(Recordset& row, const EntryInput& input, EntryFields& fields);

/// Puts the stored form of the input into the row, and what follows from it; the caller updates the row. Throws Error.
void WriteInput(Recordset& row, const EntryInput& input, const EntryFields& fields);

/// Takes a saved down time away; the caller updates the row. Throws Error.
void RemoveDownTime(Recordset& row, const EntryDownTime& downTime);

/// Returns the message about a host name where ping needs an address.
std::string NotAnAddressMessage(const std::string& name);

/// Warns with messages, then writes the columns in order. A field that cannot be written keeps its old value. `nameCleaned`
/// receives the server name when a scheme was removed from it. Returns false, after a message, when the row does not exist. Shows
/// messages, so the window may be gone when it returns. Throws nothing; store errors are logged.
bool SaveEntry(const Desk& desk, const std::string& strID, EntryFields fields,
               const std::function<void(const std::string& name)>& nameCleaned);

}  // namespace korvane
