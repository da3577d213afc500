// The page of a group: a row for each server, worst first, and the averages of those that are up. It also stores each server's
// response times, and writes a new failure page for a server that failed recently.
#pragma once

#include <string>
#include <vector>

#include "base/datetime.h"
#include "platform/connection.h"
#include "platform/events.h"
#include "reports/failure_report.h"
#include "reports/report_folder.h"
#include "reports/response_times.h"
#include "store/status_log.h"

namespace korvane {

class SummaryReport {
public:
    struct Ports {
        Store& store;
        Events& events;
        StatusLog& status;
        ReportFolder& folder;
        GraphReports& graphs;
        ResponseTimes& responseTimes;
        FailureReport& failures;
    };

    explicit SummaryReport(const Ports& ports) : ports_(ports) {}

    /// Delivers events at least once for each server. A failure ends the page, whose older form stays, and is added to `strErr`.
    /// Servers that failed at `lastPublish` or later get their failure page, or at least have their failures trimmed. `bQuiet`:
    /// graphs are written only when a new hour or day begins.
    void PublishSummaryReport(const std::string& strGroup, Connection& connection, std::string& strErr, bool bQuiet,
                              DateTime lastPublish);

private:
    struct Averages;
    void Publish(const std::string& strGroup, Connection& connection, std::string& strErr, bool bQuiet, DateTime lastPublish);
    void TrimFailures(const std::string& strGroup, Connection& connection, DateTime lastPublish);
    std::vector<bool> SaveAverages(const std::string& query, Connection& connection);
    void PublishGraphs(Connection& connection, Recordset& server);
    std::string RowOf(Recordset& rs, const std::string& groupFolder);
    std::string GraphLinks(const std::string& groupFolder, const std::string& id);

    Ports ports_;
};

}  // namespace korvane
