// Input texts: connection strings, and queries in the program's own form, which this file translates to SQLite's.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvane {

/// Returns the value of `DBQ` or `Data Source`, which may be quoted (std::quoted). Throws Error when both are missing.
std::string DatabaseFileOf(const std::string& connectionString);

/// Returns the name between back quotes, which, unlike double quotes, never turn an unknown name into a text.
std::string QuotedName(std::string_view name);

/// A query whose select list can be replaced.
struct SelectText {
    std::string query;     ///< without a ";" at its end
    std::string table;     ///< of "SELECT <* or plain names> FROM <table> [WHERE|ORDER|LIMIT ...]"; empty for every other form
    std::string rest;      ///< what follows the table
    bool hasRows = false;  ///< the list is "*" or contains ID
    std::vector<std::string> moments;  ///< the stored forms, one for each "?" that stands for a moment

    /// Returns whether the result consists of rows of one table.
    bool IsOneTable() const { return hasRows; }

    /// Returns whether rows of `table` come without an explicit order, so that one may be added.
    bool LacksOrder() const;
    void OrderBy(std::string_view list);

    /// Rows that are equal in the order that the query names come in order of this column, or in its opposite if the query names
    /// one column with DESC: as SQLite sorts them, or finds them in an index.
    void OrderAlsoBy(std::string_view name);

    /// Returns the query for the same rows in the same order with another select list.
    std::string Selecting(std::string_view list) const;
};

/// Each #month/day/year time# outside quoted text and brackets becomes a "?", so that a query that differs from an earlier one only
/// in its moments is not parsed again. Throws Error for an unreadable moment.
SelectText ParseSelect(std::string_view source);

}  // namespace korvane
