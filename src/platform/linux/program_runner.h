// The only way to start a program, one of the system or this one: as a child process that is left to itself, or to its end while the
// event pump runs.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/events.h"
#include "platform/linux/descriptor.h"

namespace korvane {

/// The standard files of a new process; -1 is /dev/null.
struct StandardFiles {
    int input = -1;
    int output = -1;
    int errors = -1;
};

/// Starts `file`, or else the program named by the first word, which is searched in PATH when it has no slash. The new process gets
/// nothing of this one but its folder and environment: it leads a session of its own, with the default signals and no open files
/// but `files`. The caller must reap it. Returns the error number, 0 when it runs as `pid`.
int Spawn(std::vector<std::string> words, pid_t& pid, const StandardFiles& files = {}, const std::string& file = "");

/// Does the same and returns the process. Throws Error: "<program>: <reason>".
pid_t StartProgram(const std::vector<std::string>& words, const StandardFiles& files = {}, const std::string& file = "");

/// Returns a descriptor that is readable when the process has ended; empty if the kernel is older than 5.3 or forbids it.
Descriptor OpenProcess(pid_t pid);

struct ProgramResult {
    int status = 0;      ///< its exit status; 128 plus the signal number when a signal ended it
    std::string output;  ///< standard output and standard error together, the first 64 KiB
};

/// Throws Error when the program cannot be started, or when it has not ended within the limit; it is then killed with everything
/// that it started.
using RunProgram = std::function<ProgramResult(const std::vector<std::string>& words, std::chrono::milliseconds limit)>;

/// Returns a function that runs real programs. The event pump runs meanwhile. Both arguments must outlive the function.
RunProgram ProgramRunner(Events& events, const Clock& clock);

}  // namespace korvane
