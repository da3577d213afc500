#include "engine/begin_wait.h"

#include <algorithm>

#include "base/ignore_errors.h"
#include "base/numbers.h"

namespace korvane {
namespace {

constexpr int kSecondsPerMinute = 60;
constexpr int kCompactAtSecond = 10;
constexpr int kRefreshEverySeconds = 10;

}  // namespace

void BeginWait::Timer2_Timer() {
    BeginOperationsOnce();
    const double wait = WaitSeconds();
    if (wait <= state_.nWaitedSeconds) {
        ports_.status.setStatusMSG("Done Waiting.");
        ports_.timers.Timer2.SetEnabled(false);
        ports_.timers.TimerMonitorDB.SetEnabled(true);
        return;
    }
    ShowWaiting(wait);
    if (state_.nWaitedSeconds == kCompactAtSecond) CompactWhileWaiting();
    if (state_.nWaitedSeconds % kRefreshEverySeconds == 0) IgnoreErrors([&] { ports_.person.RefreshURLList(); });
    ports_.person.SetProgressTip("Waiting to start (" + FormatFixed(percent_, 0) + "% complete).");
    IgnoreErrors([&] { state_.nWaitedSeconds = CheckedInt16(state_.nWaitedSeconds + 1); });
}

void BeginWait::BeginOperationsOnce() {
    if (operationsBegun_) return;
    operationsBegun_ = true;
    IgnoreErrors([&] { ports_.beginOperations(); });
}

double BeginWait::WaitSeconds() const {
    double minutes = 0;
    IgnoreErrors([&] { minutes = ParseNumber(ports_.settings.getKvSettingsColVal("Begin")); });
    return minutes * kSecondsPerMinute;
}

void BeginWait::ShowWaiting(double wait) {
    ports_.person.SetCycleText("Waiting " + FormatFixed(wait - state_.nWaitedSeconds, 0) + " seconds to start.");
    percent_ = std::clamp(percent_ + 100.0 / wait, 0.0, 100.0);
    ports_.person.SetProgress(static_cast<int>(RoundHalfEven(percent_)), 100);
    if (saidWaiting_) return;
    saidWaiting_ = true;
    ports_.status.setStatusMSG("Waiting " + ports_.settings.getKvSettingsColVal("Begin") +
                               " minutes before monitoring begins.  Choose the Settings menu to adjust this value...");
}

void BeginWait::CompactWhileWaiting() {
    if (!ports_.compactAndRepair) return;
    ports_.person.SetTrayTip("Korvane Compact and Repair.. Please Wait: " + ports_.clock.Now().Text());
    ports_.status.setStatusMSG(
        "During Compact and Repair, Korvane will freeze and refuse user input for up to 2 minutes.  Please wait...");
    IgnoreErrors([&] { ports_.compactAndRepair(); });
    ports_.person.SetTrayTip("Korvane Compact & Repair Done. Beginning Operations: " + ports_.clock.Now().Text());
}

}  // namespace korvane
