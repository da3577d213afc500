// Publishing: walks customers and groups and writes all pages, while checks and windows go on between them.
#pragma once

#include <memory>
#include <string>

#include "base/datetime.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/events.h"
#include "platform/files.h"
#include "platform/operator.h"
#include "reports/failure_report.h"
#include "reports/graph_report.h"
#include "reports/report_folder.h"
#include "reports/response_times.h"
#include "reports/summary_report.h"
#include "store/server_id.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

class Reports {
public:
    struct Ports {
        Store& store;
        const Clock& clock;
        Events& events;
        Operator& person;
        Files& files;
        StatusLog& status;
        const SettingsCollection& settings;
        ServerIds& ids;
    };

    /// `dir` is where templates, pictures and database are. Everything borrowed must outlive this.
    Reports(const Ports& ports, std::string dir);

    /// Writes everything. `strErr` is blank when all went well, otherwise it tells what went wrong; a page that could not be
    /// written keeps its older form, and the other groups are published all the same. `bQuiet` leaves the graph pages of an hour
    /// or day that goes on as they are. A call from an event of a running publish does nothing and says so. Delivers events
    /// between groups and servers.
    void PublishReports(bool bQuiet, std::string& strErr);

    /// The page of all groups of a customer, or of one group, in the folder that publishing makes for it: names that differ only
    /// in case are one group.
    std::string PageOf(const std::string& idCustomer, const std::string& strGroup);

private:
    std::unique_ptr<Connection> Connect();
    std::unique_ptr<Recordset> GroupsOf(const std::string& idCustomer, Connection& connection);
    void PublishAll(bool bQuiet, std::string& strErr);
    void PublishReportsPerCust(const std::string& idCustomer, Connection& connection, bool bQuiet, std::string& strErr);
    void PublishGroups(const std::string& idCustomer, Connection& connection, bool bQuiet, std::string& strErr);

    Ports ports_;
    std::string dir_;
    ReportFolder folder_;
    GraphReports graphs_;
    ResponseTimes responseTimes_;
    FailureReport failures_;
    SummaryReport summary_;
    DateTime lastPublish_;  ///< the last complete one
    bool publishing_ = false;
};

}  // namespace korvane
