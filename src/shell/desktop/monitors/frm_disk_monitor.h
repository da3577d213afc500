// The window of all local fixed disks together: three figures in the selected unit, and a bar.
#pragma once

#include "resources/disk_monitor.h"
#include "shell/desktop/monitors/resource_form.h"
#include "shell/desktop/monitors/space_figures.h"

namespace korvane {

class frmDiskMonitor : public ResourceForm {
public:
    frmDiskMonitor(const MonitorPorts& ports, const SystemInfo& system);

    DiskMonitor& Monitor() override { return monitor_; }

private:
    QWidget* Units();
    void ShowFigures() override;

    DiskMonitor monitor_;
    SpaceFigures* figures_;
};

}  // namespace korvane
