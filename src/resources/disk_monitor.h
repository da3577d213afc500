// Watches the total space of all local fixed disks, every half minute, and sends a mail after the free share was below the
// operator's level eleven times in a row.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/system_info.h"
#include "resources/alert_monitor.h"

namespace korvane {

/// In bytes.
struct DiskInfo {
    double total = 0;
    double free = 0;
    double used = 0;
};

class DiskMonitor : public AlertMonitor {
public:
    enum class Unit { rbGb, rbMb };

    struct Figures {
        std::string lblTotal;  ///< "931.51 Gb"
        std::string lblUsed;
        std::string lblAvailable;
        std::string lblShare;  ///< "Space Available:42.42%"; empty while there is no disk
        double percent = 0;    ///< of the bar
    };

    /// Called when the window is loaded: the figures are shown at once. `system` must outlive this.
    DiskMonitor(const MonitorPorts& ports, const SystemInfo& system);

    std::string cboAlert;  ///< in percent; empty: no alert

    void LoadData() override;
    const Figures& Shows() const { return figures_; }

    Unit SelectedUnit() const { return unit_; }
    /// A change updates the figures, and counts like a regular check of the disks.
    void Select(Unit unit);

private:
    void tim_Timer();
    void ReadDisks();
    void Display();
    bool ShowFigures();

    void Switch(bool on) override { tim_->SetEnabled(on); }
    void UpdateFile() override;
    std::string TestBody() const override { return Body(); }
    std::string Body() const;

    const SystemInfo& system_;
    DiskInfo disks_;
    Unit unit_ = Unit::rbGb;
    Figures figures_;
    std::int32_t nDiskAlertCount_ = 0;
    std::unique_ptr<Timer> tim_;
};

}  // namespace korvane
