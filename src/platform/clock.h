// Port: the time. Three clocks that must not be mixed up: the wall clock of this place, which an operator or a summer-time
// rule may move; the seconds of its day; and a count of milliseconds that only goes forward.
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

    /// Seconds since local midnight, with fractions, in [0, 86400). Falls back to 0 at midnight.
    virtual double Timer() const = 0;

    /// Milliseconds since some moment before the start of the program. Never goes back, whatever is done to the wall clock.
    virtual std::chrono::milliseconds GetTickCount() const = 0;
};

}  // namespace korvane
