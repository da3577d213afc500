// How the editor's inputs become the row of a server entry: what is refused, what is only warned of, and the writing, which
// nothing stops once it has begun.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "shell/entry/entry_fields.h"
#include "shell/run/desk.h"

namespace korvane {

/// What keeps the inputs from being saved.
struct EntryRefusal {
    std::string EntryFields::*field;  ///< the text at fault
    std::string message;
};

std::optional<EntryRefusal> CheckDownTimes(const EntryFields& fields);

/// What the operator is told of a host name where only an address can be pinged.
std::string NotAnAddressMessage(const std::string& name);

/// Warns with messages, then writes the columns in their order. A field that cannot be written keeps its old value.
/// `nameCleaned` hears the server name when a scheme was taken from it. False when the row is not there, with a message. Shows
/// messages, so anything may have happened to the window when it returns. Throws nothing; errors of the store are logged.
bool SaveEntry(const Desk& desk, const std::string& strID, EntryFields fields,
               const std::function<void(const std::string& name)>& nameCleaned);

}  // namespace korvane
