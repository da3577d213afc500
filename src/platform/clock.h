// Port: the time. There are three clocks, which must not be mixed up: the local wall clock, which an operator or a summer-time
// rule may move; the seconds since local midnight; and a count of milliseconds that only goes forward.
#pragma once

#include <chrono>

#include "base/datetime.h"

namespace korvane {

class Clock {
public:
    virtual ~Clock() = default;

    /// Local time, to the second.
    virtual DateTime Now() const = 0;

    /// The same moment in UTC.
    virtual DateTime UtcNow() const = 0;

    /// Seconds since local midnight, with fractions, in [0, 86400). Restarts from 0 at midnight.
    virtual double Timer() const = 0;

    /// Milliseconds since some moment before the start of the program. Never goes back, whatever happens to the wall clock.
    virtual std::chrono::milliseconds GetTickCount() const = 0;
};

}  // namespace korvane
