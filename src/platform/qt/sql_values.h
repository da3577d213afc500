// Conversion of values to and from the file.
#pragma once

#include <optional>

#include "base/value.h"
#include "platform/connection.h"

class QVariant;

namespace korvane {

/// Returns what a column of this kind stores for a value. Throws TypeMismatchError and OverflowError.
Value ForColumn(const Value& value, std::optional<ColumnKind> kind);

/// Returns the value in the driver's form.
QVariant ToBind(const Value& value);

/// Converts a stored value to the kind of its column. A stored value that does not fit the kind, which only another program can
/// have written, is returned as text, so that the conversion fails where the value is needed.
Value FromStored(const QVariant& stored, std::optional<ColumnKind> kind);

}  // namespace korvane
