#include "resources/cpu_monitor.h"

#include <algorithm>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "resources/cpu_settings.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kRefresh = 3000ms;
constexpr const char* kCannotRead = "Error while retrieving CPU usage";
constexpr const char* kNoFigure = ":(";

// Counts minute changes: from 3:00:59 to 3:01:00 is one.
std::int64_t MinutesBetween(DateTime from, DateTime to) {
    return to.Seconds() / 60 - from.Seconds() / 60;
}

std::int64_t WholeOrNone(const std::string& text) {
    std::int64_t number = 0;
    IgnoreErrors([&] { number = ParseWhole(text); });
    return number;
}

}  // namespace

CpuMonitor::CpuMonitor(const MonitorPorts& ports, const SystemInfo& system)
    : AlertMonitor(ports, {.subject = "Kv CPU Monitor Alert", .testSent = "Test email for CPU Monitor has been sent"}),
      reader_(system),
      dtLastAlert_(ports.clock.Now()),
      tmrRefresh_(ports.timers.NewTimer("tmrRefresh")) {
    reader_.Initialize();
    tmrRefresh_->SetInterval(kRefresh);
    tmrRefresh_->OnTick([this] { tmrRefresh_Timer(); });
}

void CpuMonitor::LoadData() {
    clsCPUMon file(ports_.files, ports_.dir);
    Load(file);
    cboAlert = file.getAlert();
    cboDuration = file.getDuration();
    Changed();
}

void CpuMonitor::UpdateFile() {
    clsCPUMon file(ports_.files, ports_.dir);
    Fill(file);
    file.setAlert(cboAlert);
    file.setDuration(cboDuration);
    file.UpdateData();
}

void CpuMonitor::tmrRefresh_Timer() {
    const int load = reader_.Query();
    TakeSample(load);
    AlertAt(load);
    Changed();
    if (load < 0) ShowError(kCannotRead);
}

// After a failure no sample is taken until the settings are loaded or saved again.
void CpuMonitor::TakeSample(int load) {
    dtSample_ = ports_.clock.Now();
    if (load < 0) {
        tmrRefresh_->SetEnabled(false);
        loadLabel_ = kNoFigure;
        return;
    }
    std::rotate(history_.begin(), history_.begin() + 1, history_.end());
    history_.back() = load;
    loadLabel_ = std::to_string(load) + "%";
}

// A time below the level does not reset the alert, so "consistently" in its text claims more than is known.
void CpuMonitor::AlertAt(int load) {
    if (cboAlert.empty() || cboDuration.empty() || load < LevelOf(cboAlert)) return;
    const std::int64_t duration = WholeOrNone(cboDuration);
    const DateTime now = ports_.clock.Now();
    if (duration < 1 || MinutesBetween(dtLastAlert_, now) <= duration) return;
    SendAlert(Body(cboDuration));
    dtLastAlert_ = now;
}

// In an alert no space separates the minutes from the word before them, in a test there is one.
std::string CpuMonitor::Body(const std::string& minutes) const {
    return "Your CPU usage has crossed the threshold limit of " + cboAlert + "% for approx." + minutes + " minutes consistently";
}

}  // namespace korvane
