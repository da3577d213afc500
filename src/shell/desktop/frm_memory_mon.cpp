#include "shell/desktop/frm_memory_mon.h"

#include <QFormLayout>
#include <QLabel>
#include <QProgressBar>

#include "shell/desktop/qt_text.h"

namespace korvane {

frmMemoryMon::frmMemoryMon(const MonitorPorts& ports, Events& events, const SystemInfo& system)
    : ResourceForm("frmMemoryMon", "Korvane Memory Monitor"), monitor_(ports, events, system) {
    auto* figures = new QWidget(this);
    auto* rows = new QFormLayout(figures);
    rows->setContentsMargins(0, 0, 0, 0);
    lblTotal_ = NewFigure("lblTotal", "Total memory");
    lblUsed_ = NewFigure("lblUsed", "Used memory");
    lblAvailable_ = NewFigure("lblAvailable", "Available memory");
    lblUsage_ = NewFigure("lblUsage", "Available share of the memory");
    rows->addRow("Total:", lblTotal_);
    rows->addRow("Used:", lblUsed_);
    rows->addRow("Available:", lblAvailable_);
    pbUsage_ = NewBar("pbUsage", "Available share of the memory");
    rows->addRow(pbUsage_);
    rows->addRow(lblUsage_);
    AddFigures(figures, 0);
    AddSettings();
    AddChoice("cboAlert", "&Alert at (percent):", OfferedLevels(), monitor_.cboAlert);
    AddAlert("Memory");
}

void frmMemoryMon::ShowFigures() {
    const MemoryMonitor::Figures& now = monitor_.Shows();
    lblTotal_->setText(Q(now.lblTotal));
    lblUsed_->setText(Q(now.lblUsed));
    lblAvailable_->setText(Q(now.lblAvailable));
    lblUsage_->setText(now.known ? Q(now.lblUsage) : QString("This machine does not tell how much memory it has."));
    pbUsage_->setValue(now.percent);
}

}  // namespace korvane
