// Values on their way in and out of the file.
#pragma once

#include <optional>

#include "base/value.h"
#include "platform/connection.h"

class QVariant;

namespace korvane {

/// What a column of this kind keeps of a value that is written to it. Throws TypeMismatchError and OverflowError.
Value ForColumn(const Value& value, std::optional<ColumnKind> kind);

/// The value as the driver takes it.
QVariant ToBind(const Value& value);

/// What the file holds as its column has it. A stored value that does not fit the kind, which only another program can have left
/// there, comes as its text, so that the conversion of whoever needs it raises.
Value FromStored(const QVariant& stored, std::optional<ColumnKind> kind);

}  // namespace korvane
