// What the operator does with the reports: have them published, and read them in the browser.
#pragma once

#include <string>

#include "platform/connection.h"
#include "platform/files.h"
#include "platform/operator.h"
#include "platform/processes.h"
#include "reports/pipeline.h"
#include "store/status_log.h"

namespace korvane {

class ReportCommands {
public:
    struct Ports {
        Reports& reports;
        Store& store;
        Files& files;
        Operator& person;
        Processes& processes;
        StatusLog& status;
    };

    /// `dir` is where the database is. Everything borrowed must outlive this.
    ReportCommands(const Ports& ports, std::string dir) : ports_(ports), dir_(std::move(dir)) {}

    /// Publishes for an operator who waits for it: what went wrong is said in the status log and in a message.
    void PublishReports(bool bQuiet);

    /// Opens the page of a group, or of all groups of the customer when `strGroup` is blank; publishes first when it is not there
    /// yet. A person without a browser is told so.
    void DisplayReport(const std::string& idCustomer, const std::string& strGroup);

    /// Publishes, quietly when the database can be opened, and shows the page of customer 0.
    void cmdReports_Click();

private:
    Ports ports_;
    std::string dir_;
};

}  // namespace korvane
