#include "shell/desktop/monitors/frm_memory_mon.h"

namespace korvane {

frmMemoryMon::frmMemoryMon(const MonitorPorts& ports, Events& events, const SystemInfo& system)
    : ResourceForm("frmMemoryMon", "Korvane Memory Monitor"),
      monitor_(ports, events, system),
      figures_(new SpaceFigures("memory", this)) {
    AddFigures(figures_, 0);
    AddSettings();
    AddChoice("cboAlert", "&Alert at (percent):", OfferedLevels(), monitor_.cboAlert);
    AddAlert("Memory");
}

void frmMemoryMon::ShowFigures() {
    const MemoryMonitor::Figures& now = monitor_.Shows();
    figures_->SetFigures(now.lblTotal, now.lblUsed, now.lblAvailable,
                         now.lblUsage.empty() ? "This machine does not tell how much memory it has." : now.lblUsage, now.percent);
}

}  // namespace korvane
