// The texts that come in: connection strings, and queries in the program's own form, which this file turns into SQLite's.
#pragma once

#include <string>
#include <string_view>

namespace korvane {

/// The value of `DBQ` or `Data Source`. Throws Error when neither is there.
std::string DatabaseFileOf(std::string_view connectionString);

/// The query with each #month/day/year time# outside quoted text and brackets in the stored form of a moment. Throws Error for
/// one that cannot be read.
std::string WithStoredDates(std::string_view query);

/// The name between back quotes, which, unlike double quotes, never turn an unknown name into a text.
std::string QuotedName(std::string_view name);

/// A query whose select list can be exchanged.
struct SelectText {
    std::string query;     ///< without a ";" at its end
    std::string table;     ///< of "SELECT <* or plain names> FROM <table> [WHERE|ORDER|LIMIT ...]"; empty for every other form
    std::string rest;      ///< what follows the table
    bool hasRows = false;  ///< the list is "*" or has ID in it

    /// Its rows are rows of one table.
    bool IsOneTable() const { return hasRows; }

    /// Whether rows of `table` come in no order that the query names, and may be given one.
    bool LacksOrder() const;
    /// Adds the order.
    void OrderBy(std::string_view list);

    /// The same rows in the same order with another select list.
    std::string Selecting(std::string_view list) const;
};

SelectText ParseSelect(std::string_view query);

}  // namespace korvane
