#include "engine/catch_up.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kSecond = 1000ms;

}  // namespace

void CatchUp::TimerMonitorDB_Timer() {
    const bool atOnce = ports_.TimerMonitorDB.Interval() != kSecond;
    // A check waits in the event loop, which a timer without a period would never let rest.
    if (atOnce) ports_.TimerMonitorDB.SetInterval(kSecond);
    const auto now = ports_.clock.GetTickCount();
    const bool withinSecond = atOnce && now - lastSecond_ < kSecond;
    if (!withinSecond) lastSecond_ = now - lastSecond_ < 2 * kSecond ? lastSecond_ + kSecond : now;

    const bool done = ports_.cycle.TimerMonitorDB_Timer(withinSecond);
    if (!done || !ports_.TimerMonitorDB.Enabled() || !ports_.safeguards.IsOn("CatchUp")) return;
    if (atOnce) ports_.safeguards.Acted("CatchUp", "Entries that are due are checked one right after the other.");
    ports_.TimerMonitorDB.SetInterval(0ms);
}

}  // namespace korvane
