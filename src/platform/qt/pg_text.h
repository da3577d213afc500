// Statements in SQLite's form, translated to PostgreSQL's. Names are in lower case there, so that they are case-insensitive; texts
// that SQLite compares without regard to case are CITEXT in the order of their bytes; blanks come first in an order.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvane {

/// Returns the statement cut at its "?" marks: one piece more than there are marks. Throws Error for several statements.
std::vector<std::string> PgPieces(std::string_view sql);

/// Return the name or the text between quotes. A NUL, which the server cannot store, becomes U+FFFD.
std::string PgName(std::string_view name);
std::string PgLiteral(std::string_view text);

struct PgTable {
    std::string name;
    std::vector<std::pair<std::string, std::string>> columns;  ///< name in lower case, and definition
    bool replaces = false;                                     ///< a new row replaces the one with its ID
};

/// Returns the tables of CREATE TABLE statements.
std::vector<PgTable> PgTables(std::string_view statements);

/// Returns what does the same as these statements; pragmas are left out. Each is to be run by itself.
std::vector<std::string> PgDefinitions(std::string_view statements);

}  // namespace korvane
