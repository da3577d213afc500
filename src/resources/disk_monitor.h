// Watches the total space of all local fixed disks, every half minute, and sends a mail after the free share was below the
// operator's level eleven times in a row.
#pragma once

#include <string>

#include "platform/system_info.h"
#include "resources/alert_monitor.h"

namespace korvane {

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

    const Figures& Shows() const { return figures_; }

    Unit SelectedUnit() const { return unit_; }
    /// A change updates the figures, and counts like a regular check of the disks.
    void Select(Unit unit);

private:
    void Look() override;
    void Display();
    void ShowFigures();
    std::string Amount(double bytes) const;
    std::string TestBody() const override;

    const SystemInfo& system_;
    DiskSpace disks_;
    Unit unit_ = Unit::rbGb;
    Figures figures_;
};

}  // namespace korvane
