// The window of the processor load: the percentage, and a chart of its last samples.
#pragma once

#include "resources/cpu_monitor.h"
#include "shell/desktop/monitors/load_chart.h"
#include "shell/desktop/monitors/resource_form.h"

namespace korvane {

class frmCPUMonitor : public ResourceForm {
public:
    frmCPUMonitor(const MonitorPorts& ports, const SystemInfo& system);

    CpuMonitor& Monitor() override { return monitor_; }

private:
    void ShowFigures() override;

    CpuMonitor monitor_;
    QLabel* lblLoad_;
    LoadChart* picChart_;
};

}  // namespace korvane
