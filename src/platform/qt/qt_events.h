// The event pump on Qt's event loop. The same loop delivers the shell's windows, timers and sockets, so all of them keep running
// while a routine waits here.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "platform/events.h"

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
    class LimitTimer;
    std::unique_ptr<LimitTimer> limit_;
};

}  // namespace korvane
