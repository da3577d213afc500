// One table of an open file: its columns, its rows by ID, and the statements that change a row.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/qt/sql_session.h"

namespace korvane {

/// A value that was written to a column of the current row, already converted to the column's kind.
struct SqlChange {
    std::string column;
    Value value;
    bool pending = true;
};

class SqlTable {
public:
    /// Throws Error when there is no such table.
    SqlTable(std::shared_ptr<SqlSession> session, std::string name);
    ~SqlTable();
    SqlTable(const SqlTable&) = delete;
    SqlTable& operator=(const SqlTable&) = delete;

    const std::string& Name() const { return name_; }
    const std::shared_ptr<const SqlColumns>& Columns() const { return columns_; }

    /// Returns a column of the first of these rows, as it is when it is first read. If one column of a row is read, others seldom
    /// follow: walks over many rows want one column of each. So a row is fetched whole only when a second column of it is read,
    /// and so is the first row of a walk; a walk along one column fetches that column of some rows ahead. Throws Error when the
    /// row no longer exists.
    Value Read(std::span<const std::int64_t> keys, std::size_t column);

    /// Makes the next Read access the file again.
    void Forget();

    /// Returns the column's default value in a row that is added without it.
    Value Default(std::size_t column);

    /// Write the pending changes, or remove the row. All throw Error; Update and Delete also when the row no longer exists.
    std::int64_t Insert(const std::vector<SqlChange>& changes);
    void Update(std::int64_t key, const std::vector<SqlChange>& changes);
    void Delete(std::int64_t key);

private:
    struct Cells;

    void ReadRow(std::int64_t key);
    const QVariant& ReadColumn(std::span<const std::int64_t> keys, std::size_t column);
    void FetchColumn(std::span<const std::int64_t> keys, std::size_t column);
    void ReadDefaults();

    std::shared_ptr<SqlSession> session_;
    std::string name_;
    std::string quotedName_;
    std::shared_ptr<const SqlColumns> columns_;

    std::unique_ptr<Cells> cells_;        // cached content of the table
    std::optional<std::int64_t> rowKey_;  // of the row that is cached whole
    bool walks_ = false;                  // a row was cached before
    std::optional<std::size_t> walkedColumn_;
    std::optional<std::int64_t> walkedKey_;  // the last row that was read in it
};

}  // namespace korvane
