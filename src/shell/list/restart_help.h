// What the help menu says of restarting computers: this one by a failing entry's own command, and others the same way.
#pragma once

#include <string>

#include "platform/files.h"

namespace korvane {

/// How this computer is restarted when a server fails. Looks at the disk for the command.
std::string ShutdownHelp(Files& files);

/// What has to be set so that the program comes back after a restart.
std::string RestartHelp();

/// How another computer is restarted.
std::string ShutdownRemoteHelp();

}  // namespace korvane
