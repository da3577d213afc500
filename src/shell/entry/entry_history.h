// What an entry's last checks have left behind: the route at its last failure, its last response, the groups and failure texts in
// the store.
#pragma once

#include <string>
#include <vector>

#include "shell/run/desk.h"

namespace korvane {

/// Opens the traced route in the text editor, or says that there is none. `name` is the entry's address.
void ShowLastTraceroute(const Desk& desk, const std::string& id, const std::string& name);

/// Shows the response in the conversation window.
void ShowLastResponse(const Desk& desk, const std::string& name, const std::string& response);

/// Returns the groups of all entries, in alphabetical order, each once. Empty if they cannot be read.
std::vector<std::string> ExistingGroups(const Desk& desk);

/// Returns "No failure texts", "1 failure text" or "3 failure texts", as stored for the entry; empty if that cannot be read.
std::string CountedFailTexts(const Desk& desk, const std::string& id);

}  // namespace korvane
