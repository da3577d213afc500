// Signals as events of the pump: somebody wants the program to end, or its work to pause and to go on.
#pragma once

#include <functional>
#include <memory>

#include "platform/events.h"

namespace korvane {

class TerminationSignals {
public:
    /// Calls `asked` from the event pump at each SIGTERM, SIGINT and SIGHUP. One object at a time in a process; the signals have
    /// their default effect again after its end. Throws Error when the system gives no pipe.
    TerminationSignals(Events& events, std::function<void()> asked);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    /// Calls `asked` right now if a signal has come, for work during which the pump delivers nothing.
    void Look();

private:
    std::function<void()> asked_;
    std::unique_ptr<Events::Watch> watch_;
};

class PauseSignals {
public:
    /// Calls `pause` from the event pump at each SIGUSR1, `goOn` at each SIGUSR2, in the order in which they came. The rest as
    /// above.
    PauseSignals(Events& events, std::function<void()> pause, std::function<void()> goOn);
    ~PauseSignals();
    PauseSignals(const PauseSignals&) = delete;
    PauseSignals& operator=(const PauseSignals&) = delete;

private:
    std::unique_ptr<Events::Watch> watch_;
};

/// Writing to a pipe or socket whose reader is gone becomes an error of the write instead of the end of the program.
void IgnoreBrokenPipes();

}  // namespace korvane
