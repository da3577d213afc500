#include "platform/linux/linux_clock.h"

#include <time.h>

namespace korvane {
namespace {

timespec ReadClock(clockid_t which) {
    timespec now{};
    clock_gettime(which, &now);
    return now;
}

// localtime_r alone would keep the time zone of its first call; tzset costs one stat of the zone file.
tm LocalTime(time_t moment) {
    tm local{};
    tzset();
    localtime_r(&moment, &local);
    return local;
}

}  // namespace

DateTime SystemClock::Now() const {
    const time_t moment = ReadClock(CLOCK_REALTIME).tv_sec;
    return DateTime::FromSeconds(moment + LocalTime(moment).tm_gmtoff);
}

DateTime SystemClock::UtcNow() const {
    return DateTime::FromSeconds(ReadClock(CLOCK_REALTIME).tv_sec);
}

double SystemClock::Timer() const {
    const timespec now = ReadClock(CLOCK_REALTIME);
    const tm local = LocalTime(now.tv_sec);
    return local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec + static_cast<double>(now.tv_nsec) / 1e9;
}

std::chrono::milliseconds SystemClock::GetTickCount() const {
    const timespec now = ReadClock(CLOCK_MONOTONIC);
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::seconds(now.tv_sec) +
                                                                 std::chrono::nanoseconds(now.tv_nsec));
}

}  // namespace korvane
