// Every address on the web, and of mail, that the program speaks of. The host is reserved for documentation until there is a real one.
#pragma once

#include <string_view>

namespace korvane {

inline constexpr std::string_view kDatabaseHelpAddress = "https://www.example.com/korvane/database-help.htm";

/// The mailbox of those who make this program.
inline constexpr std::string_view kContactAddress = "korvane@example.com";

}  // namespace korvane
