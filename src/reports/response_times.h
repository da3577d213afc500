// The response times of each server over the day and over the days: the running average of its checks, kept as a row an hour and
// a row a day.
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

    /// Saves the averages of the servers from where `servers` stands, as many as take some milliseconds, and moves on behind
    /// them. They become durable together: the disk is waited for once. Adds to `saved` for each of them whether
    /// SaveResponseTimeData did its work. Raises nothing but what MoveNext does.
    void SaveSome(Connection& connection, Recordset& servers, std::vector<bool>& saved);

private:
    /// Folds `nAveSession` of the server that `serverRecord` stands on into `Response`; a new hour begins a new session. Hourly
    /// rows of any server older than 25 hours go. The graph page is written when an hour or a day begins. True when all of that
    /// was done: false for a server without an average, and for a failure, which ends it and is said on the status line. `batch`
    /// is begun with the first change.
    bool SaveResponseTimeData(Connection& connection, Recordset& serverRecord, std::optional<WriteBatch>& batch);
    void Save(Connection& connection, Recordset& serverRecord, double ave);
    bool OrSay(const std::function<void()>& work);
    void SaveHour(Connection& connection, Recordset& serverRecord, double ave);
    void BeginSession(Connection& connection, Recordset& serverRecord);
    void DropOldHours(Connection& connection);
    void SaveDay(Connection& connection, Recordset& serverRecord, double ave);
    void AddRow(Recordset& rows, Recordset& serverRecord, const char* txtType, double ave);

    Ports ports_;
    std::optional<DateTime> oldHoursGone_;  ///< before this moment, in the present batch
};

}  // namespace korvane
