// Daily down-time windows: a start as a time of day and a length in minutes.
#pragma once

#include <string_view>

#include "base/datetime.h"

namespace korvane {

struct DownTime {
    bool bIsDown = false;
    int nMinutesToStart = -1;  ///< negative once the start of today is past; -1 too when there is no window
};

/// Whether `now` lies in the window. Minutes of the day do not wrap: a window from 23:30 for 60 minutes holds until midnight, and
/// what carries it past midnight is the next check, which the cycle sets to the end of the window. A blank start or length, a
/// length below 1, and texts that cannot be read mean that there is no window.
DownTime IsDownTime(std::string_view strStart, std::string_view strDurationMinutes, DateTime now);

/// The end of the window that starts at the time of day `strStart` on the day of `now`. Throws TypeMismatchError.
DateTime DownTimeEnd(std::string_view strStart, std::chrono::minutes duration, DateTime now);

}  // namespace korvane
