// Compaction of a database file: its check, a copy to keep, and the file itself.
#pragma once

#include <functional>
#include <string>

#include "platform/qt/sql_session.h"

namespace korvane {

/// As Store::Compact, for the file of the session.
void CompactDatabase(SqlSession& session, const std::string& copy, const std::function<void()>& copied);

}  // namespace korvane
