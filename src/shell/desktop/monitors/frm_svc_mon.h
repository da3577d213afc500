// The window of the services: a grid with a row for each, in which the watched ones are marked.
#pragma once

#include "resources/service_monitor.h"
#include "shell/desktop/monitors/resource_form.h"

class QTableWidget;

namespace korvane {

class frmSvcMon : public ResourceForm {
public:
    frmSvcMon(const MonitorPorts& ports, Services& services);

    ServiceMonitor& Monitor() override { return monitor_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QTableWidget* NewGrid();
    void SetCell(int row, int column, const QString& text);
    void ShowRow(int row, const ServiceMonitor::Row& service);
    void ShowFigures() override;

    ServiceMonitor monitor_;
    QTableWidget* grdSvc_;
    QLabel* lblWhyNot_;
};

}  // namespace korvane
