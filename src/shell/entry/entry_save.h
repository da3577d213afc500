// The row of a server entry: for a new entry it is added with defaults, it is read into the editor's inputs, and they are saved to it
// with refusals and warnings. Reading and writing continue after errors.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "shell/entry/entry_inputs.h"
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

/// An input that cannot be saved.
struct EntryRefusal {
    std::string EntryFields::*field;  ///< the invalid text
    std::string message;
};

std::optional<EntryRefusal> CheckDownTimes(const EntryFields& fields);

/// Returns the message about a host name where ping needs an address.
std::string NotAnAddressMessage(const std::string& name);

/// Warns with messages, then writes the columns in order. A field that cannot be written keeps its old value. `nameCleaned`
/// receives the server name when a scheme was removed from it. Returns false, after a message, when the row does not exist. Shows
/// messages, so the window may be gone when it returns. Throws nothing; store errors are logged.
bool SaveEntry(const Desk& desk, const std::string& strID, EntryFields fields,
               const std::function<void(const std::string& name)>& nameCleaned);

}  // namespace korvane
