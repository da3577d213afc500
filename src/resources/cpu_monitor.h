// Watches the load of the processors: takes a sample every three seconds, and sends a mail when a sample reaches the operator's
// level and the chosen number of minutes has passed since the last mail.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/system_info.h"
#include "resources/alert_monitor.h"

namespace korvane {

/// The load of the processors between two readings of their counters.
class clsCPUUsageNT {
public:
    /// `system` must outlive this.
    explicit clsCPUUsageNT(const SystemInfo& system) : system_(system) {}

    /// Sets the start for the first Query.
    void Initialize();

    /// Returns the load of all processors together since the last call, in whole percent, 0 to 100; -1 when the counters cannot
    /// be read.
    int Query();

private:
    void Keep(const ProcessorTimes& now);

    const SystemInfo& system_;
    double lastIdle_ = 0;  ///< of all processors
    double lastTime_ = 0;  ///< the time that has passed for each processor
};

/// Takes no sample before the first LoadData: a user who never opens the window gets no alerts.
class CpuMonitor : public AlertMonitor {
public:
    static constexpr std::size_t kSamples = 100;

    /// Called when the window is loaded. `system` must outlive this.
    CpuMonitor(const MonitorPorts& ports, const SystemInfo& system);

    /// "17%", ":(" after a failure, empty before the first sample.
    const std::string& LoadLabel() const { return loadLabel_; }
    /// The last samples in percent, the oldest first; always kSamples of them, 0 before the first.
    const std::vector<std::int32_t>& History() const { return history_; }
    /// When the last of them was taken.
    DateTime SampledAt() const { return dtSample_; }

private:
    void Look() override;
    void TakeSample(int load);
    void AlertAt(int load);
    std::string TestBody() const override { return Body(" 5"); }
    std::string Body(const std::string& minutes) const;

    clsCPUUsageNT reader_;
    DateTime dtLastAlert_;
    DateTime dtSample_;
    std::string loadLabel_;
    std::vector<std::int32_t> history_ = std::vector<std::int32_t>(kSamples);
};

}  // namespace korvane
