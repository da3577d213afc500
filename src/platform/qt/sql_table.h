// One table of an open file, whose rows are found by their ID, and the rows of one query, from first to last: a keyset, whose
// values are read on access, or a static copy.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/connection.h"
#include "platform/qt/sql_session.h"
#include "platform/qt/sql_text.h"

namespace korvane {

/// A value that was written to a column of the current row, already converted to the column's kind.
struct SqlChange {
    std::string column;
    Value value;
    bool pending = true;
};

/// Everything here throws Error, also when a row that is read or changed no longer exists.
class SqlTable {
public:
    SqlTable(SqlSession& session, std::string name);
    ~SqlTable();
    SqlTable(const SqlTable&) = delete;
    SqlTable& operator=(const SqlTable&) = delete;

    const std::string& Name() const { return name_; }
    const std::shared_ptr<const SqlColumns>& Columns() const { return columns_; }

    /// Returns the values of one row.
    std::vector<QVariant> Row(std::int64_t key);

    /// Returns one column of the first 64 of these rows, by key; a row that no longer exists is missing in it.
    std::unordered_map<std::int64_t, Value> Column(std::size_t column, std::span<const std::int64_t> keys);

    /// Returns the column's default value in a row that is added without it.
    Value Default(std::size_t column);

    /// Write the pending changes, or remove the row. Insert returns the key; `givesId`: the changes name it.
    std::int64_t Insert(const std::vector<SqlChange>& changes, bool givesId);
    void Update(std::int64_t key, const std::vector<SqlChange>& changes);
    void Delete(std::int64_t key);

private:
    SqlSession& session_;
    std::string name_;
    std::string quotedName_;
    std::shared_ptr<const SqlColumns> columns_;
    std::vector<QVariant> defaults_;  ///< empty until the first Default
};

/// Everything that concerns the current row throws Error.
class SqlRows {
public:
    /// Reads the keys, or copies the rows; rows that are not of one table are always copied. Throws Error.
    SqlRows(std::shared_ptr<SqlSession> session, SelectText select, CursorType cursor);
    ~SqlRows();
    SqlRows(const SqlRows&) = delete;
    SqlRows& operator=(const SqlRows&) = delete;

    SqlSession& Session() const { return *session_; }
    const std::shared_ptr<SqlSession>& SharedSession() const { return session_; }
    /// Returns null when the rows are not of one table, so that they cannot be changed.
    SqlTable* Table() const { return table_.get(); }
    const SqlColumns& Columns() const { return *columns_; }
    std::size_t Count() const { return std::max(keys_.size(), copies_.size()); }

    /// Goes to the next row, at first to the first one; returns false after the last.
    bool Next();
    void GoToEnd() { at_ = Count(); }

    std::int64_t Key() const;

    /// Returns a column of the current row, as it is when it is first read. Walks over many rows mostly want one and the same
    /// column of each: from the second row on, the first column that is read is read of 64 rows at once. A row of which another
    /// column is read, too, is fetched whole, and so is the first row, which is mostly the only one.
    Value Read(std::size_t column);

    /// The current row was changed and may have another key now: the next Read accesses the file again.
    void Changed(std::int64_t key);
    /// Makes a row that was added to the table the last one, and the current one.
    void Append(std::int64_t key);

private:
    struct ColumnAhead {
        std::size_t column;
        std::unordered_map<std::int64_t, Value> values;  ///< by key
    };

    void ReadKeys(const SelectText& select);
    void CopyRows(const SelectText& select);
    Value ReadAhead(std::size_t column);

    std::shared_ptr<SqlSession> session_;
    std::unique_ptr<SqlTable> table_;
    std::shared_ptr<const SqlColumns> columns_;
    std::vector<std::int64_t> keys_;
    std::vector<std::vector<QVariant>> copies_;  ///< empty for a keyset
    std::size_t at_ = 0;                         ///< after the current row
    std::vector<QVariant> row_;                  ///< the current one; empty until it is fetched whole
    std::optional<ColumnAhead> ahead_;
};

}  // namespace korvane
