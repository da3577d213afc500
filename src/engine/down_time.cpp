#include "engine/down_time.h"

#include "base/error.h"
#include "base/numbers.h"

namespace korvane {
namespace {

std::int16_t MinuteOfDay(DateTime when) {
    return CheckedInt16(when.Hour() * 60 + when.Minute());
}

}  // namespace

DownTime IsDownTime(std::string_view strStart, std::string_view strDurationMinutes, DateTime now) {
    if (strStart.empty() || strDurationMinutes.empty()) return {};
    try {
        const std::int16_t duration = CheckedInt16(ParseWhole(strDurationMinutes));
        if (duration < 1) return {};
        const std::int16_t start = MinuteOfDay(ParseDateTime(strStart));
        const std::int16_t end = CheckedInt16(start + duration);
        const std::int16_t minute = MinuteOfDay(now);
        return {.bIsDown = minute < end && minute >= start, .nMinutesToStart = start - minute};
    } catch (const Error&) {
        return {};
    }
}

DateTime DownTimeEnd(std::string_view strStart, std::chrono::minutes duration, DateTime now) {
    const DateTime start = ParseDateTime(strStart);
    return now.Date() + (start - start.Date()) + duration;
}

}  // namespace korvane
