// The four windows on this machine's own resources: what each of them shows, and the settings of its alert.
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QRadioButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <optional>

#include "resources/cpu_monitor.h"
#include "resources/disk_monitor.h"
#include "resources/memory_monitor.h"
#include "resources/service_monitor.h"
#include "shell/desktop/monitors/load_chart.h"
#include "shell/desktop/monitors/resource_form.h"
#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

constexpr double kLoadSize = 1.8;  ///< times the size of the window's font
const std::vector<std::string> kMinutes{"1", "2", "5", "10"};

enum ServiceColumn { Name, Monitored, Status, Previous, Columns };
constexpr int kProportions[Columns] = {3000, 600, 2000, 2000};
constexpr int kRowsSeen = 18;

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
        picChart_->SetLevel(Level());
    }

    // Without a duration nothing is mailed.
    std::optional<int> Level() const {
        bool isNumber = false;
        const int level = Q(monitor_.cboAlert).toInt(&isNumber);
        const bool alerts = isNumber && level >= 0 && level <= 100 && !monitor_.cboDuration.empty() && !monitor_.ckDisable;
        return alerts ? std::optional(level) : std::nullopt;
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
        pbShare_ = new QProgressBar(this);
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
    QProgressBar* pbShare_;
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
    }

    MemoryMonitor monitor_;
    SpaceFigures* figures_;
};

/// The services: a grid with a row for each, in which the watched ones are marked.
class frmSvcMon : public ResourceForm {
public:
    frmSvcMon(const MonitorPorts& ports, Services& services)
        : ResourceForm("frmSvcMon", "Korvane Service Monitor"), monitor_(ports, services) {
        lblWhyNot_ = NewFigure("lblWhyNot", "Why there are no services", this);
        lblWhyNot_->setWordWrap(true);
        grdSvc_ = NewGrid();
        AddFigures(lblWhyNot_, grdSvc_);
        AddMark("ckRestart", "Notify when service &restarts after failure", monitor_.ckRestart);
        AddAlert("Service");
    }

    ServiceMonitor& Monitor() override { return monitor_; }

protected:
    // The space key acts like a click.
    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool isKey = watched == grdSvc_ && event->type() == QEvent::KeyPress;
        if (!isKey || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Space) return ResourceForm::eventFilter(watched, event);
        if (grdSvc_->currentRow() >= 0) monitor_.ClickMonitor(static_cast<std::size_t>(grdSvc_->currentRow()));
        return true;
    }

private:
    QTableWidget* NewGrid() {
        auto* grid = new QTableWidget(1, Columns, this);
        grid->setObjectName("grdSvc");
        grid->setAccessibleName("Services");
        grid->setHorizontalHeaderLabels({"Service Name", "Monitor", "Status", "Prev.Status"});
        grid->verticalHeader()->hide();
        grid->verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 3 / 2);
        grid->horizontalHeader()->setHighlightSections(false);
        grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
        grid->setSelectionMode(QAbstractItemView::SingleSelection);
        grid->setSelectionBehavior(QAbstractItemView::SelectRows);
        grid->setTabKeyNavigation(false);
        grid->setWordWrap(false);
        grid->setAlternatingRowColors(true);
        const int narrowest = grid->horizontalHeader()->sectionSizeHint(Monitored);
        int width = 0;
        for (int column = 0; column < Columns; ++column) {
            grid->setColumnWidth(column, kProportions[column] * narrowest / kProportions[Monitored]);
            width += grid->columnWidth(column);
        }
        grid->setMinimumSize(width / 2, grid->rowHeight(0) * 4);
        resize(width + 8 * fontMetrics().averageCharWidth(), grid->rowHeight(0) * kRowsSeen);
        connect(grid, &QTableWidget::cellClicked, this, [this](int row, int column) {
            if (column == Monitored) monitor_.ClickMonitor(static_cast<std::size_t>(row));
        });
        grid->installEventFilter(this);
        lblNoManager_ = NewLabel("lblNoManager", "No service manager on this system", grid->viewport());
        lblNoManager_->setAlignment(Qt::AlignCenter);
        lblNoManager_->hide();
        (new QVBoxLayout(grid->viewport()))->addWidget(lblNoManager_);
        return grid;
    }

    void SetCell(int row, int column, const QString& text) {
        QTableWidgetItem* cell = grdSvc_->item(row, column);
        if (cell == nullptr) {
            cell = new QTableWidgetItem;
            grdSvc_->setItem(row, column, cell);
        }
        if (cell->text() != text) cell->setText(text);
    }

    void ShowRow(int row, const ServiceMonitor::Row& service) {
        SetCell(row, Name, Q(service.name));
        SetCell(row, Monitored, "");
        grdSvc_->item(row, Monitored)->setCheckState(service.watched ? Qt::Checked : Qt::Unchecked);
        // The monitor decides the effect of a click.
        grdSvc_->item(row, Monitored)->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
        SetCell(row, Status, Q(service.status));
        SetCell(row, Previous, Q(service.previous));
    }

    void ShowFigures() override {
        lblWhyNot_->setText(Lines(monitor_.WhyNoServices()));
        const bool hasNoManager = monitor_.NoManager() && monitor_.Rows().empty();
        lblWhyNot_->setVisible(!monitor_.WhyNoServices().empty() && !hasNoManager);
        lblNoManager_->setVisible(hasNoManager);
        lblNoManager_->setToolTip(lblWhyNot_->text());
        const std::vector<ServiceMonitor::Row>& services = monitor_.Rows();
        const int count = static_cast<int>(services.size());
        if (grdSvc_->rowCount() != count + 1) {
            grdSvc_->setRowCount(0);
            grdSvc_->setRowCount(count + 1);
        }
        for (int row = 0; row < count; ++row)
            ShowRow(row, services[static_cast<std::size_t>(row)]);
    }

    ServiceMonitor monitor_;
    QTableWidget* grdSvc_;
    QLabel* lblWhyNot_;
    QLabel* lblNoManager_ = nullptr;  ///< in the middle of the empty grid
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
            return std::make_unique<frmSvcMon>(ports, services);
    }
    return nullptr;
}

}  // namespace korvane
