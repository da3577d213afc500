#include "resources/cpu_usage.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace korvane {
namespace {

double TimeOf(const ProcessorTimes& times) {
    return static_cast<double>(times.total) / times.processors;
}

double ToFourDecimals(double number) {
    return std::nearbyint(number * 10000) / 10000;
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

}  // namespace korvane
