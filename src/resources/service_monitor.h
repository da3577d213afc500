// Watches the services that the operator has marked: every minute it mails for each of them that does not run, and if wanted once
// for one that runs again after it had stopped. It never starts a service.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/services.h"
#include "resources/alert_monitor.h"
#include "resources/service_settings.h"

namespace korvane {

/// Watches nothing before the first LoadData. The manager answers later than it is asked, so rows and mails come a moment after
/// LoadData and after each tick.
class ServiceMonitor : public AlertMonitor {
public:
    /// A row of grdSvc without its header; its blank last row is the window's.
    struct Row {
        std::string name;
        bool watched = false;
        std::string status;  ///< "Stopped", "Running", "Paused" or blank
        std::string previous;
        bool operator==(const Row&) const = default;
    };

    /// The window is loaded. `services` must outlive this.
    ServiceMonitor(const MonitorPorts& ports, Services& services);

    bool ckRestart = false;  ///< a mail when a service runs again after a failure

    void LoadData() override;

    /// In the order of the manager. They are made anew after LoadData only; a service that is gone keeps its row until then.
    const std::vector<Row>& Rows() const { return rows_; }
    /// A click on the mark of a row, counted from 0. The mark of the first row can't be changed by clicks.
    void ClickMonitor(std::size_t row);

    /// Blank, or why the manager did not answer, in words for the operator.
    const std::string& WhyNoServices() const { return whyNot_; }

private:
    void tim_Timer();
    void TakeList(const ServiceList& list);
    void Check(const ServiceList& list);
    void CheckRow(Row& row, const ServiceRecord& service);
    std::vector<std::string> WatchedNames() const;

    void Switch(bool on) override { tim_->SetEnabled(on); }
    void UpdateFile() override;
    std::string TestBody() const override;

    Services& services_;
    std::vector<Row> rows_;
    bool listed_ = false;  ///< rows_ are what the manager said, not what it left unsaid
    clsSvcMon::SvcList saved_ = std::make_shared<std::vector<std::string>>();
    std::string whyNot_;
    std::unique_ptr<Timer> tim_;
    std::unique_ptr<Services::Question> loading_;
    std::unique_ptr<Services::Question> checking_;
};

}  // namespace korvane
