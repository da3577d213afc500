// Finds the program that the user has chosen for a kind of file, in the desktop's own lists according to "Association between
// MIME types and applications" 1.0.1 of freedesktop.org.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace korvane {

/// Returns the value of an environment variable, empty when it is not set.
using Environment = std::function<std::string(const std::string& name)>;
std::string EnvironmentVariable(const std::string& name);

constexpr std::string_view kPageKind = "text/html";

/// Returns the MIME type of files with this extension (any case, no dot), empty for extensions that this program does not open.
std::string KindOfFile(std::string_view extension);

/// Returns the desktop entry ("firefox.desktop") that opens files of this MIME type: the first listed one that is installed.
/// Empty when there is none.
std::string DefaultDesktopEntry(std::string_view kind, const Environment& environment);

}  // namespace korvane
