#include "shell/desktop/monitors/frm_svc_mon.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>

#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

enum ServiceColumn { Name, Monitored, Status, Previous, Columns };

constexpr int kProportions[Columns] = {3000, 600, 2000, 2000};
constexpr int kRowsSeen = 18;

}  // namespace

frmSvcMon::frmSvcMon(const MonitorPorts& ports, Services& services)
    : ResourceForm("frmSvcMon", "Korvane Service Monitor"), monitor_(ports, services) {
    auto* figures = new QWidget(this);
    auto* rows = new QVBoxLayout(figures);
    rows->setContentsMargins(0, 0, 0, 0);
    lblWhyNot_ = NewFigure("lblWhyNot", "Why there are no services", this);
    lblWhyNot_->setWordWrap(true);
    grdSvc_ = NewGrid();
    rows->addWidget(lblWhyNot_);
    rows->addWidget(grdSvc_, 1);
    AddFigures(figures, 1);
    AddSettings();
    AddMark("ckRestart", "Notify when service &restarts after failure", monitor_.ckRestart);
    AddAlert("Service");
}

QTableWidget* frmSvcMon::NewGrid() {
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
    return grid;
}

// The space key acts like a click.
bool frmSvcMon::eventFilter(QObject* watched, QEvent* event) {
    const bool isKey = watched == grdSvc_ && event->type() == QEvent::KeyPress;
    if (!isKey || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Space) return ResourceForm::eventFilter(watched, event);
    if (grdSvc_->currentRow() >= 0) monitor_.ClickMonitor(static_cast<std::size_t>(grdSvc_->currentRow()));
    return true;
}

void frmSvcMon::SetCell(int row, int column, const QString& text) {
    QTableWidgetItem* cell = grdSvc_->item(row, column);
    if (cell == nullptr) {
        cell = new QTableWidgetItem;
        grdSvc_->setItem(row, column, cell);
    }
    if (cell->text() != text) cell->setText(text);
}

void frmSvcMon::ShowRow(int row, const ServiceMonitor::Row& service) {
    SetCell(row, Name, Q(service.name));
    SetCell(row, Monitored, "");
    grdSvc_->item(row, Monitored)->setCheckState(service.watched ? Qt::Checked : Qt::Unchecked);
    grdSvc_->item(row, Monitored)->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);  // the monitor decides the effect of a
                                                                                        // click
    SetCell(row, Status, Q(service.status));
    SetCell(row, Previous, Q(service.previous));
}

void frmSvcMon::ShowFigures() {
    lblWhyNot_->setText(Lines(monitor_.WhyNoServices()));
    lblWhyNot_->setVisible(!monitor_.WhyNoServices().empty());
    const std::vector<ServiceMonitor::Row>& services = monitor_.Rows();
    const int count = static_cast<int>(services.size());
    if (grdSvc_->rowCount() != count + 1) {
        grdSvc_->setRowCount(0);
        grdSvc_->setRowCount(count + 1);
    }
    for (int row = 0; row < count; ++row)
        ShowRow(row, services[static_cast<std::size_t>(row)]);
}

}  // namespace korvane
