#include "shell/desktop/frm_disk_monitor.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QRadioButton>

#include "shell/desktop/qt_text.h"

namespace korvane {

frmDiskMonitor::frmDiskMonitor(const MonitorPorts& ports, const SystemInfo& system)
    : ResourceForm("frmDiskMonitor", "Korvane Disk Monitor"), monitor_(ports, system) {
    auto* figures = new QWidget(this);
    auto* rows = new QFormLayout(figures);
    rows->setContentsMargins(0, 0, 0, 0);
    lblTotal_ = NewFigure("lblTotal", "Total space");
    lblUsed_ = NewFigure("lblUsed", "Used space");
    lblAvailable_ = NewFigure("lblAvailable", "Available space");
    lblShare_ = NewFigure("lblShare", "Available share of the space");
    rows->addRow("Total:", lblTotal_);
    rows->addRow("Used:", lblUsed_);
    rows->addRow("Available:", lblAvailable_);
    pbSpace_ = NewBar("pbSpace", "Available share of the space");
    rows->addRow(pbSpace_);
    rows->addRow(lblShare_);
    rows->addRow("Unit:", Units());
    AddFigures(figures, 0);
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
    lblTotal_->setText(Q(now.lblTotal));
    lblUsed_->setText(Q(now.lblUsed));
    lblAvailable_->setText(Q(now.lblAvailable));
    lblShare_->setText(now.lblShare.empty() ? QString("No local fixed disk was found.") : Q(now.lblShare));
    pbSpace_->setValue(static_cast<int>(now.percent));
}

}  // namespace korvane
