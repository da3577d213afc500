// Watches the services that the operator has marked: every minute it sends a mail for each of them that is not running and, if
// wanted, one mail for a service that runs again after it had stopped. It never starts a service.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/services.h"
#include "resources/alert_monitor.h"

namespace korvane {

/// Watches nothing before the first LoadData. The manager answers with a delay, so rows and mails come a moment after LoadData
/// and after each tick.
class ServiceMonitor : public AlertMonitor {
public:
    /// A row of grdSvc without its header; the blank last row belongs to the window.
    struct Row {
        std::string name;
        bool watched = false;
        std::string status;  ///< "Stopped", "Running", "Paused" or empty
        std::string previous;
        bool operator==(const Row&) const = default;
    };

    /// Called when the window is loaded. `services` must outlive this.
    ServiceMonitor(const MonitorPorts& ports, Services& services);

    /// In the manager's order. They are rebuilt only after LoadData; a service that no longer exists keeps its row until then.
    const std::vector<Row>& Rows() const { return rows_; }
    /// Handles a click on the mark of a row, counted from 0. Clicks cannot change the mark of the first row.
    void ClickMonitor(std::size_t row);

    /// Why the manager did not answer, in words for the operator; empty if it did.
    const std::string& WhyNoServices() const { return whyNot_; }

private:
    void Look() override;
    bool MayAlert() const override { return !saved_.empty(); }
    void Loaded(const AlertSettings& settings) override;
    std::vector<std::string> WatchedServices() override;
    std::string TestBody() const override;
    void TakeList(const ServiceList& list);
    void Check(const ServiceList& list);
    void CheckRow(Row& row, const ServiceRecord& service);
    void NameUnknown(const ServiceList& list) const;
    void NoteAnswer(const std::string& whyNot);
    std::vector<std::string> WatchedNames() const;

    Services& services_;
    std::vector<Row> rows_;
    bool listed_ = false;  ///< rows_ come from an answer of the manager
    std::vector<std::string> saved_;
    std::string whyNot_;
    std::string named_;  ///< the reason that is in the log
    std::unique_ptr<Services::Question> loading_;
    std::unique_ptr<Services::Question> checking_;
};

}  // namespace korvane
