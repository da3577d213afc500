// The columns of the database, by table, with the kind of each: the store adapter needs them for typed values, and start-up
// compares a database with them. data/kvempty.sql creates the same tables; a test keeps the two consistent.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "platform/connection.h"

namespace korvane {

struct ColumnSchema {
    std::string_view name;
    ColumnKind kind;
};

struct TableSchema {
    std::string_view name;
    std::span<const ColumnSchema> columns;
};

/// `Servers`, `Failures`, `Response`, `ResponseFailText`.
std::span<const TableSchema> DatabaseSchema();

/// Both names are case-insensitive. Returns nothing for a column that is not in the schema.
std::optional<ColumnKind> KindOfColumn(std::string_view table, std::string_view column);

}  // namespace korvane
