// Delivers signals as events of the pump: a request to end the program, or to pause its work and to resume it.
#pragma once

#include <functional>
#include <memory>

#include "platform/events.h"

namespace korvane {

class TerminationSignals {
public:
    /// Calls `asked` from the event pump at each SIGTERM, SIGINT and SIGHUP. Only one object may exist at a time in a process;
    /// its end restores the default effect of the signals. Throws Error when the system cannot create a pipe.
    TerminationSignals(Events& events, std::function<void()> asked);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    /// Calls `asked` at once if a signal has come; for work during which the pump delivers nothing.
    void Look();

private:
    std::function<void()> asked_;
    std::unique_ptr<Events::Watch> watch_;
};

class PauseSignals {
public:
    /// Calls `pause` from the event pump at each SIGUSR1 and `goOn` at each SIGUSR2, in the order in which they came. Otherwise
    /// like TerminationSignals.
    PauseSignals(Events& events, std::function<void()> pause, std::function<void()> goOn);
    ~PauseSignals();
    PauseSignals(const PauseSignals&) = delete;
    PauseSignals& operator=(const PauseSignals&) = delete;

private:
    std::unique_ptr<Events::Watch> watch_;
};

/// From now on, writing to a pipe or socket without a reader is an error of the write instead of the end of the program.
void IgnoreBrokenPipes();

}  // namespace korvane
