// Safeguard CatchUp: while entries are due, the next one is checked as soon as the last one is done, instead of one each second,
// and a sleep ends with its last second. The event loop runs between two checks, so that stop, exit and the window act at once.
#pragma once

#include <chrono>

#include "engine/monitor_cycle.h"
#include "platform/clock.h"
#include "platform/timer.h"
#include "store/safeguards.h"

namespace korvane {

class CatchUp {
public:
    struct Ports {
        MonitorCycle& cycle;
        const Clock& clock;
        Safeguards& safeguards;
        Timer&
            TimerMonitorDB;  ///< of the cycle; its period is a second, 0 while entries are due, and less than a second after them
    };

    explicit CatchUp(const Ports& ports) : ports_(ports) {}

    /// Handles one tick of the timer. Waits as the cycle does; throws nothing.
    void TimerMonitorDB_Timer();

private:
    std::chrono::milliseconds UntilNextSecond() const;

    Ports ports_;
    std::chrono::milliseconds lastSecond_{0};  ///< tick count at which the last second that was counted began
};

}  // namespace korvane
