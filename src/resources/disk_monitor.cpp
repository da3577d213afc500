#include "resources/disk_monitor.h"

#include "base/ignore_errors.h"
#include "base/numbers.h"

namespace korvane {

DiskMonitor::DiskMonitor(const MonitorPorts& ports, const SystemInfo& system)
    : AlertMonitor(ports, kDiskMonitor), system_(system) {
    timer_->SetEnabled(true);
    Look();
}

void DiskMonitor::Select(Unit unit) {
    if (unit == unit_) return;
    unit_ = unit;
    Display();
}

void DiskMonitor::Look() {
    disks_ = system_.FixedDisks();
    Display();
}

void DiskMonitor::Display() {
    ShowFigures();
    Changed();
    if (disks_.total == 0) return;  // without a disk nothing is counted
    double level = 0;
    IgnoreErrors([&] { level = ParseNumber(cboAlert); });
    AlertAtEleventhLook(level > 0 && figures_.percent < level, TestBody());
}

void DiskMonitor::ShowFigures() {
    figures_.lblTotal = Amount(disks_.total);
    figures_.lblUsed = Amount(disks_.total - disks_.free);
    figures_.lblAvailable = Amount(disks_.free);
    if (disks_.total == 0) return;
    figures_.percent = disks_.free / disks_.total * 100;
    figures_.lblShare = "Space Available:" + FormatFixed(figures_.percent, 2) + "%";
}

std::string DiskMonitor::Amount(double bytes) const {
    const bool gigabytes = unit_ == Unit::rbGb;
    return FormatFixed(bytes / (gigabytes ? 1024.0 * 1024 * 1024 : 1024.0 * 1024), 2) + (gigabytes ? " Gb" : " Mb");
}

std::string DiskMonitor::TestBody() const {
    return "Your Available Disk space is below the threshold limit of " + cboAlert + "%";
}

}  // namespace korvane
