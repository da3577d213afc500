// Copying a whole list from one database to another: entries, history and what additions keep, all with their IDs.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/connection.h"

namespace korvane {

/// One of the two databases of a copy.
struct ListPlace {
    Store& store;
    Connection& connection;
};

struct CopiedTable {
    std::string name;
    std::int64_t rows = 0;
};

/// Returns the tables of a list that are there, with their rows. Throws Error.
std::vector<CopiedTable> CountList(const ListPlace& place);

/// Calls `copied` after each table. All of it becomes durable at the end, in one transaction. Throws Error, also when there are
/// entries in `to` or when another copy is being written there; `to` is then unchanged.
void CopyList(const ListPlace& from, const ListPlace& to, const std::function<void(const CopiedTable& table)>& copied);

}  // namespace korvane
