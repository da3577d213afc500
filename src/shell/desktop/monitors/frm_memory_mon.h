// The window of the physical memory: three figures and a bar.
#pragma once

#include "resources/memory_monitor.h"
#include "shell/desktop/monitors/resource_form.h"
#include "shell/desktop/monitors/space_figures.h"

namespace korvane {

/// It watches as long as it exists, so it is destroyed when the operator closes it.
class frmMemoryMon : public ResourceForm {
public:
    frmMemoryMon(const MonitorPorts& ports, Events& events, const SystemInfo& system);

    MemoryMonitor& Monitor() override { return monitor_; }

private:
    void ShowFigures() override;

    MemoryMonitor monitor_;
    SpaceFigures* figures_;
};

}  // namespace korvane
