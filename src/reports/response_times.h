// The response times of each server by hour and by day: the running average of its checks, stored as one row per hour and one row
// per day.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/connection.h"
#include "reports/graph_report.h"
#include "reports/write_batch.h"
#include "store/server_id.h"
#include "store/status_log.h"

namespace korvane {

class ResponseTimes {
public:
    struct Ports {
        Store& store;
        const Clock& clock;
        StatusLog& status;
        ServerIds& ids;
        GraphReports& graphs;
    };

    explicit ResponseTimes(const Ports& ports) : ports_(ports) {}

    /// Saves the averages of the servers, starting at the current row of `servers`, for some milliseconds, and moves on past
    /// them. They become durable together, with one wait for the disk. Adds to `saved`, for each of them, whether
    /// SaveResponseTimeData succeeded. Throws only what MoveNext throws.
    void SaveSome(Connection& connection, Recordset& servers, std::vector<bool>& saved);

private:
    /// Adds `nAveSession` of the current server of `serverRecord` to `Response`; a new hour begins a new session. Hourly rows of
    /// any server older than 25 hours are deleted. The graph page is written when an hour or a day begins. Returns true when all
    /// of that was done; false for a server without an average, and after a failure, which goes to the status line. `batch` is
    /// begun with the first change.
    bool SaveResponseTimeData(Connection& connection, Recordset& serverRecord, std::optional<WriteBatch>& batch);
    void Save(Connection& connection, Recordset& serverRecord, double ave);
    bool OrSay(const std::function<void()>& work);
    void SaveHour(Connection& connection, Recordset& serverRecord, double ave);
    void BeginSession(Connection& connection, Recordset& serverRecord);
    void DropOldHours(Connection& connection);
    void SaveDay(Connection& connection, Recordset& serverRecord, double ave);
    void AddRow(Recordset& rows, Recordset& serverRecord, const char* txtType, double ave);

    Ports ports_;
    std::optional<DateTime> oldHoursGone_;  ///< up to this moment, in the present batch
};

}  // namespace korvane
