// Saving the editor's inputs to the row of a server entry: what is refused, what only causes a warning, and the writing, which
// continues after errors.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "shell/entry/entry_fields.h"
#include "shell/run/desk.h"

namespace korvane {

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
