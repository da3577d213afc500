// A start of this program by itself: it does one piece of work for the program that started it, and ends with it at the latest.
#pragma once

namespace korvane {

/// Returns whether the command line asks for such a piece of work.
bool IsErrand(int argc, char** argv);

/// Returns the exit status: 0 when the work was done, whatever came of it.
int RunErrand(int argc, char** argv);

}  // namespace korvane
