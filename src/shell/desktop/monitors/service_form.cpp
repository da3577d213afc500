// The window on the services: a grid with a row for each, and the settings of the alert.
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QVBoxLayout>

#include "resources/service_monitor.h"
#include "shell/desktop/monitors/resource_form.h"
#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

enum ServiceColumn { Name, Monitored, Status, Previous, Columns };
constexpr int kProportions[Columns] = {3000, 600, 2000, 2000};
constexpr int kRowsSeen = 18;

/// The services: a grid with a row for each, in which the watched ones are marked.
class frmSvcMon : public ResourceForm {
public:
    frmSvcMon(const MonitorPorts& ports, Services& services)
        : ResourceForm("frmSvcMon", "Korvane Service Monitor"), monitor_(ports, services) {
        lblWhyNot_ = NewFigure("lblWhyNot", "Why there are no services", this);
        lblWhyNot_->setWordWrap(true);
        grdSvc_ = NewGrid();
        auto* grid = new QWidget(this);
        auto* rows = new QVBoxLayout(grid);
        rows->setContentsMargins(0, 0, 0, 0);
        rows->addWidget(grdSvc_);
        rows->addWidget(NewWatchMark());
        AddFigures(lblWhyNot_, grid);
        AddMark("ckRestart", "Notify when service &restarts after failure", monitor_.ckRestart);
        AddAlert("Service");
        setTabOrder(findChild<QWidget*>("cmdTest"), ckWatch_);  // the others keep their places
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
        const QSize wanted(width + 8 * fontMetrics().averageCharWidth(), grid->rowHeight(0) * kRowsSeen);
        resize(wanted.boundedTo(screen()->availableGeometry().size() * 9 / 10));
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

    // For those who cannot click into the grid: a cell of it can be chosen by accessibility, but not switched.
    QWidget* NewWatchMark() {
        ckWatch_ = NewMark("ckWatch", "&Watch the chosen service", this);
        connect(ckWatch_, &QCheckBox::toggled, this, [this] { monitor_.ClickMonitor(static_cast<std::size_t>(ChosenRow())); });
        connect(grdSvc_, &QTableWidget::itemSelectionChanged, this, [this] { ShowWatchMark(); });
        return ckWatch_;
    }

    int ChosenRow() const {
        const QModelIndexList chosen = grdSvc_->selectionModel()->selectedRows();
        return chosen.isEmpty() ? -1 : chosen.first().row();
    }

    // The mark of the first service cannot be changed.
    void ShowWatchMark() {
        const int row = ChosenRow();
        const bool isService = row > 0 && row < static_cast<int>(monitor_.Rows().size());
        const QSignalBlocker quiet(ckWatch_);
        ckWatch_->setEnabled(isService);
        ckWatch_->setChecked(isService && monitor_.Rows()[static_cast<std::size_t>(row)].watched);
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
        ShowWatchMark();
    }

    ServiceMonitor monitor_;
    QTableWidget* grdSvc_;
    QCheckBox* ckWatch_ = nullptr;
    QLabel* lblWhyNot_;
    QLabel* lblNoManager_ = nullptr;  ///< in the middle of the empty grid
};

}  // namespace

std::unique_ptr<ResourceForm> NewServiceForm(const MonitorPorts& ports, Services& services) {
    return std::make_unique<frmSvcMon>(ports, services);
}

}  // namespace korvane
