// Texts of the help menu about restarting computers: this one by a failing entry's own command, and others in the same way.
#pragma once

#include <string>

#include "platform/files.h"

namespace korvane {

/// Explains how to restart this computer when a server fails. Reads the disk to find the command.
std::string ShutdownHelp(Files& files);

/// Explains what must be set so that the program starts again after a restart.
std::string RestartHelp();

/// Explains how to restart another computer.
std::string ShutdownRemoteHelp();

}  // namespace korvane
