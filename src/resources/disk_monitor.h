// Watches the space of all local fixed disks together, every half minute, and mails while the free share has been below the
// operator's level for eleven looks in a row.
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
        std::string lblShare;  ///< "Space Available:42.42%"; blank while there is no disk
        double percent = 0;    ///< of the bar
    };

    /// The window is loaded: the figures are shown at once. `system` must outlive this.
    DiskMonitor(const MonitorPorts& ports, const SystemInfo& system);

    std::string cboAlert;  ///< in percent; blank: no alert

    void LoadData() override;
    const Figures& Shows() const { return figures_; }

    Unit SelectedUnit() const { return unit_; }
    /// A change shows the figures anew, and counts as a look at the disks does.
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
