// Compaction of a database file: checks it, makes a copy to keep, and compacts the file itself.
#pragma once

#include <functional>
#include <string>

#include "platform/qt/sql_session.h"

namespace korvane {

/// Like Store::Compact, for the file of the session.
void CompactDatabase(SqlSession& session, const std::string& copy, const std::function<void()>& copied);

}  // namespace korvane
