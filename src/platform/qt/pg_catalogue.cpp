// What a PostgreSQL session knows of the tables.
#include <QtCore/QVariant>
#include <QtSql/QSqlQuery>

#include "platform/qt/pg_session.h"
#include "platform/qt/pg_text.h"
#include "platform/qt/sql_text.h"

namespace korvane {

bool PgSession::HasTable(const std::string& name) {
    return !Answer("SELECT to_regclass(" + PgLiteral(PgName(schema_) + "." + PgName(name)) + ")::text").isNull();
}

std::shared_ptr<const SqlColumns> PgSession::ReadColumns(const std::string& table) {
    QSqlQuery query =
        Ask("SELECT attname, atttypid::regtype::text FROM pg_attribute WHERE attrelid = " + PgLiteral(PgName(table)) +
            "::regclass AND attnum > 0 AND NOT attisdropped ORDER BY attnum");
    std::vector<SqlColumn> columns;
    while (Next(query)) {
        const std::string name = query.value(0).toString().toStdString(), type = query.value(1).toString().toStdString();
        auto kind = KindOf()(table, name);
        if (!kind && type == "boolean") kind = ColumnKind::YesNo;
        const bool isMoment = type == "timestamp without time zone";
        if (!kind && isMoment) kind = ColumnKind::DateTime;
        // The driver would lose moments in the hour that the change to summer time leaves out. Under its own name the text would
        // be what an order means.
        columns.push_back({name, kind, QuotedName(name) + (isMoment ? "::text AS moment" : "")});
    }
    return std::make_shared<SqlColumns>(std::move(columns));
}

std::string PgSession::ReadKey(const std::string& table) {
    QSqlQuery query = Ask(
        "SELECT attname FROM pg_index JOIN pg_attribute ON attrelid = indrelid AND attnum = ANY(indkey) WHERE indisprimary AND "
        "indrelid = " +
        PgLiteral(PgName(table)) + "::regclass ORDER BY array_position(indkey, attnum)");
    std::string key;
    while (Next(query))
        key += (key.empty() ? "" : ",") + QuotedName(query.value(0).toString().toStdString());
    return key.empty() ? "1" : key;
}

std::vector<QVariant> PgSession::DefaultsOf(const std::string& table) {
    QSqlQuery texts = Ask(
        "SELECT coalesce(pg_get_expr(adbin, adrelid), 'NULL') FROM pg_attribute LEFT JOIN pg_attrdef ON adrelid = attrelid AND "
        "adnum = attnum WHERE attrelid = " +
        PgLiteral(PgName(table)) + "::regclass AND attnum > 0 AND NOT attisdropped ORDER BY attnum");
    std::string list;
    while (Next(texts))
        list += (list.empty() ? "(" : ",(") + texts.value(0).toString().toStdString() + ')';
    QSqlQuery values = Ask("SELECT " + list);
    Next(values);
    return ColumnsOf(table)->ValuesIn(values);
}

}  // namespace korvane
