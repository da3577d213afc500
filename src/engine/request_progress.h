// The estimate that the operator sees while a page is being fetched: the bar fills in a little more than the entry's average
// time. A test by the operator may run inside a request of the cycle, and the other way about: the bar belongs to the one that
// began last, and goes back to the other when that one ends.
#pragma once

#include <cstdint>
#include <vector>

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
        const CycleState& state;
        Timer& TimerProgress;
    };

    explicit RequestProgress(const Ports& ports) : ports_(ports) {}

    /// A request runs as long as this lives. They end in the reverse order of their beginning.
    class Request {
    public:
        explicit Request(RequestProgress& progress) : progress_(progress) { progress_.Begin(); }
        ~Request() { progress_.End(); }
        Request(const Request&) = delete;
        Request& operator=(const Request&) = delete;

    private:
        RequestProgress& progress_;
    };

    /// The operator looks again: the estimate of a request that runs goes on.
    void Resume();

    /// One tick, each quarter of a second while a request runs.
    void TimerProgress_Timer();

private:
    void Begin();
    void End();

    Ports ports_;
    std::vector<std::int32_t> nProgressTicks_;  ///< of each request that runs
};

}  // namespace korvane
