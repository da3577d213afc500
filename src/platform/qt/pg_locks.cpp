// What instances at one list share through a PostgreSQL session: its advisory locks, and the server's clock.
#include <QtCore/QVariant>
#include <QtSql/QSqlQuery>

#include "platform/qt/pg_session.h"
#include "platform/qt/pg_text.h"

namespace korvane {

std::string PgSession::LockOf(const std::string& what, std::int64_t id) const {
    return "hashtextextended(" + PgLiteral("korvane " + schema_ + " " + what) + ", " + std::to_string(id) + ")";
}

bool PgSession::TryLockRow(const std::string& table, std::int64_t id) {
    return Answer("SELECT pg_try_advisory_lock(" + LockOf("row " + table, id) + ")").toBool();
}

void PgSession::UnlockRow(const std::string& table, std::int64_t id) {
    Ask("SELECT pg_advisory_unlock(" + LockOf("row " + table, id) + ")");
}

bool PgSession::TryTakeDuty(const std::string& name) {
    return Answer("SELECT pg_try_advisory_lock(" + LockOf("duty " + name, 0) + ")").toBool();
}

void PgSession::ReleaseDuty(const std::string& name) {
    Ask("SELECT pg_advisory_unlock(" + LockOf("duty " + name, 0) + ")");
}

std::optional<DateTime> PgSession::Now() {
    const QVariant now =
        Answer("SELECT to_char(clock_timestamp() AT TIME ZONE (SELECT strZone FROM KorvaneList), 'YYYY-MM-DD HH24:MI:SS')");
    return DateTime::FromStored(now.toString().toStdString());
}

std::string PgSession::Server() {
    return Shown() + ", PostgreSQL " + Answer("SELECT current_setting('server_version')").toString().toStdString();
}

void PgSession::FollowIds(const std::string& table) {
    const std::string name = PgName(table);
    Ask("SELECT setval(pg_get_serial_sequence(" + PgLiteral(name) + ", 'id'), (SELECT greatest(max(id), 1) FROM " + name + "))");
}

}  // namespace korvane
