#include "shell/desktop/monitors/frm_cpu_monitor.h"

#include <QLabel>
#include <QVBoxLayout>

#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

constexpr double kLoadSize = 1.8;  ///< times the size of the window's font
const std::vector<std::string> kMinutes{"1", "2", "5", "10"};

}  // namespace

frmCPUMonitor::frmCPUMonitor(const MonitorPorts& ports, const SystemInfo& system)
    : ResourceForm("frmCPUMonitor", "Korvane CPU Monitor"), monitor_(ports, system) {
    auto* figures = new QWidget(this);
    auto* rows = new QVBoxLayout(figures);
    rows->setContentsMargins(0, 0, 0, 0);
    lblLoad_ = NewFigure("lblLoad", "CPU load", this);
    QFont large = font();
    large.setPointSizeF(large.pointSizeF() * kLoadSize);
    lblLoad_->setFont(large);
    picChart_ = new LoadChart(figures);
    picChart_->setObjectName("picChart");
    picChart_->setAccessibleName("CPU load of the last five minutes");
    rows->addWidget(lblLoad_);
    rows->addWidget(picChart_, 1);
    AddFigures(figures, 1);
    AddSettings();
    AddChoice("cboAlert", "&Alert at (percent):", OfferedLevels(), monitor_.cboAlert);
    AddChoice("cboDuration", "&For (minutes):", kMinutes, monitor_.cboDuration);
    AddAlert("CPU");
}

void frmCPUMonitor::ShowFigures() {
    const std::string& load = monitor_.LoadLabel();
    lblLoad_->setText(load.empty() ? QString("-") : Q(load));
    lblLoad_->setToolTip(load.empty() ? QString() : Q("Sampled at " + monitor_.SampledAt().Text()));
    picChart_->SetSamples(monitor_.History());
}

}  // namespace korvane
