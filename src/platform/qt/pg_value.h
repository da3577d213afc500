// A value within a statement.
#pragma once

#include <string>

class QVariant;

namespace korvane {

/// Returns the value as it is written in PostgreSQL.
std::string PgValue(const QVariant& value);

}  // namespace korvane
