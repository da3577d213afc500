#include "platform/qt/sql_recordset.h"

#include <algorithm>

#include "base/error.h"
#include "base/text.h"

namespace korvane {

void QtSqlRecordset::Open(std::string_view source, Connection& connection, CursorType cursor, LockType lock) {
    if (rows_) throw Error("The recordset is already open.");
    const auto* open = dynamic_cast<QtSqlConnection*>(&connection);
    if (open == nullptr || !open->Session()) throw Error("The connection is not open.");
    SelectText select = ParseSelect(source);
    if (!ToLower(select.query).starts_with("select ")) throw Error("A recordset is opened on a SELECT query.");
    rows_ = std::make_unique<SqlRows>(open->Session(), std::move(select), cursor);
    lockType_ = lock;
    count_ = static_cast<int>(rows_->Count());
    Advance();
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
    Leave();
    Advance();
}

bool QtSqlRecordset::TryLock() {
    RequireTable();
    RequireRow();
    if (lockType_ != LockType::Pessimistic) throw Error("A recordset that locks no rows cannot lock one.");
    if (row_ == Row::Stored && !rowLock_ && !TakeRow()) return false;
    if (row_ == Row::Stored) rows_->Changed(rows_->Key());
    return true;
}

void QtSqlRecordset::AddNew() {
    RequireTable();
    Update();
    Leave();
    rows_->GoToEnd();
    row_ = Row::New;
}

void QtSqlRecordset::Update() {
    const bool hasPending = std::any_of(changes_.begin(), changes_.end(), [](const SqlChange& change) { return change.pending; });
    if (row_ != Row::New && !hasPending) return RequireOpen();
    SqlTable& table = RequireTable();
    const SqlChange* id = FindChange("ID");
    const bool givesId = id != nullptr && id->pending && !id->value.IsBlank();
    if (row_ == Row::New) {
        const std::int64_t inserted = table.Insert(changes_, givesId);
        rows_->Append(givesId ? id->value.Int64() : inserted);
        row_ = Row::Stored;
        ++count_;
    } else {
        table.Update(rows_->Key(), changes_);
        rows_->Changed(givesId ? id->value.Int64() : rows_->Key());
    }
    for (SqlChange& change : changes_)
        change.pending = false;
    if (givesId && rowLock_) LockRow();
}

void QtSqlRecordset::Delete() {
    SqlTable& table = RequireTable();
    RequireRow();
    if (row_ == Row::Stored) {
        table.Delete(rows_->Key());
        --count_;
    }
    Leave();
    row_ = Row::Deleted;
}

void QtSqlRecordset::Close() {
    Leave();
    rows_.reset();
}

Value QtSqlRecordset::Read(std::string_view name) {
    RequireRow();
    const std::size_t column = Find(name);
    if (const SqlChange* change = FindChange(rows_->Columns()[column].name)) return change->value;
    return row_ == Row::New ? rows_->Table()->Default(column) : rows_->Read(column);
}

void QtSqlRecordset::Write(std::string_view name, const korvane::Value& value) {
    RequireRow();
    RequireTable();
    const SqlColumn& column = rows_->Columns()[Find(name)];
    korvane::Value stored = column.ForFile(value);
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
    if (rows_->Table() == nullptr) throw Error("The rows of this query cannot be changed: it is not of one table.");
    return *rows_->Table();
}

std::size_t QtSqlRecordset::Find(std::string_view name) const {
    if (const auto found = rows_->Columns().Find(name)) return *found;
    rows_->Session().Distrust();  // the column may be newer than the open file: the next piece of work checks
    const std::string where = rows_->Table() != nullptr ? rows_->Table()->Name() : "the rows of the query";
    throw Error("Item cannot be found in the collection corresponding to the requested name or ordinal: '" + std::string(name) +
                "' in " + where + ".");
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
    changes_.clear();
    rowLock_.reset();
}

void QtSqlRecordset::LockRow() {
    if (!TakeRow()) throw Error("Could not update; currently locked.");
}

bool QtSqlRecordset::TakeRow() {
    rowLock_.reset();
    rowLock_ = SqlRowLock::Try(state_, rows_->SharedSession(), ToLower(rows_->Table()->Name()), rows_->Key());
    return rowLock_ != nullptr;
}

}  // namespace korvane
