#include "engine/stop_start.h"

#include <algorithm>
#include <utility>

#include "base/ignore_errors.h"
#include "base/numbers.h"

namespace korvane {
namespace {

constexpr int kSecondsPerMinute = 60;
constexpr int kCompactAtSecond = 10;
constexpr int kRefreshEverySeconds = 10;
constexpr double kLongestWaitMinutes = 540;
constexpr double kWaitWithoutOne = 2;  // minutes

}  // namespace

void BeginWait::Timer2_Timer() {
    if (!std::exchange(operationsBegun_, true)) IgnoreErrors(ports_.beginOperations);
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

double BeginWait::WaitSeconds() {
    std::optional<double> minutes;
    IgnoreErrors([&] { minutes = ParseNumber(ports_.settings.getKvSettingsColVal("Begin")); });
    if (ports_.safeguards.IsOn("GuardBadEntries")) minutes = UsableMinutes(minutes);
    return minutes.value_or(0) * kSecondsPerMinute;
}

// The seconds that are waited are counted in 16 bits, so a longer wait would never end.
double BeginWait::UsableMinutes(std::optional<double> minutes) {
    if (minutes && *minutes >= 0 && *minutes <= kLongestWaitMinutes) return *minutes;
    if (!std::exchange(saidUnusable_, true)) {
        const std::string problem =
            "Begin: '" + ports_.settings.getKvSettingsColVal("Begin") + "' is not a number of minutes from 0 to 540. 2 is used.";
        ports_.status.setStatusMSG(problem);
        ports_.log.WriteLog(kLogOrdinary, kLogError, problem);
    }
    return kWaitWithoutOne;
}

void BeginWait::ShowWaiting(double wait) {
    ports_.person.SetCycleText("Waiting " + FormatFixed(wait - state_.nWaitedSeconds, 0) + " seconds to start.");
    percent_ = std::clamp(percent_ + 100.0 / wait, 0.0, 100.0);
    ports_.person.SetProgress(static_cast<int>(RoundHalfEven(percent_)), 100);
    if (std::exchange(saidWaiting_, true)) return;
    ports_.status.setStatusMSG("Waiting " + ports_.settings.getKvSettingsColVal("Begin") +
                               " minutes before monitoring begins.  Choose the Settings menu to adjust this value...");
}

void BeginWait::CompactWhileWaiting() {
    if (!ports_.compactAndRepair) return;
    ports_.person.SetTrayTip("Korvane Compact and Repair.. Please Wait: " + ports_.clock.Now().Text());
    ports_.status.setStatusMSG(
        "During Compact and Repair, Korvane will freeze and refuse user input for up to 2 minutes.  Please wait...");
    IgnoreErrors(ports_.compactAndRepair);
    ports_.person.SetTrayTip("Korvane Compact & Repair Done. Beginning Operations: " + ports_.clock.Now().Text());
}

void StopStart::cmdStopStart() {
    if (ports_.bFormLoading) return;
    if (ports_.state.bMonitoring) {
        Stop();
    } else {
        Start();
    }
    ports_.person.RefreshURLList();
}

void StopStart::Stop() {
    ports_.timers.TimerLog.SetEnabled(false);
    ports_.timers.TimerMonitorDB.SetEnabled(false);
    ports_.timers.Timer2.SetEnabled(false);
    ports_.state.bMonitoring = false;
    ports_.person.SetMonitoring(false);
    ports_.person.SetProgressTip("Monitoring Stopped. Click the Start Button to start monitoring.");
    ports_.person.SetProgress(0, 100);
    ports_.person.SetTray(TrayPicture::Off, " Korvane: URL Monitoring is Paused.  No Monitoring will occur. ");
    ports_.status.setStatusMSG("Stopped.  Click the Start button to resume monitoring.");
    ports_.person.SetCycleText("Monitoring Stopped");
    ports_.status.setStatusMSG("Monitoring Stopped");
    ports_.stopped();
}

void StopStart::Start() {
    ports_.person.SetProgressTip("Monitoring Just started.");
    ports_.person.SetProgress(0, 100);
    ports_.person.SetTray(TrayPicture::Normal, " Korvane: URL Monitoring is ON ");
    ports_.timers.TimerMonitorDB.SetEnabled(true);
    ports_.timers.Timer2.SetEnabled(false);
    ports_.state.bMonitoring = true;
    ports_.person.SetMonitoring(true);
    ports_.status.setStatusMSG("Monitoring Started");
    ports_.person.SetCycleText("Monitoring in progress...");
}

}  // namespace korvane
