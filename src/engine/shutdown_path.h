// Finds this machine's `shutdown` command, which the editor offers as the command that restarts the machine.
#pragma once

#include <string>

#include "platform/files.h"

namespace korvane {

/// Returns the first existing path among those that distributions use, or the usual one when none exists. Reads the disk, throws
/// nothing.
std::string getShudownEXEPath(Files& files);

}  // namespace korvane
