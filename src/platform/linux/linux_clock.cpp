#include "platform/linux/linux_clock.h"

#include <time.h>

namespace korvane {
namespace {

using std::chrono::system_clock;

// localtime_r alone would keep the time zone of its first call; tzset costs one stat of the zone file.
tm LocalTime(time_t moment) {
    tm local{};
    tzset();
    localtime_r(&moment, &local);
    return local;
}

}  // namespace

DateTime SystemClock::Now() const {
    const time_t moment = system_clock::to_time_t(system_clock::now());
    return DateTime::FromSeconds(moment + LocalTime(moment).tm_gmtoff);
}

DateTime SystemClock::UtcNow() const {
    return DateTime::FromSeconds(system_clock::to_time_t(system_clock::now()));
}

double SystemClock::Timer() const {
    const auto now = system_clock::now();
    const auto second = std::chrono::floor<std::chrono::seconds>(now);
    const tm local = LocalTime(system_clock::to_time_t(second));
    return local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec + std::chrono::duration<double>(now - second).count();
}

std::chrono::milliseconds SystemClock::GetTickCount() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

}  // namespace korvane
