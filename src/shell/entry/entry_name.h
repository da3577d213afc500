// The server name of an entry has no scheme: what the editor removes from it while the user types, and what saving removes.
#pragma once

#include <optional>
#include <string>

namespace korvane {

/// While the user types: removes a leading http://, https:// or ftp:// in any case, and spaces around the name.
std::string CleanTypedName(const std::string& typed);

/// At saving only lower-case beginnings count: "http" and "ftp:".
bool BeginsWithScheme(const std::string& name);
/// Removes all lower-case http://, https:// and ftp://, wherever they are.
std::string WithoutSchemes(std::string name);

/// Returns the replacement for a time-out that is below one second or not a number; nothing if the time-out is valid.
std::optional<std::string> MendedTimeout(const std::string& typed);

}  // namespace korvane
