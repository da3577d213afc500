// The column values of a new server entry: an example, "UP", without any checks so far.
#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "base/datetime.h"
#include "base/value.h"

namespace korvane {

/// Names reserved for examples (RFC 2606); the first has a page.
inline constexpr std::string_view kSampleWebHost = "www.example.com";
inline constexpr std::string_view kSampleMailHost = "mail.example.com";

/// Values by column name, in the order in which they are stored.
using ColumnValues = std::vector<std::pair<std::string_view, Value>>;

/// `own` has the values that depend on how the entry is created (id, group, e-mail and interval); the common values of every new
/// entry follow. Its next check is at `now`.
ColumnValues FreshEntry(ColumnValues own, DateTime now);

}  // namespace korvane
