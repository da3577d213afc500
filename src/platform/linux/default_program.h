// What the person at the desk has chosen to open a kind of file with: the desktop's own lists, as "Association between MIME types
// and applications" 1.0.1 of freedesktop.org has them.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace korvane {

/// The value of a variable of the environment, blank when there is none.
using Environment = std::function<std::string(const std::string& name)>;
std::string EnvironmentVariable(const std::string& name);

constexpr std::string_view kPageKind = "text/html";

/// The MIME type of files with this extension (any case, no dot); blank for extensions that this program does not open.
std::string KindOfFile(std::string_view extension);

/// The desktop entry ("firefox.desktop") that opens files of this MIME type: the first one named that is installed. Blank when
/// there is none.
std::string DefaultDesktopEntry(std::string_view kind, const Environment& environment);

}  // namespace korvane
