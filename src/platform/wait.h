// The only way to wait: check a condition and let the event pump run until the next check, up to a limit.
#pragma once

#include <chrono>
#include <cstdint>

#include "base/numbers.h"
#include "platform/clock.h"
#include "platform/events.h"

namespace korvane {

/// Returns whether `condition()` became true within `limit`. It is checked first without waiting, then after each event; events
/// are delivered meanwhile, and while nothing happens no CPU is used.
template <class Condition>
bool WaitFor(Events& events, const Clock& clock, std::chrono::milliseconds limit, Condition condition) {
    const auto deadline = clock.GetTickCount() + limit;
    while (!condition()) {
        const auto left = deadline - clock.GetTickCount();
        if (left <= std::chrono::milliseconds::zero()) return false;
        events.WaitForEvent(left);
    }
    return true;
}

/// The time limit for a server's reply, in whole seconds of the day clock. That clock falls back to 0 at midnight, so a wait across
/// midnight would never end by it. A second limit of 15 minutes, on the clock that only goes forward, keeps a silent server from
/// blocking the program for good; `exact`: it alone counts, and is as long as the first.
class ReplyLimit {
public:
    ReplyLimit(const Clock& clock, std::chrono::seconds limit, bool exact = false)
        : clock_(clock), limit_(limit.count()), exact_(exact) {
        Restart();
    }

    void Restart() {
        start_ = RoundHalfEven(clock_.Timer());
        end_ = clock_.GetTickCount() + (exact_ ? std::chrono::seconds(limit_) : std::chrono::minutes(15));
    }

    /// Returns whether `limit` or more whole seconds have passed.
    bool Over() const { return (!exact_ && RoundHalfEven(clock_.Timer()) - start_ >= limit_) || clock_.GetTickCount() >= end_; }

private:
    const Clock& clock_;
    std::int64_t limit_;
    bool exact_;
    std::int64_t start_ = 0;
    std::chrono::milliseconds end_{0};
};

}  // namespace korvane
