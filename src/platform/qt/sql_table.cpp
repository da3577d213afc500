#include "platform/qt/sql_table.h"

#include <QtCore/QVariant>
#include <QtSql/QSqlQuery>
#include <algorithm>
#include <unordered_map>

#include "base/text.h"
#include "platform/connection.h"
#include "platform/qt/sql_text.h"
#include "platform/qt/sql_values.h"

namespace korvane {
namespace {

constexpr std::size_t kRowsAhead = 64;

constexpr const char* kRowIsGone =
    "Row cannot be located for updating. Some values may have been changed since it was last read.";
constexpr const char* kRowWasDeleted = "The row was deleted since the query was opened.";

// Returns "`a`=?,`b`=?" for a `behindName` of "=?".
std::string PendingNames(const std::vector<SqlChange>& changes, std::string_view behindName) {
    std::string list;
    for (const SqlChange& change : changes) {
        if (!change.pending) continue;
        if (!list.empty()) list += ',';
        list += QuotedName(change.column);
        list += behindName;
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

QVariant KeyOf(std::int64_t key) {
    return QVariant(static_cast<qlonglong>(key));
}

}  // namespace

struct SqlTable::Cells {
    std::vector<QVariant> row;
    std::unordered_map<std::int64_t, QVariant> walked;  ///< values of the walked column, by key
    std::vector<QVariant> defaults;
};

SqlTable::SqlTable(std::shared_ptr<SqlSession> session, std::string name)
    : session_(std::move(session)),
      name_(std::move(name)),
      quotedName_(QuotedName(name_)),
      columns_(session_->ColumnsOf(name_)),
      cells_(std::make_unique<Cells>()) {}

SqlTable::~SqlTable() = default;

Value SqlTable::Read(std::span<const std::int64_t> keys, std::size_t column) {
    const std::int64_t key = keys.front();
    const bool secondColumn = walkedKey_ == key && walkedColumn_ != column;
    const bool walksOn = walks_ && rowKey_ != key && !secondColumn;
    if (walksOn) return FromStored(ReadColumn(keys, column), (*columns_)[column].kind);
    if (rowKey_ != key) ReadRow(key);
    return FromStored(cells_->row[column], (*columns_)[column].kind);
}

void SqlTable::Forget() {
    rowKey_.reset();
    walkedColumn_.reset();
}

void SqlTable::ReadRow(std::int64_t key) {
    rowKey_.reset();
    QSqlQuery& query =
        session_->SelectPrepared("SELECT " + columns_->List() + " FROM " + quotedName_ + " WHERE `ID`=?", {KeyOf(key)});
    if (!session_->Next(query)) throw Error(kRowWasDeleted);
    cells_->row.clear();
    for (std::size_t i = 0; i < columns_->Size(); ++i)
        cells_->row.push_back(query.value(static_cast<int>(i)));
    query.finish();
    rowKey_ = key;
    walks_ = true;
}

const QVariant& SqlTable::ReadColumn(std::span<const std::int64_t> keys, std::size_t column) {
    const std::int64_t key = keys.front();
    if (walkedColumn_ != column || !cells_->walked.contains(key)) FetchColumn(keys, column);
    const auto found = cells_->walked.find(key);
    if (found == cells_->walked.end()) throw Error(kRowWasDeleted);
    walkedKey_ = key;
    return found->second;
}

void SqlTable::FetchColumn(std::span<const std::int64_t> keys, std::size_t column) {
    static const std::string marks = ReplaceAll(std::string(kRowsAhead, '?'), "?", ",?").substr(1);
    walkedColumn_.reset();
    cells_->walked.clear();
    QVariantList wanted;
    for (std::size_t i = 0; i < kRowsAhead; ++i)
        wanted.append(KeyOf(keys[std::min(i, keys.size() - 1)]));
    QSqlQuery& query = session_->SelectPrepared(
        "SELECT `ID`," + QuotedName((*columns_)[column].name) + " FROM " + quotedName_ + " WHERE `ID` IN (" + marks + ")",
        wanted);
    while (session_->Next(query))
        cells_->walked.emplace(query.value(0).toLongLong(), query.value(1));
    query.finish();
    walkedColumn_ = column;
}

Value SqlTable::Default(std::size_t column) {
    if (cells_->defaults.empty()) ReadDefaults();
    return FromStored(cells_->defaults[column], (*columns_)[column].kind);
}

void SqlTable::ReadDefaults() {
    QSqlQuery texts = session_->Select("SELECT ifnull(dflt_value,'NULL') FROM pragma_table_info('" +
                                       ReplaceAll(name_, "'", "''") + "') ORDER BY cid");
    std::string list;
    while (session_->Next(texts))
        list += (list.empty() ? "(" : ",(") + texts.value(0).toString().toStdString() + ')';
    QSqlQuery values = session_->Select("SELECT " + list);
    session_->Next(values);
    for (std::size_t i = 0; i < columns_->Size(); ++i)
        cells_->defaults.push_back(values.value(static_cast<int>(i)));
}

std::int64_t SqlTable::Insert(const std::vector<SqlChange>& changes) {
    const QVariantList values = PendingValues(changes);
    std::string marks;
    for (qsizetype i = 0; i < values.size(); ++i)
        marks += i == 0 ? "?" : ",?";
    const std::string row = marks.empty() ? " DEFAULT VALUES" : " (" + PendingNames(changes, "") + ") VALUES (" + marks + ")";
    return session_->Change("INSERT INTO " + quotedName_ + row, values).insertedId;
}

void SqlTable::Update(std::int64_t key, const std::vector<SqlChange>& changes) {
    QVariantList values = PendingValues(changes);
    values.append(KeyOf(key));
    const auto changed =
        session_->Change("UPDATE " + quotedName_ + " SET " + PendingNames(changes, "=?") + " WHERE `ID`=?", values);
    if (changed.rows == 0) throw RowGoneError(kRowIsGone);
}

void SqlTable::Delete(std::int64_t key) {
    if (session_->Change("DELETE FROM " + quotedName_ + " WHERE `ID`=?", {KeyOf(key)}).rows == 0) throw Error(kRowIsGone);
}

}  // namespace korvane
