#include "platform/qt/sql_session.h"

#include <QtCore/QVariant>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>
#include <utility>

#include "platform/qt/sql_text.h"

namespace korvane {

SqlSession::SqlSession(std::string path, ColumnKindOf kindOf) : path_(std::move(path)), kindOf_(std::move(kindOf)) {}

QSqlQuery SqlSession::Select(const std::string& sql) {
    return Select(sql, {});
}

bool SqlSession::Next(QSqlQuery& query) {
    if (query.next()) return true;
    if (query.lastError().isValid()) FailOf(query);
    return false;
}

std::shared_ptr<const SqlColumns> SqlSession::ColumnsOf(const std::string& table) {
    auto& columns = columns_[table];
    if (!columns) columns = ReadColumns(table);
    return columns;
}

const std::string& SqlSession::KeyOf(const std::string& table) {
    std::string& key = keys_[table];
    if (key.empty()) key = ReadKey(table);
    return key;
}

// An index would return its own order.
void SqlSession::CompleteOrder(SelectText& select) {
    if (select.LacksOrder()) select.OrderBy(KeyOf(select.table));
}

}  // namespace korvane
