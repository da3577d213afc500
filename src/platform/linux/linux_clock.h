// The time as the kernel and the zone files of this place have it.
#pragma once

#include <chrono>

#include "platform/clock.h"

namespace korvane {

class SystemClock : public Clock {
public:
    /// Local time follows the environment's TZ and /etc/localtime, also when they change while the program runs.
    DateTime Now() const override;
    DateTime UtcNow() const override;
    double Timer() const override;

    /// Stands still while the machine is suspended, as the waits of the event pump do: a check that a suspend cut in two did not
    /// take hours.
    std::chrono::milliseconds GetTickCount() const override;
};

}  // namespace korvane
