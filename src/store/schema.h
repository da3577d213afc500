// The columns of the database, by table, with the kind of each: the store adapter needs them for typed values, and start-up
// compares a database with them. They come from data/kvempty.sql, which also creates the tables.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/connection.h"

namespace korvane {

struct ColumnSchema {
    std::string name;
    ColumnKind kind;
};

struct TableSchema {
    std::string name;
    std::vector<ColumnSchema> columns;
};

/// `Servers`, `Failures`, `Response`, `ResponseFailText`.
const std::vector<TableSchema>& DatabaseSchema();

/// Returns the SQLite statements that make the tables.
std::string DatabaseStatements();

/// Both names are case-insensitive. Returns nothing for a column that is not in the schema.
std::optional<ColumnKind> KindOfColumn(std::string_view table, std::string_view column);

}  // namespace korvane
