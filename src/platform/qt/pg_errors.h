// What goes wrong with a PostgreSQL server, in words without secrets.
#pragma once

#include <string>

#include "base/error.h"
#include "platform/connection.h"
#include "platform/qt/pg_address.h"

class QSqlError;

namespace korvane {

constexpr const char* kNoPgDriver =
    "The setting Database needs Qt's driver for PostgreSQL, which is not installed: it is in the package libqt6sql6-psql.";

/// Throws Error when the driver is not installed.
void RequirePgDriver();

/// The ID of a new row is in use.
class PgTakenError : public Error {
public:
    using Error::Error;
};

ServerAwayError PgConnectError(const PgAddress& address, const QSqlError& error);

/// Returns whether the connection was lost.
bool IsLost(const QSqlError& error);

/// `cut`: this program gave the connection up, since the server did not answer.
[[noreturn]] void ThrowPgError(const PgAddress& address, const QSqlError& error, bool cut);

}  // namespace korvane
