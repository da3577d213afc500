// What keeps the database usable: compaction with one backup, all entries due now, removal of an entry with all that hangs on it,
// and resets of what was gathered. Each routine changes all of its rows in one transaction or none, handles its own errors, in
// the status log and in the dated log, and does not wait for anything but the disk: a large database blocks the program for
// seconds.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/files.h"
#include "store/log.h"
#include "store/status_log.h"

namespace korvane {

class Maintenance {
public:
    /// All are borrowed and must outlive this.
    struct Ports {
        Store& store;
        const Clock& clock;
        Files& files;
        Log& log;
        StatusLog& status;
        /// Makes the reports anew; tells its own errors.
        std::function<void()> publish;
    };

    Maintenance(Ports ports, std::string dir) : ports_(std::move(ports)), dir_(std::move(dir)) {}

    /// Compacts the database and leaves what was in it before as `<file>.BAK`. A damaged file is left untouched, backup included,
    /// and so is the file when something else fails.
    void CompactAndRepair(const std::string& file);

    /// Makes every monitored entry due now.
    void ResetAllEventsToNow();

    /// Removes the entry with its failures, response times and rules. Ids are decimal texts.
    void DeleteServerData(const std::string& id);

    /// Averages and counts back to their beginning, and the failures too if wanted; id "-1" means all entries.
    void ResetStatData(const std::string& id, bool deleteFailures) { TryResetStatData(id, deleteFailures); }

    /// Removes the hourly and daily averages; id "-1" means all entries.
    void ResetResponseData(const std::string& id) { TryResetResponseData(id); }

    /// The same for all entries, shown in new reports. A reset that failed publishes nothing.
    void ResetStatDataALL(bool deleteFailures);
    void ResetResponseDataALL();

private:
    bool TryResetStatData(const std::string& id, bool deleteFailures);
    bool TryResetResponseData(const std::string& id);
    void FinishReset();
    bool InTransaction(std::string_view routine, const std::function<void(Connection&)>& work);
    void ForEachRow(Connection& connection, const std::string& query, const std::function<void(Recordset&)>& change);
    void DeleteRows(Connection& connection, const std::string& query);
    void Tell(std::string_view routine, const std::string& description);

    Ports ports_;
    std::string dir_;
};

}  // namespace korvane
