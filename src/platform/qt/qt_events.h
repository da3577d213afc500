// The event pump on Qt's event loop. The shell's windows, timers and sockets are delivered by the same loop, so all of them stay
// alive while a routine waits here.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "platform/events.h"

namespace korvane {

/// Belongs to the thread that made it, which must have a QCoreApplication for as long as this object lives.
///
/// Set QT_NO_GLIB=1 in the environment before the QCoreApplication is made: Qt's own dispatcher needs fewer system calls a wait
/// than the one on GLib, and less memory.
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
