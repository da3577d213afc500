#include "engine/catch_up.h"

#include <algorithm>
#include <cmath>

namespace korvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

constexpr milliseconds kSecond = 1000ms;
constexpr milliseconds kMargin = 100ms;  // the timer may be a twentieth of its period early

}  // namespace

void CatchUp::TimerMonitorDB_Timer() {
    Timer& timer = ports_.TimerMonitorDB;
    const bool atOnce = timer.Interval() == 0ms;
    // A check waits in the event loop, which a timer without a period would never let rest.
    const bool early = timer.Interval() != kSecond;
    if (early) timer.SetInterval(kSecond);
    const auto now = ports_.clock.GetTickCount();
    const bool withinSecond = early && now - lastSecond_ < kSecond;
    if (!withinSecond) lastSecond_ = now - lastSecond_ < 2 * kSecond ? lastSecond_ + kSecond : now;

    const bool done = ports_.cycle.TimerMonitorDB_Timer(withinSecond);
    if ((!done && !atOnce) || !timer.Enabled() || !ports_.safeguards.IsOn("CatchUp")) return;
    timer.SetInterval(done ? 0ms : UntilNextSecond());
    if (done && atOnce) ports_.safeguards.Acted("CatchUp", "Entries that are due are checked one right after the other.");
}

// Entries are due at whole seconds of the clock; the ticks of a sleep follow soon after these, or each would be up to a second late.
milliseconds CatchUp::UntilNextSecond() const {
    const double second = ports_.clock.Timer();
    const milliseconds past(static_cast<int>((second - std::floor(second)) * 1000));
    return std::min(kSecond - past + kMargin, kSecond - 1ms);
}

}  // namespace korvane
