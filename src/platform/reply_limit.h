// How long a server may take for a reply, in whole seconds on the clock of the day.
#pragma once

#include <chrono>
#include <cstdint>

#include "base/numbers.h"
#include "platform/clock.h"

namespace korvane {

/// The clock of the day falls back to 0 at midnight, and a wait across midnight never ends by it. A second limit of 15 minutes,
/// on the clock that only goes forward, keeps a silent server from holding up the program for good.
class ReplyLimit {
public:
    ReplyLimit(const Clock& clock, std::chrono::seconds limit) : clock_(clock), limit_(limit.count()) { Restart(); }

    void Restart() {
        start_ = RoundHalfEven(clock_.Timer());
        end_ = clock_.GetTickCount() + std::chrono::minutes(15);
    }

    /// `limit` or more whole seconds have gone.
    bool Over() const { return RoundHalfEven(clock_.Timer()) - start_ >= limit_ || clock_.GetTickCount() >= end_; }

private:
    const Clock& clock_;
    std::int64_t limit_;
    std::int64_t start_ = 0;
    std::chrono::milliseconds end_{0};
};

}  // namespace korvane
