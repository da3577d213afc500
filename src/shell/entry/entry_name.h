// The server name of an entry goes without a scheme: what the editor takes away while it is typed, and what saving takes away.
#pragma once

#include <optional>
#include <string>

namespace korvane {

/// As it is typed: without http://, https:// and ftp:// in any case where it begins with one, and without blanks around it.
std::string CleanTypedName(const std::string& typed);

/// At saving only lower-case beginnings count: "http" and "ftp:".
bool BeginsWithScheme(const std::string& name);
/// Without all lower-case http://, https:// and ftp:// in it.
std::string WithoutSchemes(std::string name);

/// What takes the place of a time-out that is below one second or no number; nothing for one that may stay.
std::optional<std::string> MendedTimeout(const std::string& typed);

}  // namespace korvane
