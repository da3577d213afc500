// A start of this program for one command: it reads or changes a home, and ends.
#pragma once

namespace korvane {

/// Returns whether the command line asks for a command.
bool IsCommand(int argc, char** argv);

/// Returns the exit status.
int RunCommand(int argc, char** argv);

}  // namespace korvane
