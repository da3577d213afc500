// Port: the event pump of the one thread. Timers, sockets, signals and window commands are delivered only inside its calls, so a
// routine that waits through it keeps the rest of the program alive, and a routine that does not call it is never interrupted.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace korvane {

class Events {
public:
    virtual ~Events() = default;

    /// Delivers what is pending and returns. Never blocks.
    virtual void DoEvents() = 0;

    /// Delivers what is pending; with nothing pending sleeps until the next event, delivers it and returns, or returns
    /// when `limit` has passed. May return early without an event, so callers look at their condition and their clock again.
    virtual void WaitForEvent(std::chrono::milliseconds limit) = 0;

    /// Stands still for the whole time: nothing is delivered meanwhile.
    virtual void Sleep(std::chrono::milliseconds time) = 0;

    /// A descriptor is watched as long as this object lives.
    class Watch {
    public:
        virtual ~Watch() = default;
    };

    /// Calls `readable` from the pump whenever the descriptor can be read (level-triggered). For adapters that bring descriptors
    /// of their own; the descriptor must outlive the watch. The rooms do not use it.
    virtual std::unique_ptr<Watch> WatchReadable(int descriptor, std::function<void()> readable) = 0;
};

}  // namespace korvane
