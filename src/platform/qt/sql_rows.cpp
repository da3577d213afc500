#include "platform/qt/sql_rows.h"

#include <QtCore/QVariant>
#include <QtSql/QSqlQuery>
#include <QtSql/QSqlRecord>

#include "base/error.h"

namespace korvane {

namespace {

// Moments in the stored form become "?", so that a query that differs from the last one only in its moment is not parsed again.
QVariantList TakeMoments(std::string& sql) {
    constexpr std::size_t kQuotedLength = sizeof "'2026-11-21 15:04:05'" - 1;
    QVariantList moments;
    for (std::size_t at = sql.find('\''); at != std::string::npos;) {
        const std::size_t end = sql.find('\'', at + 1);
        if (end == std::string::npos) break;
        const std::string text = sql.substr(at + 1, end - at - 1);
        const bool isMoment = end - at + 1 == kQuotedLength && DateTime::FromStored(text).has_value();
        if (isMoment) {
            moments.append(QString::fromStdString(text));
            sql.replace(at, kQuotedLength, "?");
        }
        at = sql.find('\'', isMoment ? at + 1 : end + 1);
    }
    return moments;
}

}  // namespace

KeysetRows::KeysetRows(SqlSession& session, const SelectText& select, SqlTable& table) : table_(table) {
    std::string sql = select.Selecting("`ID`");
    const QVariantList moments = sql.find('?') == std::string::npos ? TakeMoments(sql) : QVariantList();
    QSqlQuery& query = session.SelectPrepared(sql, moments);
    while (session.Next(query))
        keys_.push_back(query.value(0).toLongLong());
    query.finish();
}

struct StaticRows::Copies : std::vector<std::vector<QVariant>> {};

StaticRows::StaticRows(SqlSession& session, const SelectText& select) : rows_(std::make_unique<Copies>()) {
    QSqlQuery query = session.Select(select.IsOneTable() ? select.Selecting("*") : select.query);
    columns_ = std::make_shared<SqlColumns>(query.record(), select.table, session.KindOf());
    while (session.Next(query)) {
        std::vector<QVariant>& row = rows_->emplace_back();
        row.reserve(columns_->Size());
        for (std::size_t i = 0; i < columns_->Size(); ++i)
            row.push_back(query.value(static_cast<int>(i)));
    }
}

StaticRows::~StaticRows() = default;

int StaticRows::Count() const {
    return static_cast<int>(rows_->size());
}

bool StaticRows::Next() {
    return at_ < rows_->size() && ++at_ > 0;
}

Value StaticRows::Read(std::size_t column) {
    return FromStored((*rows_)[at_ - 1][column], (*columns_)[column].kind);
}

std::int64_t StaticRows::Key() const {
    const auto id = columns_->Find("ID");
    if (!id) throw Error("The rows of this query have no ID, so they cannot be changed.");
    return (*rows_)[at_ - 1][*id].toLongLong();
}

}  // namespace korvane
