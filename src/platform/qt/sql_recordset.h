// The Recordset over an open database: which row is the current one, and its pending changes.
#pragma once

#include <memory>
#include <vector>

#include "platform/qt/sql_connection.h"
#include "platform/qt/sql_table.h"

namespace korvane {

class QtSqlRecordset : public Recordset {
public:
    explicit QtSqlRecordset(std::shared_ptr<SqlStoreState> state) : state_(std::move(state)) {}
    ~QtSqlRecordset() override { QtSqlRecordset::Close(); }

    void Open(std::string_view source, Connection& connection, CursorType cursor, LockType lock) override;
    int RecordCount() const override;
    bool Eof() const override;
    void MoveNext() override;
    bool TryLock() override;
    void AddNew() override;
    void Update() override;
    void Delete() override;
    void Close() override;

protected:
    korvane::Value Read(std::string_view name) override;
    void Write(std::string_view name, const korvane::Value& value) override;

private:
    enum class Row { None, Stored, New, Deleted };

    void RequireOpen() const;
    void RequireRow() const;
    SqlTable& RequireTable();

    std::size_t Find(std::string_view name) const;
    SqlChange* FindChange(std::string_view column);

    void Advance();
    void Leave();
    /// Throws Error when the current row is locked elsewhere; TakeRow returns false then.
    void LockRow();
    bool TakeRow();

    const std::shared_ptr<SqlStoreState> state_;
    std::unique_ptr<SqlRows> rows_;  // null while this is closed
    LockType lockType_ = LockType::Optimistic;
    int count_ = 0;

    Row row_ = Row::None;
    std::vector<SqlChange> changes_;
    std::unique_ptr<SqlRowLock> rowLock_;
};

}  // namespace korvane
