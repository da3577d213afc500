#include "platform/qt/sql_recordset.h"

#include <algorithm>

#include "base/error.h"
#include "base/text.h"
#include "platform/qt/sql_values.h"

namespace korvane {

void QtSqlRecordset::Open(std::string_view source, Connection& connection, CursorType cursor, LockType lock) {
    if (rows_) throw Error("The recordset is already open.");
    const auto* open = dynamic_cast<QtSqlConnection*>(&connection);
    if (open == nullptr || !open->Session()) throw Error("The connection is not open.");
    SelectText select = ParseSelect(WithStoredDates(source));
    if (!ToLower(select.query).starts_with("select ")) throw Error("A recordset is opened on a SELECT query.");
    session_ = open->Session();
    lockType_ = lock;
    try {
        // Otherwise an index would return its own order.
        if (select.LacksOrder()) select.OrderBy(session_->KeyOf(select.table));
        if (select.IsOneTable()) table_.emplace(session_, select.table);
        if (table_ && cursor == CursorType::Keyset) {
            rows_ = std::make_unique<KeysetRows>(*session_, select, *table_);
            columns_ = table_->Columns();
        } else {
            auto copies = std::make_unique<StaticRows>(*session_, select);
            columns_ = copies->Columns();
            rows_ = std::move(copies);
        }
        count_ = rows_->Count();
        Advance();
    } catch (...) {
        Close();
        throw;
    }
}

int QtSqlRecordset::RecordCount() const {
    RequireOpen();
    return count_;
}

bool QtSqlRecordset::Eof() const {
    RequireOpen();
    return row_ == Row::None;
}

void QtSqlRecordset::MoveNext() {
    if (Eof()) throw Error("There is no current row.");
    Update();
    const bool wasLast = isAdded_;
    Leave();
    if (!wasLast) Advance();
}

void QtSqlRecordset::AddNew() {
    RequireTable();
    Update();
    Leave();
    row_ = Row::New;
    isAdded_ = true;
}

void QtSqlRecordset::Update() {
    const bool hasPending = std::any_of(changes_.begin(), changes_.end(), [](const SqlChange& change) { return change.pending; });
    if (row_ != Row::New && !hasPending) return RequireOpen();
    SqlTable& table = RequireTable();
    const SqlChange* id = FindChange("ID");
    const bool givesId = id != nullptr && id->pending && !id->value.IsBlank();
    if (row_ == Row::New) {
        const std::int64_t inserted = table.Insert(changes_);
        ownKey_ = givesId ? id->value.Int64() : inserted;
        row_ = Row::Stored;
        ++count_;
    } else {
        table.Update(Key(), changes_);
        if (givesId) ownKey_ = id->value.Int64();
    }
    for (SqlChange& change : changes_)
        change.pending = false;
    table.Forget();
    if (givesId && rowLock_) LockRow();
}

void QtSqlRecordset::Delete() {
    SqlTable& table = RequireTable();
    RequireRow();
    if (row_ == Row::Stored) {
        table.Delete(Key());
        --count_;
    }
    changes_.clear();
    rowLock_.reset();
    row_ = Row::Deleted;
}

void QtSqlRecordset::Close() {
    Leave();
    rows_.reset();
    table_.reset();
    columns_.reset();
    session_.reset();
}

Value QtSqlRecordset::Read(std::string_view name) {
    RequireRow();
    const std::size_t column = Find(name);
    if (const SqlChange* change = FindChange((*columns_)[column].name)) return change->value;
    if (row_ == Row::New) return table_->Default(column);
    return ownKey_ ? table_->Read({&*ownKey_, 1}, column) : rows_->Read(column);
}

void QtSqlRecordset::Write(std::string_view name, const korvane::Value& value) {
    RequireRow();
    RequireTable();
    const std::size_t place = Find(name);
    const SqlColumn& column = (*columns_)[place];
    korvane::Value stored = ForColumn(value, column.kind);
    if (lockType_ == LockType::Pessimistic && row_ == Row::Stored && !rowLock_) LockRow();
    SqlChange* change = FindChange(column.name);
    if (change == nullptr) change = &changes_.emplace_back(SqlChange{column.name, {}});
    change->value = std::move(stored);
    change->pending = true;
}

void QtSqlRecordset::RequireOpen() const {
    if (!rows_) throw Error("The recordset is not open.");
}

void QtSqlRecordset::RequireRow() const {
    RequireOpen();
    if (row_ == Row::None) throw Error("There is no current row.");
    if (row_ == Row::Deleted) throw Error("The current row was deleted.");
}

SqlTable& QtSqlRecordset::RequireTable() {
    RequireOpen();
    if (!table_) throw Error("The rows of this query cannot be changed: it is not of one table.");
    return *table_;
}

std::size_t QtSqlRecordset::Find(std::string_view name) const {
    const auto found = columns_->Find(name);
    if (!found) {
        session_->Distrust();  // the column may be newer than the open file: the next piece of work checks
        throw NoSuchColumnError(name, table_ ? table_->Name() : "the rows of the query");
    }
    return *found;
}

SqlChange* QtSqlRecordset::FindChange(std::string_view column) {
    const auto found = std::find_if(changes_.begin(), changes_.end(),
                                    [&](const SqlChange& change) { return EqualsNoCase(change.column, column); });
    return found == changes_.end() ? nullptr : &*found;
}

void QtSqlRecordset::Advance() {
    if (rows_->Next()) row_ = Row::Stored;
}

void QtSqlRecordset::Leave() {
    row_ = Row::None;
    isAdded_ = false;
    ownKey_.reset();
    changes_.clear();
    rowLock_.reset();
}

void QtSqlRecordset::LockRow() {
    rowLock_.reset();
    rowLock_.emplace(state_, SqlRowName(session_->Path(), ToLower(table_->Name()), Key()));
}

}  // namespace korvane
