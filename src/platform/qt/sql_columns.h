// The columns of a table or of a query's result, by case-insensitive name, and the conversion of their values to and from the
// file.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/qt/sql_store.h"

class QSqlQuery;
class QSqlRecord;
class QVariant;

namespace korvane {

struct SqlColumn {
    std::string name;
    std::optional<ColumnKind> kind;  ///< nothing for an unknown column: its kind depends on each value
    std::string selected;            ///< how a select list names it

    /// Returns what the column stores for a value. Throws TypeMismatchError and OverflowError.
    Value ForFile(const Value& value) const;

    /// Converts a stored value to the kind of the column. A stored value that does not fit the kind, which only another program
    /// can have written, is returned as text, so that the conversion fails where the value is needed.
    Value FromFile(const QVariant& stored) const;
};

/// Returns the value in the driver's form.
QVariant ToBind(const Value& value);

class SqlColumns {
public:
    /// The columns of a result; `table` is empty when they may come from several tables.
    SqlColumns(const QSqlRecord& record, const std::string& table, const ColumnKindOf& kindOf);
    explicit SqlColumns(std::vector<SqlColumn> columns);

    std::optional<std::size_t> Find(std::string_view name) const;
    const SqlColumn& operator[](std::size_t column) const { return columns_[column]; }
    std::size_t Size() const { return columns_.size(); }

    /// Returns the values of these columns in the current row of a query.
    std::vector<QVariant> ValuesIn(const QSqlQuery& query) const;

    /// Returns all names as a select list. Names instead of "*": if a column disappears while the file is open, a query fails
    /// instead of shifting the others.
    const std::string& List() const { return list_; }

private:
    void MakeList();

    std::vector<SqlColumn> columns_;
    std::string list_;
};

}  // namespace korvane
