// Where this machine's `shutdown` command is: what the editor offers as the command that restarts it.
#pragma once

#include <string>

#include "platform/files.h"

namespace korvane {

/// The first of the places where distributions keep it that exists; the usual one when none does. Looks at the disk, throws
/// nothing.
std::string getShudownEXEPath(Files& files);

}  // namespace korvane
