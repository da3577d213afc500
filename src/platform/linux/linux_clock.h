// The time according to the kernel and the local zone files.
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

    /// Does not advance while the machine is suspended, like the waits of the event pump: a check that was interrupted by a
    /// suspend did not take hours.
    std::chrono::milliseconds GetTickCount() const override;
};

}  // namespace korvane
