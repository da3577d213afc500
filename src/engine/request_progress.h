// The estimate that the operator sees while a page is being fetched: the bar fills in a little more than the entry's average
// time.
#pragma once

#include "engine/cycle_state.h"
#include "platform/events.h"
#include "platform/operator.h"
#include "platform/timer.h"

namespace korvane {

class RequestProgress {
public:
    struct Ports {
        Events& events;
        Operator& person;
        CycleState& state;
        Timer& TimerProgress;
    };

    explicit RequestProgress(const Ports& ports) : ports_(ports) {}

    /// One tick, each quarter of a second while a request runs.
    void TimerProgress_Timer();

private:
    Ports ports_;
};

}  // namespace korvane
