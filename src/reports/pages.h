// The pages of a publish below the page of all groups, what they work with, and their use of the store.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/datetime.h"
#include "base/ignore_errors.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/events.h"
#include "platform/files.h"
#include "platform/operator.h"
#include "reports/page_text.h"
#include "reports/report_folder.h"
#include "store/alert_path.h"
#include "store/database_files.h"
#include "store/duty.h"
#include "store/server_id.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

/// Columns contain what an operator typed or an old version left, so any may be blank, and one blank must not cost a whole group its
/// page: it is returned as the empty text here, and as 0 below.
inline std::string TextOf(Recordset& rs, std::string_view column) {
    return rs.Fields(column).Value().Text();
}

/// Throws Error for a text that is not a number.
inline double NumberOf(Recordset& rs, std::string_view column) {
    const Value value = rs.Fields(column).Value();
    return value.IsEmpty() ? 0 : value.Double();
}

/// Several changes of the store that become durable together, so that a loop waits for the disk once instead of once per row. No
/// event may be delivered while a batch exists: the store is locked for everyone else.
class WriteBatch {
public:
    /// Throws Error when the store cannot be written now.
    explicit WriteBatch(Connection& connection) : connection_(connection) { connection_.BeginTrans(); }
    /// Changes from before a failure stay.
    ~WriteBatch() {
        if (!ended_) IgnoreErrors([&] { connection_.CommitTrans(); });
    }
    WriteBatch(const WriteBatch&) = delete;
    WriteBatch& operator=(const WriteBatch&) = delete;

    /// Throws Error; nothing of the batch is then written.
    void Commit() {
        ended_ = true;
        connection_.CommitTrans();
    }

private:
    Connection& connection_;
    bool ended_ = false;
};

struct ReportPorts {
    Store& store;
    const Clock& clock;
    Events& events;
    Operator& person;
    Files& files;
    StatusLog& status;
    const SettingsCollection& settings;
    ServerIds& ids;
    Safeguards& safeguards;
    const AlertPath& alertPath;
    std::function<std::string(std::string_view text)> withoutPasswords = {};  ///< none: texts stay as they are

    std::string Hidden(const std::string& text) const { return withoutPasswords ? withoutPasswords(text) : text; }
    Duty* duty = nullptr;  ///< to store response times and to trim failures, where instances share the list
};

/// One publish.
struct Publication : ReportPorts {
    ReportFolder& folder;
    Connection& connection;
    bool bQuiet;                   ///< graphs are written only when a new hour or day begins
    DateTime lastPublish;          ///< servers that failed then or later get a new failure page
    std::string& strErr;           ///< the errors are added to it
    bool stores;                   ///< response times are stored, and failures trimmed; not while another instance does it
    PageText outside{safeguards};  ///< for texts that are Hidden

    std::unique_ptr<Recordset> Read(std::string_view query) const {
        return OpenRows(store, connection, query, CursorType::Static, LockType::BatchOptimistic);
    }
    /// Returns rows that can be changed one by one.
    std::unique_ptr<Recordset> Change(std::string_view query) const {
        return OpenRows(store, connection, query, CursorType::Keyset, LockType::Optimistic);
    }

    /// Returns a column as it stands in a page.
    std::string Shown(Recordset& rs, std::string_view column) const { return Shown(TextOf(rs, column)); }
    std::string Shown(const std::string& text) const { return outside.Text(Hidden(text)); }

    /// Both run the work and return whether it succeeded. A failure is added to `strErr`, or goes to the status line, each after
    /// `routine`.
    bool OrAdd(const char* routine, const std::function<void()>& work) const;
    bool OrSay(const char* routine, const std::function<void()>& work) const;
};

/// The page of a group: a row for each server, worst first, and the averages of those that are up. It also stores each server's
/// response times, and writes a new failure page for a server that failed recently, or at least has its failures trimmed. Delivers
/// events at least once for each server. A failure ends the page, whose older form stays.
void PublishSummaryReport(const Publication& publication, const std::string& strGroup);

/// The page with the failures of one server, newest first, "failure<id>.htm", which may have more rows than fit in memory. Then
/// trims the records, also after an error of the page.
void PublishFailureReport(const Publication& publication, const std::string& id, const std::string& idCustomer,
                          const std::string& strGroup);

/// If a server has more than 50 failures, keeps its 40 newest, so that they never grow without limit. Throws Error.
void TrimFailures(const Publication& publication, const std::string& id);

/// The response times of the current server of `serverRecord` as bars: "hourly<id>.htm" (at most 26 rows) and "daily<id>.htm" (all
/// rows, with "No Data" for days without one), newest first; the newest row is 200 pixels wide and the others are relative to it.
/// Throw nothing: a failure goes to the status line, and the older page stays.
void PublishHourlyResponseTimeReport(const Publication& publication, Recordset& serverRecord);
void PublishDailyResponseTimeReport(const Publication& publication, Recordset& serverRecord);

/// Stores the running averages of the servers as one row per hour and one row per day, starting at the current row of `servers`,
/// for some milliseconds, and moves on past them. They become durable together, with one wait for the disk. Adds to `saved`, for
/// each of them, whether it has an average that was saved; a failure goes to the status line. Throws only what MoveNext throws.
void SaveSomeResponseTimes(const Publication& publication, Recordset& servers, std::vector<bool>& saved);

}  // namespace korvane
