// Watches the load of the processors: takes a sample every three seconds, and sends a mail when a sample reaches the operator's
// level and the chosen number of minutes has passed since the last mail.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/system_info.h"
#include "resources/alert_monitor.h"
#include "resources/cpu_usage.h"

namespace korvane {

/// Takes no sample before the first LoadData: a user who never opens the window gets no alerts.
class CpuMonitor : public AlertMonitor {
public:
    static constexpr std::size_t kSamples = 100;

    /// Called when the window is loaded. `system` must outlive this.
    CpuMonitor(const MonitorPorts& ports, const SystemInfo& system);

    std::string cboAlert;     ///< in percent; empty: no alert
    std::string cboDuration;  ///< in minutes; empty: no alert

    void LoadData() override;

    /// "17%", ":(" after a failure, empty before the first sample.
    const std::string& LoadLabel() const { return loadLabel_; }
    /// The last samples in percent, the oldest first; always kSamples of them, 0 before the first.
    const std::vector<std::int32_t>& History() const { return history_; }
    /// When the last of them was taken.
    DateTime SampledAt() const { return dtSample_; }

private:
    void tmrRefresh_Timer();
    void TakeSample(int load);
    void AlertAt(int load);

    void Switch(bool on) override { tmrRefresh_->SetEnabled(on); }
    void UpdateFile() override;
    std::string TestBody() const override { return Body(" 5"); }
    std::string Body(const std::string& minutes) const;

    clsCPUUsageNT reader_;
    DateTime dtLastAlert_;
    DateTime dtSample_;
    std::string loadLabel_;
    std::vector<std::int32_t> history_ = std::vector<std::int32_t>(kSamples);
    std::unique_ptr<Timer> tmrRefresh_;
};

}  // namespace korvane
