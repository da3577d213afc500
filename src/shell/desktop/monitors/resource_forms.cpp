// The windows on processors, disks and memory: what each of them shows, and the settings of its alert.
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <optional>

#include "resources/cpu_monitor.h"
#include "resources/disk_monitor.h"
#include "resources/memory_monitor.h"
#include "shell/desktop/monitors/level_bar.h"
#include "shell/desktop/monitors/load_chart.h"
#include "shell/desktop/monitors/resource_form.h"
#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

constexpr double kLoadSize = 1.8;  ///< times the size of the window's font
const std::vector<std::string> kMinutes{"1", "2", "5", "10"};

/// Returns the level of the alert; nothing while there is none.
template <class Monitor>
std::optional<int> LevelOf(const Monitor& monitor) {
    bool isNumber = false;
    const int level = Q(monitor.cboAlert).toInt(&isNumber);
    return isNumber && level > 0 && level <= 100 && !monitor.ckDisable ? std::optional(level) : std::nullopt;
}

/// The percentage, and a chart of its last samples.
class frmCPUMonitor : public ResourceForm {
public:
    frmCPUMonitor(const MonitorPorts& ports, const SystemInfo& system)
        : ResourceForm("frmCPUMonitor", "Korvane CPU Monitor"), monitor_(ports, system) {
        lblLoad_ = NewFigure("lblLoad", "CPU load", this);
        QFont large = font();
        large.setPointSizeF(large.pointSizeF() * kLoadSize);
        lblLoad_->setFont(large);
        picChart_ = new LoadChart("5 minutes ago", this);
        picChart_->setObjectName("picChart");
        picChart_->setAccessibleName("CPU load of the last five minutes");
        AddFigures(lblLoad_, picChart_);
        AddChoice("cboAlert", "&Alert at (percent):", OfferedLevels(), monitor_.cboAlert);
        AddChoice("cboDuration", "&For (minutes):", kMinutes, monitor_.cboDuration);
        AddAlert("CPU");
    }

    CpuMonitor& Monitor() override { return monitor_; }

private:
    void ShowFigures() override {
        const std::string& load = monitor_.LoadLabel();
        lblLoad_->setText(load.empty() ? QString("-") : Q(load));
        lblLoad_->setToolTip(load.empty() ? QString() : Q("Sampled at " + monitor_.SampledAt().Text()));
        picChart_->SetSamples(monitor_.History());
        picChart_->SetLevel(monitor_.cboDuration.empty() ? std::nullopt : LevelOf(monitor_));  // without one nothing is mailed
    }

    CpuMonitor monitor_;
    QLabel* lblLoad_;
    LoadChart* picChart_;
};

/// The figures of something that fills up: total, used and available amount, and a bar with the available share.
class SpaceFigures : public QWidget {
public:
    /// `what` in lower case, for the accessible names: "memory".
    SpaceFigures(const QString& what, QWidget* parent) : QWidget(parent), rows_(new QFormLayout(this)) {
        rows_->setContentsMargins(0, 0, 0, 0);
        lblTotal_ = AddFigure("Total:", "lblTotal", "Total " + what);
        lblUsed_ = AddFigure("Used:", "lblUsed", "Used " + what);
        lblAvailable_ = AddFigure("Available:", "lblAvailable", "Available " + what);
        lblShare_ = NewFigure("lblShare", "Available share of the " + what, this);
        pbShare_ = new LevelBar(this);
        pbShare_->setObjectName("pbShare");
        pbShare_->setAccessibleName(lblShare_->accessibleName());
        pbShare_->setRange(0, 100);
        pbShare_->setTextVisible(false);
        rows_->addRow(pbShare_);
        rows_->addRow(lblShare_);
    }

    /// `share` is shown below the bar, which is filled to `percent`.
    void SetFigures(const std::string& total, const std::string& used, const std::string& available, const std::string& share,
                    int percent) {
        lblTotal_->setText(Q(total));
        lblUsed_->setText(Q(used));
        lblAvailable_->setText(Q(available));
        lblShare_->setText(Q(share));
        pbShare_->setValue(percent);
    }

    /// The level below which the alert is sent.
    void SetLevel(std::optional<int> percent) {
        pbShare_->SetLevel(percent, QString("The alert is below %1 percent.").arg(percent.value_or(0)));
    }
    /// The same for an alert at a used share, although the bar shows what is available.
    void SetUsedLevel(std::optional<int> percent) {
        const auto available = percent ? std::optional(100 - *percent) : std::nullopt;
        pbShare_->SetLevel(available, QString("The alert is at %1 percent in use.").arg(percent.value_or(0)));
    }

    /// Adds one more row below.
    void AddRow(const QString& caption, QWidget* content) { rows_->addRow(caption, content); }

private:
    QLabel* AddFigure(const QString& caption, const char* name, const QString& accessibleName) {
        QLabel* figure = NewFigure(name, accessibleName, this);
        rows_->addRow(caption, figure);
        return figure;
    }

    QFormLayout* rows_;
    QLabel* lblTotal_;
    QLabel* lblUsed_;
    QLabel* lblAvailable_;
    LevelBar* pbShare_;
    QLabel* lblShare_;
};

/// All local fixed disks together, in the selected unit.
class frmDiskMonitor : public ResourceForm {
public:
    frmDiskMonitor(const MonitorPorts& ports, const SystemInfo& system)
        : ResourceForm("frmDiskMonitor", "Korvane Disk Monitor"),
          monitor_(ports, system),
          figures_(new SpaceFigures("space", this)) {
        figures_->AddRow("Unit:", Units());
        AddFigures(figures_);
        AddChoice("cboAlert", "&Alert below (percent):", OfferedLevels(), monitor_.cboAlert);
        AddAlert("Disk");
    }

    DiskMonitor& Monitor() override { return monitor_; }

private:
    QWidget* Units() {
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

    void ShowFigures() override {
        const DiskMonitor::Figures& now = monitor_.Shows();
        const std::string share = now.lblShare.empty() ? "No local fixed disk was found." : now.lblShare;
        figures_->SetFigures(now.lblTotal, now.lblUsed, now.lblAvailable, share, static_cast<int>(now.percent));
        figures_->SetLevel(LevelOf(monitor_));
    }

    DiskMonitor monitor_;
    SpaceFigures* figures_;
};

/// The physical memory. It watches as long as it exists, so it is destroyed when the operator closes it.
class frmMemoryMon : public ResourceForm {
public:
    frmMemoryMon(const MonitorPorts& ports, Events& events, const SystemInfo& system)
        : ResourceForm("frmMemoryMon", "Korvane Memory Monitor"),
          monitor_(ports, events, system),
          figures_(new SpaceFigures("memory", this)) {
        AddFigures(figures_);
        AddChoice("cboAlert", "&Alert at (percent):", OfferedLevels(), monitor_.cboAlert);
        AddAlert("Memory");
    }

    MemoryMonitor& Monitor() override { return monitor_; }

private:
    void ShowFigures() override {
        const MemoryMonitor::Figures& now = monitor_.Shows();
        const std::string share = now.lblUsage.empty() ? "This machine does not tell how much memory it has." : now.lblUsage;
        figures_->SetFigures(now.lblTotal, now.lblUsed, now.lblAvailable, share, now.percent);
        figures_->SetUsedLevel(LevelOf(monitor_));
    }

    MemoryMonitor monitor_;
    SpaceFigures* figures_;
};

}  // namespace

std::unique_ptr<ResourceForm> NewResourceForm(ResourceMonitor monitor, const MonitorPorts& ports, Events& events,
                                              const SystemInfo& system, Services& services) {
    switch (monitor) {
        case ResourceMonitor::CPU:
            return std::make_unique<frmCPUMonitor>(ports, system);
        case ResourceMonitor::Disk:
            return std::make_unique<frmDiskMonitor>(ports, system);
        case ResourceMonitor::Memory:
            return std::make_unique<frmMemoryMon>(ports, events, system);
        case ResourceMonitor::Services:
            return NewServiceForm(ports, services);
    }
    return nullptr;
}

}  // namespace korvane
