// What the words of a command say of one entry, as an import of one row would take it.
#pragma once

#include <string>

#include "shell/cli/session.h"
#include "shell/list/entry_csv.h"

namespace korvane {

/// With an id, the columns that are given change that entry. Without, the row is a new entry for the address, which may begin with
/// "https://"; its name is empty unless it is given. Throws Error for whatever the editor refuses.
ImportPlan PlanOfOne(Session& session, const std::string& id, const std::string& address);

}  // namespace korvane
