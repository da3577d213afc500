#include "store/legacy_log.h"

#include "base/ignore_errors.h"
#include "base/numbers.h"

namespace korvane {

void LegacyLog::setLogTimer() {
    IgnoreErrors([this] {
        const double seconds = ParseNumber(settings_.getKvSettingsColVal("GlobalRetryDuration"));
        const int minutes = CheckedInt32(RoundHalfEven(seconds / 60));
        count_ = minutes == 0 ? 1 : minutes;
    });
}

void LegacyLog::TimerLog() {
    ++index_;
    if (index_ >= count_) index_ = 0;
}

}  // namespace korvane
