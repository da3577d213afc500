// Port: the event pump of the only thread. Timers, sockets, signals and window commands are delivered only inside its calls: a
// routine that waits through the pump keeps the rest of the program running, and a routine that does not call it is never
// interrupted.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace korvane {

class Events {
public:
    virtual ~Events() = default;

    /// Delivers pending events and returns. Never blocks.
    virtual void DoEvents() = 0;

    /// Delivers pending events. If there are none, sleeps until the next event, delivers it and returns, or returns after
    /// `limit`. May return early without an event, so callers must check their condition and their clock again.
    virtual void WaitForEvent(std::chrono::milliseconds limit) = 0;

    /// Blocks for the whole time; no events are delivered meanwhile.
    virtual void Sleep(std::chrono::milliseconds time) = 0;

    /// Watches a descriptor for as long as it exists.
    class Watch {
    public:
        virtual ~Watch() = default;
    };

    /// Calls `readable` from the pump whenever the descriptor can be read (level-triggered). Only for adapters that have
    /// descriptors of their own, not for the rooms; the descriptor must outlive the watch.
    virtual std::unique_ptr<Watch> WatchReadable(int descriptor, std::function<void()> readable) = 0;
};

}  // namespace korvane
