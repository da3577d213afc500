// Every address on the web that the program speaks of. The host is reserved for documentation until there is a real one.
#pragma once

#include <string_view>

namespace korvane {

inline constexpr std::string_view kDatabaseHelpAddress = "https://www.example.com/korvane/database-help.htm";

}  // namespace korvane
