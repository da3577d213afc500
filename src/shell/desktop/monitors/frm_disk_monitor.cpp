#include "shell/desktop/monitors/frm_disk_monitor.h"

#include <QHBoxLayout>
#include <QRadioButton>

namespace korvane {

frmDiskMonitor::frmDiskMonitor(const MonitorPorts& ports, const SystemInfo& system)
    : ResourceForm("frmDiskMonitor", "Korvane Disk Monitor"), monitor_(ports, system), figures_(new SpaceFigures("space", this)) {
    figures_->AddRow("Unit:", Units());
    AddFigures(figures_, 0);
    AddSettings();
    AddChoice("cboAlert", "&Alert below (percent):", OfferedLevels(), monitor_.cboAlert);
    AddAlert("Disk");
}

QWidget* frmDiskMonitor::Units() {
    auto* units = new QWidget(this);
    auto* row = new QHBoxLayout(units);
    row->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const char* name, const char* caption, DiskMonitor::Unit unit) {
        auto* button = new QRadioButton(caption, units);
        button->setObjectName(name);
        button->setAccessibleName(QString(caption).remove('&'));
        button->setChecked(monitor_.SelectedUnit() == unit);
        connect(button, &QRadioButton::toggled, this, [this, unit](bool on) {
            if (on) monitor_.Select(unit);
        });
        row->addWidget(button);
    };
    add("rbGb", "&Gb", DiskMonitor::Unit::rbGb);
    add("rbMb", "&Mb", DiskMonitor::Unit::rbMb);
    row->addStretch();
    return units;
}

void frmDiskMonitor::ShowFigures() {
    const DiskMonitor::Figures& now = monitor_.Shows();
    figures_->SetFigures(now.lblTotal, now.lblUsed, now.lblAvailable,
                         now.lblShare.empty() ? "No local fixed disk was found." : now.lblShare, static_cast<int>(now.percent));
}

}  // namespace korvane
