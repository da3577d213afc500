// Daily down-time windows: a start as a time of day and a length in minutes.
#pragma once

#include <string_view>

#include "base/datetime.h"

namespace korvane {

struct DownTime {
    bool bIsDown = false;
    int nMinutesToStart = -1;  ///< negative when today's start has passed; also -1 when there is no window
};

/// Returns whether `now` is inside the window. Minutes of the day do not wrap: a window from 23:30 for 60 minutes lasts until
/// midnight; beyond midnight it is the next check that covers it, since the cycle sets that check to the end of the window. An
/// empty start or length, a length below 1, and unreadable texts mean that there is no window.
DownTime IsDownTime(std::string_view strStart, std::string_view strDurationMinutes, DateTime now);

/// Returns the end of the window that starts at the time of day `strStart` on the day of `now`. Throws TypeMismatchError.
DateTime DownTimeEnd(std::string_view strStart, std::chrono::minutes duration, DateTime now);

}  // namespace korvane
