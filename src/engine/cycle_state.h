// The state that the cycle keeps from tick to tick, and that its steps share; and the timers that start and stop monitoring.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/datetime.h"
#include "platform/timer.h"

namespace korvane {

struct CycleState {
    std::int16_t nSleepLeft = 0;        ///< seconds left in the current sleep; nothing is checked while it is above 0
    std::int16_t nSleepTotal = 0;       ///< length of the current sleep
    std::int32_t nReportTicks = 0;      ///< ticks since reports were last published
    std::int32_t nCycleCount = 0;       ///< ticks that reached the database
    std::uint32_t nTicks = 0;           ///< changes with each tick: the cycle is alive
    std::optional<DateTime> lastCheck;  ///< when the last check was finished, in UTC
    double nLastAverage = 0;            ///< average response time in milliseconds of the entry being checked
    std::int16_t nWaitedSeconds = 0;    ///< spent in the wait before monitoring begins
    bool bMonitoring = true;            ///< monitoring is on, or will be after the wait
    bool bReportsOK = false;            ///< whether reports may be published
    std::string strReportsProblem;      ///< why reports may not be published
    std::string strLastStep;            ///< the step in progress, for the error message of the tick
};

/// The run owns them; the engine enables and disables them.
struct CycleTimers {
    Timer& Timer2;          ///< the wait before monitoring begins
    Timer& TimerMonitorDB;  ///< the cycle
    Timer& TimerLog;        ///< the count of legacy log files
};

}  // namespace korvane
