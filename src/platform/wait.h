// The only way to wait: check a condition and let the event pump run until the next check, up to a limit.
#pragma once

#include <algorithm>
#include <chrono>

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

}  // namespace korvane
