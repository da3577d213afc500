// Publishing: goes through all customers and groups and writes all pages, while checks and windows continue in between.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "base/datetime.h"
#include "platform/connection.h"
#include "reports/pages.h"
#include "reports/published_figures.h"
#include "reports/report_folder.h"

namespace korvane {

class Reports {
public:
    using Ports = ReportPorts;

    /// `dir` is the folder of templates, pictures and database. All referenced objects must outlive this.
    Reports(const Ports& ports, std::string dir);

    Reports(const Reports&) = delete;

    /// Writes everything. `strErr` is empty on success, otherwise it describes the errors; a page that could not be written keeps
    /// its older form, and the other groups are still published. `bQuiet` leaves a graph page unchanged while its hour or day
    /// continues. A call from an event of a running publish does nothing and reports that. Delivers events between groups and
    /// servers.
    void PublishReports(bool bQuiet, std::string& strErr);

    /// Called after each turn of the working loop, with the UTC time of its last finished check; see PublishedFigures::NoteTurn.
    void NoteTurn(std::optional<DateTime> lastCheck) { figures_.NoteTurn(lastCheck); }

    /// Returns the path of the page of all groups of a customer, or of one group, in the folder that publishing creates for it:
    /// names that differ only in case are one group.
    std::string PageOf(const std::string& idCustomer, const std::string& strGroup);

private:
    std::unique_ptr<Connection> Connect();
    std::unique_ptr<Recordset> GroupsOf(const std::string& idCustomer, Connection& connection);
    void PublishAll(bool bQuiet, std::string& strErr);
    void PublishReportsPerCust(const Publication& publication, const std::string& idCustomer);

    Ports ports_;
    std::string dir_;
    ReportFolder folder_;
    PublishedFigures figures_;
    DateTime lastPublish_;  ///< the last complete publish
    bool publishing_ = false;
};

}  // namespace korvane
