// The only switch of monitoring: stop and start, by the operator or by the service manager.
#pragma once

#include "engine/cycle_state.h"
#include "engine/cycle_timers.h"
#include "platform/operator.h"
#include "store/status_log.h"

namespace korvane {

class StopStart {
public:
    struct Ports {
        Operator& person;
        StatusLog& status;
        CycleTimers timers;
        CycleState& state;
        const bool& bFormLoading;  ///< while the program loads the switch does nothing
    };

    explicit StopStart(const Ports& ports) : ports_(ports) {}

    /// Toggles monitoring. A running check continues to its end.
    void cmdStopStart();

private:
    void Stop();
    void Start();

    Ports ports_;
};

}  // namespace korvane
