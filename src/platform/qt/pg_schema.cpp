#include "platform/qt/pg_schema.h"

#include <QtCore/QTimeZone>
#include <QtCore/QVariant>
#include <QtSql/QSqlQuery>
#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "base/error.h"
#include "platform/qt/pg_session.h"
#include "platform/qt/pg_text.h"

namespace korvane {
namespace {

/// Marks the tables as this program's. Its one row: which list this is, and the time zone of its moments.
const std::string kListTable = "korvanelist";
const std::string kCreateList =
    "CREATE TABLE IF NOT EXISTS KorvaneList (strList TEXT NOT NULL, strZone TEXT NOT NULL, dtMade TIMESTAMP(0) NOT NULL)";

using Present = std::map<std::string, std::set<std::string>>;  // columns by table

Present ReadPresent(PgSession& session, const std::vector<PgTable>& tables) {
    std::string names = PgLiteral(kListTable);
    for (const PgTable& table : tables)
        names += "," + PgLiteral(table.name);
    QSqlQuery columns = session.Ask(
        "SELECT relname::text, attname::text FROM pg_class c JOIN pg_attribute ON attrelid = c.oid WHERE attnum > 0 AND NOT "
        "attisdropped AND relnamespace = current_schema()::regnamespace AND relname IN (" +
        names + ")");
    Present present;
    while (session.Next(columns))
        present[columns.value(0).toString().toStdString()].insert(columns.value(1).toString().toStdString());
    return present;
}

bool IsComplete(const Present& present, const std::vector<PgTable>& tables) {
    return present.contains(kListTable) && std::all_of(tables.begin(), tables.end(), [&](const PgTable& table) {
               const auto there = present.find(table.name);
               return there != present.end() && std::all_of(table.columns.begin(), table.columns.end(), [&](const auto& column) {
                          return there->second.contains(column.first);
                      });
           });
}

void RefuseTablesOfOthers(const PgSession& session, const Present& present) {
    if (present.empty() || present.contains(kListTable)) return;
    throw Error("The database " + session.Shown() + " holds a table '" + present.begin()->first +
                "' of another program. It was left untouched.");
}

// The machine's zone, if the server knows it.
std::string ZoneQuery() {
    const std::string own = PgLiteral(QTimeZone::systemTimeZoneId().toStdString());
    return "coalesce((SELECT name FROM pg_timezone_names WHERE name = " + own + "), current_setting('TimeZone'))";
}

void Make(PgSession& session, const std::vector<PgTable>& tables, const std::string& statements) {
    session.Ask("CREATE EXTENSION IF NOT EXISTS citext");
    session.Ask(kCreateList);
    session.Ask(
        "INSERT INTO KorvaneList SELECT gen_random_uuid()::text, zone, clock_timestamp() AT TIME ZONE zone FROM (SELECT " +
        ZoneQuery() + " AS zone) z WHERE NOT EXISTS (SELECT 1 FROM KorvaneList)");
    const std::vector<std::string> definitions = PgDefinitions(statements);
    const auto run = [&](bool areTables) {
        for (const std::string& definition : definitions)
            if (definition.starts_with("CREATE TABLE") == areTables) session.Ask(definition);
    };
    run(true);
    for (const PgTable& table : tables)
        for (const auto& [name, definition] : table.columns)
            session.Ask("ALTER TABLE " + PgName(table.name) + " ADD COLUMN IF NOT EXISTS " + definition);
    run(false);
}

}  // namespace

std::string PreparePgSchema(PgSession& session, const std::string& statements) {
    const std::vector<PgTable> tables = PgTables(statements);
    if (!IsComplete(ReadPresent(session, tables), tables)) {
        session.Begin();
        session.Ask("SELECT pg_advisory_xact_lock(hashtextextended('korvane schema', 0))");
        const Present present = ReadPresent(session, tables);
        RefuseTablesOfOthers(session, present);
        if (!IsComplete(present, tables)) Make(session, tables, statements);
        session.Commit();
    }
    return session.Answer("SELECT strList FROM KorvaneList").toString().toStdString();
}

}  // namespace korvane
