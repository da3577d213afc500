// Publishing the reports: for the cycle, and for the operator, who also reads them in the browser.
#pragma once

#include <string>

#include "engine/collaborators.h"
#include "platform/connection.h"
#include "platform/files.h"
#include "platform/operator.h"
#include "reports/pipeline.h"
#include "shell/web/web_pages.h"
#include "store/status_log.h"

namespace korvane {

class ReportCommands : public ReportPublisher {
public:
    struct Ports {
        Reports& reports;
        WebPages& pages;
        Store& store;
        Files& files;
        Operator& person;
        StatusLog& status;
    };

    /// `dir` is the folder of the database. All referenced objects must outlive this.
    ReportCommands(const Ports& ports, std::string dir) : ports_(ports), dir_(std::move(dir)) {}

    /// Publishes for the cycle: always writes everything.
    std::string PublishReports() override;

    /// Publishes for an operator who waits for it: errors go to the status log and to a message.
    void PublishReports(bool bQuiet);

    /// Opens the page of a group, or of all groups of the customer when `strGroup` is empty; publishes first if the page does not
    /// exist yet. Shows a message if there is no browser.
    void DisplayReport(const std::string& idCustomer, const std::string& strGroup);

    /// Publishes, quietly when the database can be opened, and shows the page of customer 0.
    void cmdReports_Click();

private:
    Ports ports_;
    std::string dir_;
};

}  // namespace korvane
