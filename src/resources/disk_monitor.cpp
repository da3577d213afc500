#include "resources/disk_monitor.h"

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "resources/disk_settings.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kDiskLook = 30000ms;
constexpr std::int32_t kDiskLooksWithoutMail = 10;

std::string Amount(double bytes, DiskMonitor::Unit unit) {
    const bool gigabytes = unit == DiskMonitor::Unit::rbGb;
    return FormatFixed(bytes / (gigabytes ? 1024.0 * 1024 * 1024 : 1024.0 * 1024), 2) + (gigabytes ? " Gb" : " Mb");
}

double NumberOrNone(const std::string& text) {
    double number = 0;
    IgnoreErrors([&] { number = ParseNumber(text); });
    return number;
}

}  // namespace

DiskMonitor::DiskMonitor(const MonitorPorts& ports, const SystemInfo& system)
    : AlertMonitor(ports, {.subject = "Kv Disk Monitor Alert", .testSent = "Test email for Disk Monitor has been sent"}),
      system_(system),
      tim_(ports.timers.NewTimer("tim")) {
    tim_->SetInterval(kDiskLook);
    tim_->OnTick([this] { tim_Timer(); });
    tim_->SetEnabled(true);
    ReadDisks();
    Display();
}

void DiskMonitor::LoadData() {
    clsDiskMon file(ports_.files, ports_.dir);
    Load(file);
    cboAlert = file.getAlert();
    Changed();
}

void DiskMonitor::UpdateFile() {
    clsDiskMon file(ports_.files, ports_.dir);
    Fill(file);
    file.setAlert(cboAlert);
    file.UpdateData();
}

void DiskMonitor::Select(Unit unit) {
    if (unit == unit_) return;
    unit_ = unit;
    Display();
}

void DiskMonitor::tim_Timer() {
    ReadDisks();
    Display();
}

void DiskMonitor::ReadDisks() {
    const DiskSpace space = system_.FixedDisks();
    disks_ = {.total = space.total, .free = space.free, .used = space.total - space.free};
}

void DiskMonitor::Display() {
    const bool hasShare = ShowFigures();
    Changed();
    if (!hasShare) return;
    const double level = NumberOrNone(cboAlert);
    const bool low = level > 0 && figures_.percent < level;
    nDiskAlertCount_ = low ? nDiskAlertCount_ + 1 : 0;
    if (nDiskAlertCount_ <= kDiskLooksWithoutMail) return;
    SendAlert(Body());
    nDiskAlertCount_ = 0;
}

// Returns whether there is a share: without a disk there is none, and nothing is counted.
bool DiskMonitor::ShowFigures() {
    figures_.lblTotal = Amount(disks_.total, unit_);
    figures_.lblUsed = Amount(disks_.used, unit_);
    figures_.lblAvailable = Amount(disks_.free, unit_);
    if (disks_.total == 0) return false;
    figures_.percent = disks_.free / disks_.total * 100;
    figures_.lblShare = "Space Available:" + FormatFixed(figures_.percent, 2) + "%";
    return true;
}

std::string DiskMonitor::Body() const {
    return "Your Available Disk space is below the threshold limit of " + cboAlert + "%";
}

}  // namespace korvane
