// The tables on the server: made by the instance that comes first, while others wait, and brought up to date by a later version.
#pragma once

#include <string>

namespace korvane {

class PgSession;

/// Makes what is missing of the tables that `statements` create in SQLite, and returns the list's own identifier. Throws Error
/// when the database holds tables of another program; it is then untouched.
std::string PreparePgSchema(PgSession& session, const std::string& statements);

}  // namespace korvane
