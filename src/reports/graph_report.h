// The response times of one server as bars, one row per hour or one row per day: two pages of one design.
#pragma once

#include <string>

#include "platform/clock.h"
#include "platform/connection.h"
#include "reports/report_folder.h"
#include "store/status_log.h"

namespace korvane {

class GraphReports {
public:
    struct Ports {
        Store& store;
        const Clock& clock;
        StatusLog& status;
        ReportFolder& folder;
    };

    explicit GraphReports(const Ports& ports) : ports_(ports) {}

    /// Write "hourly<id>.htm" (at most 26 rows) and "daily<id>.htm" (all rows, with "No Data" for days without one) for the
    /// current server of `serverRecord`, newest first; the newest row is 200 pixels wide and the others are relative to it. Throw
    /// nothing: a failure goes to the status line, and the older page stays.
    void PublishHourlyResponseTimeReport(Connection& connection, Recordset& serverRecord);
    void PublishDailyResponseTimeReport(Connection& connection, Recordset& serverRecord);

private:
    struct Kind;
    struct Bars;
    static const Kind kHourly;
    static const Kind kDaily;

    void PublishOrSay(const Kind& kind, Connection& connection, Recordset& serverRecord);
    void Publish(const Kind& kind, Connection& connection, Recordset& serverRecord);

    Ports ports_;
};

}  // namespace korvane
