#include "resources/cpu_monitor.h"

#include <algorithm>
#include <cmath>

#include "base/ignore_errors.h"
#include "base/numbers.h"

namespace korvane {
namespace {

constexpr const char* kCannotRead = "Error while retrieving CPU usage";
constexpr const char* kNoFigure = ":(";

double TimeOf(const ProcessorTimes& times) {
    return static_cast<double>(times.total) / times.processors;
}

double ToFourDecimals(double number) {
    return std::nearbyint(number * 10000) / 10000;
}

// Counts minute changes: from 3:00:59 to 3:01:00 is one.
std::int64_t MinuteChanges(DateTime from, DateTime to) {
    return to.Seconds() / 60 - from.Seconds() / 60;
}

// A level beyond 16 bits counts as 0, like one that is not a number.
std::int64_t LevelOf(const std::string& text) {
    std::int64_t level = 0;
    IgnoreErrors([&] { level = CheckedInt16(ParseWhole(text)); });
    return level;
}

std::int64_t MinutesOf(const std::string& text) {
    std::int64_t minutes = 0;
    IgnoreErrors([&] { minutes = ParseWhole(text); });
    return minutes;
}

}  // namespace

void clsCPUUsageNT::Initialize() {
    if (const auto now = system_.Processors()) Keep(*now);
}

int clsCPUUsageNT::Query() {
    const std::optional<ProcessorTimes> now = system_.Processors();
    if (!now) return -1;
    const double idle = static_cast<double>(now->idle) - lastIdle_;
    const double time = TimeOf(*now) - lastTime_;
    const double ratio = time == 0 ? idle : ToFourDecimals(idle / time);
    Keep(*now);
    // The kernel's idle counters sometimes go back.
    return static_cast<int>(std::clamp(std::trunc(100 - ratio * 100 / now->processors + 0.5), 0.0, 100.0));
}

void clsCPUUsageNT::Keep(const ProcessorTimes& now) {
    lastIdle_ = static_cast<double>(now.idle);
    lastTime_ = TimeOf(now);
}

CpuMonitor::CpuMonitor(const MonitorPorts& ports, const SystemInfo& system)
    : AlertMonitor(ports, kCpuMonitor), reader_(system), dtLastAlert_(ports.clock.Now()) {
    reader_.Initialize();
}

void CpuMonitor::Look() {
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
        timer_->SetEnabled(false);
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
    const std::int64_t duration = MinutesOf(cboDuration);
    const DateTime now = ports_.clock.Now();
    if (duration < 1 || MinuteChanges(dtLastAlert_, now) <= duration) return;
    SendAlert(Body(cboDuration));
    dtLastAlert_ = now;
}

// In an alert no space separates the minutes from the word before them, in a test there is one.
std::string CpuMonitor::Body(const std::string& minutes) const {
    return "Your CPU usage has crossed the threshold limit of " + cboAlert + "% for approx." + minutes + " minutes consistently";
}

}  // namespace korvane
