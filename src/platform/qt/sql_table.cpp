#include "platform/qt/sql_table.h"

#include <QtCore/QVariant>
#include <QtSql/QSqlQuery>
#include <QtSql/QSqlRecord>
#include <utility>

#include "base/error.h"

namespace korvane {
namespace {

constexpr std::size_t kRowsAhead = 64;

constexpr const char* kRowWasDeleted = "The row was deleted since the query was opened.";
constexpr const char* kRowIsGone =
    "Row cannot be located for updating. Some values may have been changed since it was last read.";

// Returns "?,?,?" for three values.
std::string Marks(qsizetype count) {
    std::string marks;
    for (qsizetype i = 0; i < count; ++i)
        marks += i == 0 ? "?" : ",?";
    return marks;
}

// Returns "`a`=?,`b`=?" for an `end` of "=?".
std::string PendingNames(const std::vector<SqlChange>& changes, std::string_view end) {
    std::string list;
    for (const SqlChange& change : changes) {
        if (!change.pending) continue;
        if (!list.empty()) list += ',';
        list += QuotedName(change.column);
        list += end;
    }
    return list;
}

QVariantList PendingValues(const std::vector<SqlChange>& changes) {
    QVariantList values;
    for (const SqlChange& change : changes) {
        if (change.pending) values.append(ToBind(change.value));
    }
    return values;
}

QVariantList MomentsOf(const SelectText& select) {
    QVariantList values;
    for (const std::string& moment : select.moments)
        values.append(QString::fromStdString(moment));
    return values;
}

}  // namespace

SqlTable::SqlTable(SqlSession& session, std::string name)
    : session_(session), name_(std::move(name)), quotedName_(QuotedName(name_)), columns_(session_.ColumnsOf(name_)) {}

SqlTable::~SqlTable() = default;

std::vector<QVariant> SqlTable::Row(std::int64_t key) {
    QSqlQuery& query =
        session_.SelectPrepared("SELECT " + columns_->List() + " FROM " + quotedName_ + " WHERE `ID`=?", {ToBind(key)});
    if (!session_.Next(query)) throw Error(kRowWasDeleted);
    std::vector<QVariant> row = columns_->ValuesIn(query);
    query.finish();
    return row;
}

// Always the same statement, so that it is prepared once: the last key stands in for those that lack.
std::unordered_map<std::int64_t, Value> SqlTable::Column(std::size_t column, std::span<const std::int64_t> keys) {
    const SqlColumn& asked = (*columns_)[column];
    QVariantList wanted;
    for (std::size_t i = 0; i < kRowsAhead; ++i)
        wanted.append(ToBind(keys[std::min(i, keys.size() - 1)]));
    QSqlQuery& query = session_.SelectPrepared(
        "SELECT `ID`," + asked.selected + " FROM " + quotedName_ + " WHERE `ID` IN (" + Marks(wanted.size()) + ")", wanted);
    std::unordered_map<std::int64_t, Value> values;
    while (session_.Next(query))
        values.emplace(query.value(0).toLongLong(), asked.FromFile(query.value(1)));
    query.finish();
    return values;
}

Value SqlTable::Default(std::size_t column) {
    if (defaults_.empty()) defaults_ = session_.DefaultsOf(name_);
    return (*columns_)[column].FromFile(defaults_[column]);
}

std::int64_t SqlTable::Insert(const std::vector<SqlChange>& changes, bool givesId) {
    const QVariantList values = PendingValues(changes);
    const std::string row =
        values.isEmpty() ? " DEFAULT VALUES" : " (" + PendingNames(changes, "") + ") VALUES (" + Marks(values.size()) + ")";
    return session_.Insert(name_, "INSERT INTO " + quotedName_ + row, values, givesId);
}

void SqlTable::Update(std::int64_t key, const std::vector<SqlChange>& changes) {
    QVariantList values = PendingValues(changes);
    values.append(ToBind(key));
    const int changed =
        session_.Change("UPDATE " + quotedName_ + " SET " + PendingNames(changes, "=?") + " WHERE `ID`=?", values);
    if (changed == 0) throw RowGoneError(kRowIsGone);
}

void SqlTable::Delete(std::int64_t key) {
    if (session_.Change("DELETE FROM " + quotedName_ + " WHERE `ID`=?", {ToBind(key)}) == 0) throw Error(kRowIsGone);
}

SqlRows::SqlRows(std::shared_ptr<SqlSession> session, SelectText select, CursorType cursor) : session_(std::move(session)) {
    session_->CompleteOrder(select);
    if (select.IsOneTable()) table_ = std::make_unique<SqlTable>(*session_, select.table);
    table_&& cursor == CursorType::Keyset ? ReadKeys(select) : CopyRows(select);
}

SqlRows::~SqlRows() = default;

void SqlRows::ReadKeys(const SelectText& select) {
    columns_ = table_->Columns();
    QSqlQuery& query = session_->SelectPrepared(select.Selecting("`ID`"), MomentsOf(select));
    while (session_->Next(query))
        keys_.push_back(query.value(0).toLongLong());
    query.finish();
}

void SqlRows::CopyRows(const SelectText& select) {
    const bool names = table_ && session_->NamesColumns();
    const std::string query = names ? select.Selecting(table_->Columns()->List()) : table_ ? select.Selecting("*") : select.query;
    QSqlQuery rows = session_->Select(query, MomentsOf(select));
    columns_ = names ? table_->Columns() : std::make_shared<SqlColumns>(rows.record(), select.table, session_->KindOf());
    const auto id = table_ ? columns_->Find("ID") : std::nullopt;
    while (session_->Next(rows)) {
        copies_.push_back(columns_->ValuesIn(rows));
        if (id) keys_.push_back(copies_.back()[*id].toLongLong());
    }
}

bool SqlRows::Next() {
    if (at_ == Count()) return false;
    row_ = at_ < copies_.size() ? std::move(copies_[at_]) : std::vector<QVariant>();
    ++at_;
    return true;
}

std::int64_t SqlRows::Key() const {
    if (keys_.empty()) throw Error("The rows of this query have no ID, so they cannot be changed.");
    return keys_[at_ - 1];
}

Value SqlRows::Read(std::size_t column) {
    const bool walks = row_.empty() && at_ > 1 && (!ahead_ || ahead_->column == column);
    if (walks) return ReadAhead(column);
    if (row_.empty()) row_ = table_->Row(Key());
    return (*columns_)[column].FromFile(row_[column]);
}

Value SqlRows::ReadAhead(std::size_t column) {
    if (!ahead_ || !ahead_->values.contains(Key())) ahead_ = {column, table_->Column(column, std::span(keys_).subspan(at_ - 1))};
    const auto found = ahead_->values.find(Key());
    if (found == ahead_->values.end()) throw Error(kRowWasDeleted);
    return found->second;
}

void SqlRows::Changed(std::int64_t key) {
    const bool isCopy = !copies_.empty() && key == Key();
    ahead_.reset();
    if (isCopy) return;
    keys_[at_ - 1] = key;
    row_.clear();
}

void SqlRows::Append(std::int64_t key) {
    keys_.resize(Count());
    keys_.push_back(key);
    at_ = keys_.size();
    row_.clear();
    ahead_.reset();
}

}  // namespace korvane
