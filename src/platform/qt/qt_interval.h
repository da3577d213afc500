// Qt stores the intervals of its timers in an int.
#pragma once

#include <algorithm>
#include <chrono>
#include <limits>

namespace korvane {

/// Returns the interval in Qt's form; anything longer than 24 days becomes 24 days.
inline int QtInterval(std::chrono::milliseconds interval) {
    return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(interval.count(), 0, std::numeric_limits<int>::max()));
}

}  // namespace korvane
