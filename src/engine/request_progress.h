// The estimate that the operator sees while a page is being fetched: the bar fills in a little more than the entry's average
// time. A test by the operator may run inside a request of the cycle, or the reverse: the bar belongs to the request that began
// last, and returns to the other when that one ends.
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

    /// A request runs as long as this lives. Requests must end in the reverse order of their beginning.
    class Request {
    public:
        explicit Request(RequestProgress& progress) : progress_(progress) { progress_.Begin(); }
        ~Request() { progress_.End(); }
        Request(const Request&) = delete;
        Request& operator=(const Request&) = delete;

    private:
        RequestProgress& progress_;
    };

    /// Called when the operator looks again: the estimate of a running request continues.
    void Resume();

    /// Handles one tick, each quarter of a second while a request runs.
    void TimerProgress_Timer();

private:
    void Begin();
    void End();

    Ports ports_;
    std::vector<std::int32_t> nProgressTicks_;  ///< of each running request
};

}  // namespace korvane
