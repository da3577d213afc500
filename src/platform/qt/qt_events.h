// The event pump and the periodic timers on Qt's event loop. The same loop delivers the shell's windows and sockets, so all of them
// keep running while a routine waits here.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "platform/events.h"
#include "platform/timer.h"

class QTimer;

namespace korvane {

/// Belongs to the thread that created it, which must have a QCoreApplication for as long as this object lives.
///
/// Set QT_NO_GLIB=1 in the environment before the QCoreApplication is created: Qt's own dispatcher needs fewer system calls per
/// wait than the one on GLib, and less memory.
class QtEvents : public Events {
public:
    QtEvents();
    ~QtEvents() override;

    void DoEvents() override;
    void WaitForEvent(std::chrono::milliseconds limit) override;
    void Sleep(std::chrono::milliseconds time) override;
    std::unique_ptr<Watch> WatchReadable(int descriptor, std::function<void()> readable) override;

private:
    /// Its only event ends a wait and does nothing else. One timer is enough for nested waits: the outer wait ends with the event
    /// in which the inner one ran, even if the inner wait replaced its limit.
    std::unique_ptr<QTimer> limit_;
};

/// Periods of a second and more are exact on average, but single ticks may come up to a twentieth of the period late or early, so
/// that ticks coincide and the machine sleeps longer.
class QtTimers : public Timers {
public:
    std::unique_ptr<Timer> NewTimer(const std::string& name) override;
};

}  // namespace korvane
