#include "platform/qt/sql_rows.h"

#include <QtSql/QSqlRecord>

#include "base/error.h"

namespace korvane {

KeysetRows::KeysetRows(SqlSession& session, const SelectText& select, SqlTable& table) : table_(table) {
    QSqlQuery query = session.Select(select.Selecting("`ID`"));
    while (session.Next(query))
        keys_.push_back(query.value(0).toLongLong());
}

StaticRows::StaticRows(SqlSession& session, const SelectText& select) {
    QSqlQuery query = session.Select(select.IsOneTable() ? select.Selecting("*") : select.query);
    columns_ = std::make_shared<SqlColumns>(query.record(), select.table, session.KindOf());
    while (session.Next(query)) {
        std::vector<QVariant>& row = rows_.emplace_back();
        row.reserve(columns_->Size());
        for (std::size_t i = 0; i < columns_->Size(); ++i)
            row.push_back(query.value(static_cast<int>(i)));
    }
}

std::int64_t StaticRows::Key() const {
    const auto id = columns_->Find("ID");
    if (!id) throw Error("The rows of this query have no ID, so they cannot be changed.");
    return rows_[at_ - 1][*id].toLongLong();
}

}  // namespace korvane
