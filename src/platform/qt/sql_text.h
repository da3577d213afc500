// Input texts: connection strings, and queries in the program's own form, which this file translates to SQLite's.
#pragma once

#include <string>
#include <string_view>

namespace korvane {

/// Returns the value of `DBQ` or `Data Source`. Throws Error when both are missing.
std::string DatabaseFileOf(std::string_view connectionString);

/// Returns the query with each #month/day/year time# outside quoted text and brackets replaced by the stored form of that moment.
/// Throws Error for an unreadable moment.
std::string WithStoredDates(std::string_view query);

/// Returns the name between back quotes, which, unlike double quotes, never turn an unknown name into a text.
std::string QuotedName(std::string_view name);

/// A query whose select list can be replaced.
struct SelectText {
    std::string query;     ///< without a ";" at its end
    std::string table;     ///< of "SELECT <* or plain names> FROM <table> [WHERE|ORDER|LIMIT ...]"; empty for every other form
    std::string rest;      ///< what follows the table
    bool hasRows = false;  ///< the list is "*" or contains ID

    /// Returns whether the result consists of rows of one table.
    bool IsOneTable() const { return hasRows; }

    /// Returns whether rows of `table` come without an explicit order, so that one may be added.
    bool LacksOrder() const;
    void OrderBy(std::string_view list);

    /// Returns the query for the same rows in the same order with another select list.
    std::string Selecting(std::string_view list) const;
};

SelectText ParseSelect(std::string_view query);

}  // namespace korvane
