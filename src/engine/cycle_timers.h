// The timers that start and stop monitoring. The run owns them; the engine enables and disables them.
#pragma once

#include "platform/timer.h"

namespace korvane {

struct CycleTimers {
    Timer& Timer2;          ///< the wait before monitoring begins
    Timer& TimerMonitorDB;  ///< the cycle
    Timer& TimerLog;        ///< the count of legacy log files
};

}  // namespace korvane
