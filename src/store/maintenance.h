// Maintenance of the database: compaction with one backup, making all entries due now, removal of an entry with everything that
// belongs to it, and resets of collected data. Each routine changes either all of its rows, in one transaction, or none, reports
// its own errors in the status log and in the dated log, and waits only for the disk: a large database blocks the program for
// seconds.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/files.h"
#include "store/database_rescue.h"
#include "store/log.h"
#include "store/status_log.h"

namespace korvane {

class Maintenance {
public:
    /// Holds references; everything must outlive this.
    struct Ports {
        Store& store;
        const Clock& clock;
        Files& files;
        Log& log;
        StatusLog& status;
        DatabaseRescue& rescue;
        /// Generates the reports again; reports its own errors.
        std::function<void()> publish;
    };

    Maintenance(Ports ports, std::string dir) : ports_(std::move(ports)), dir_(std::move(dir)) {}

    /// Compacts the database and keeps its former content as `<file>.BAK`, if DatabaseRescue lets that be replaced. If the file is damaged, both file and backup stay
    /// unchanged; the file also stays unchanged after any other failure.
    void CompactAndRepair(const std::string& file);

    /// Makes every monitored entry due now.
    void ResetAllEventsToNow();

    /// Removes the entry with its failures, response times and rules. Ids are decimal texts.
    void DeleteServerData(const std::string& id);
    /// The same for several, all or none.
    void DeleteServersData(const std::vector<std::string>& ids);

    /// Both return whether the rows were changed. Resets averages and counts, and deletes the failures too if `deleteFailures` is set; id "-1" means all entries.
    bool ResetStatData(const std::string& id, bool deleteFailures);

    /// Removes the hourly and daily averages; id "-1" means all entries.
    bool ResetResponseData(const std::string& id);

    /// The same for all entries, followed by new reports. A failed reset publishes nothing.
    void ResetStatDataALL(bool deleteFailures);
    void ResetResponseDataALL();

private:
    void FinishReset();
    bool InTransaction(std::string_view routine, const std::function<void(Connection&)>& work);
    void ForEachRow(Connection& connection, const std::string& query, const std::function<void(Recordset&)>& work);
    void DeleteRows(Connection& connection, const std::string& query);
    void Report(std::string_view routine, const std::string& description);

    Ports ports_;
    std::string dir_;
};

}  // namespace korvane
