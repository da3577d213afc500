// SIGTERM, SIGINT and SIGHUP as one event of the pump: somebody wants the program to end.
#pragma once

#include <functional>
#include <memory>

#include "platform/events.h"

namespace korvane {

class TerminationSignals {
public:
    /// Calls `asked` from the event pump at each of the signals. One object at a time in a process; the signals have their default effect again
    /// after its end. Throws Error when the system gives no pipe.
    TerminationSignals(Events& events, std::function<void()> asked);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

private:
    std::unique_ptr<Events::Watch> watch_;
};

/// Writing to a pipe or socket whose reader is gone becomes an error of the write instead of the end of the program.
void IgnoreBrokenPipes();

}  // namespace korvane
