// The file of an SQLite database, looked at before the library opens it.
#pragma once

#include <string>

#include "platform/connection.h"

class QString;

namespace korvane {

DamagedError NoDatabaseError(const std::string& path);
Error CannotReadError(const std::string& path, int problem);

/// Throws Error for a file that is no SQLite database. SQLite would take an empty file for a new database, and would roll an old
/// journal back into a file that has replaced its own.
void CheckMagic(const std::string& path);

/// Returns the form of the path that demands that the file exists; in Qt, only a URI can.
QString UriOf(const std::string& path);

}  // namespace korvane
