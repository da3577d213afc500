// Port: programs of the system, started and left to themselves.
#pragma once

#include <string>

namespace korvane {

enum class WindowStyle { Hidden = 0, Normal = 1 };

class Processes {
public:
    virtual ~Processes() = default;

    /// Starts a command line and returns at once with its process id, or 0 when the system gave none. The command reads nothing, what it prints is dropped,
    /// it outlives this program (unless a service manager ends it together with the service), and nothing of it is left behind when it ends. A line with quotes, variables, pipes or
    /// other signs of the shell goes to the shell; a plain one is started directly, so that a program that is not there throws Error
    /// with the reason; words that only a shell knows (cd, exec) are not there. `style` matters only where a program has a window of its own.
    virtual int Shell(const std::string& command, WindowStyle style) = 0;
};

}  // namespace korvane
