// The columns of a table or of a query's result, by case-insensitive name.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/error.h"
#include "platform/qt/sql_store.h"

class QSqlRecord;

namespace korvane {

struct SqlColumn {
    std::string name;
    std::optional<ColumnKind> kind;  ///< nothing if the kind depends on each value
};

/// For a column that does not exist in `where`.
Error NoSuchColumnError(std::string_view name, const std::string& where);

class SqlColumns {
public:
    /// The columns of a result; `table` is empty when they may come from several tables.
    SqlColumns(const QSqlRecord& record, const std::string& table, const ColumnKindOf& kindOf);

    std::optional<std::size_t> Find(std::string_view name) const;
    const SqlColumn& operator[](std::size_t column) const { return columns_[column]; }
    std::size_t Size() const { return columns_.size(); }

    /// Returns all names as a select list. Names instead of "*": if a column disappears while the file is open, a query fails
    /// instead of shifting the others.
    const std::string& List() const { return list_; }

private:
    struct HashNoCase {
        using is_transparent = void;
        std::size_t operator()(std::string_view name) const;
    };
    struct EqualNoCase {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const;
    };

    std::vector<SqlColumn> columns_;
    std::string list_;
    std::unordered_map<std::string, std::size_t, HashNoCase, EqualNoCase> byName_;
};

}  // namespace korvane
