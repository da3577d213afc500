// Safeguard HTTPStatusFails: which status codes of a web server (RFC 9110, section 15) make a check fail.
#pragma once

#include <string>
#include <string_view>

namespace korvane {

inline constexpr std::string_view kHttpStatusFails = "HTTPStatusFails";

/// The key of an entry's own list of statuses that count as good.
inline constexpr std::string_view kHttpStatusGood = "HTTPStatusGood";

/// Returns whether the text is such a list: numbers from 100 to 599 with "," between them, or nothing.
bool IsStatusList(std::string_view text);

/// Returns whether the list names the status. A text that is no list names none.
bool NamesStatus(std::string_view list, int status);

/// Returns why a check that got this status failed.
std::string StatusReason(int status);

}  // namespace korvane
