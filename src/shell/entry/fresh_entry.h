// What the columns of a server entry hold that nobody has edited yet: an example, up, without any checks behind it.
#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "base/datetime.h"
#include "base/value.h"

namespace korvane {

/// Names that are reserved for examples (RFC 2606); the first has a page.
inline constexpr std::string_view kSampleWebHost = "www.example.com";
inline constexpr std::string_view kSampleMailHost = "mail.example.com";

/// By the name of the column, in the order in which they are stored.
using ColumnValues = std::vector<std::pair<std::string_view, Value>>;

/// `own` (id, group, e-mail and interval, by the way in which the entry comes), followed by what every fresh entry has. It is
/// checked next at `now`.
ColumnValues FreshEntry(ColumnValues own, DateTime now);

}  // namespace korvane
