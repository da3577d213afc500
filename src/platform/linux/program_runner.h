// Runs a program of the system to its end, for its exit status and what it says, while the event pump goes on.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/events.h"

namespace korvane {

struct ProgramResult {
    int status = 0;      ///< as its exit gave it; 128 and the signal's number when a signal ended it
    std::string output;  ///< standard output and standard error as they came, the first 64 KiB
};

/// Throws Error when the program cannot be started, and when it has not ended within the limit, in which case it is ended with
/// all that it started.
using RunProgram = std::function<ProgramResult(const std::vector<std::string>& words, std::chrono::milliseconds limit)>;

/// Of real programs, found in PATH when the first word has no slash. They read nothing. The event pump runs meanwhile. Both must
/// outlive the function.
RunProgram ProgramRunner(Events& events, const Clock& clock);

}  // namespace korvane
