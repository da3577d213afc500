// Delivers signals as events of the pump: a request to end the program, or to pause its work and to resume it.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/events.h"
#include "platform/linux/descriptor.h"

namespace korvane {

/// Signals that are noted when they come and taken later. Only one object of each kind may exist at a time in a process; its end
/// restores the default effect of the signals. The constructors throw Error when the system cannot create a pipe.
class NotedSignals {
public:
    NotedSignals(const NotedSignals&) = delete;
    NotedSignals& operator=(const NotedSignals&) = delete;

protected:
    /// Calls `came` from the event pump while there are some.
    NotedSignals(Events& events, std::vector<int> numbers, std::function<void()> came);
    ~NotedSignals();

    /// Takes the oldest; returns its number, 0 when there is none.
    int Take() const;

private:
    std::vector<int> numbers_;
    Descriptor read_;
    Descriptor write_;
    std::unique_ptr<Events::Watch> watch_;
};

class TerminationSignals : NotedSignals {
public:
    /// Calls `asked` from the event pump after SIGTERM, SIGINT and SIGHUP.
    TerminationSignals(Events& events, std::function<void()> asked);

    /// Calls `asked` at once if a signal has come; for work during which the pump delivers nothing.
    void Look() const;

private:
    std::function<void()> asked_;
};

class PauseSignals : NotedSignals {
public:
    /// Calls `pause` from the event pump at each SIGUSR1 and `goOn` at each SIGUSR2, in the order in which they came.
    PauseSignals(Events& events, std::function<void()> pause, std::function<void()> goOn);
};

}  // namespace korvane
