// Runs a program of the system to its end and returns its exit status and output, while the event pump runs.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/events.h"

namespace korvane {

struct ProgramResult {
    int status = 0;      ///< its exit status; 128 plus the signal number when a signal ended it
    std::string output;  ///< standard output and standard error together, the first 64 KiB
};

/// Throws Error when the program cannot be started, or when it has not ended within the limit; it is then killed with everything
/// that it started.
using RunProgram = std::function<ProgramResult(const std::vector<std::string>& words, std::chrono::milliseconds limit)>;

/// Returns a function that runs real programs, which are searched in PATH when the first word has no slash. They have no input.
/// The event pump runs meanwhile. Both arguments must outlive the function.
RunProgram ProgramRunner(Events& events, const Clock& clock);

}  // namespace korvane
