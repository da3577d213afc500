// The response times of each server by hour and by day: the running average of its checks, stored as one row per hour and one row
// per day.
#include <algorithm>
#include <cstddef>
#include <optional>

#include "base/error.h"
#include "reports/pages.h"

namespace korvane {
namespace {

using std::chrono::hours;
using std::chrono::minutes;

constexpr hours kHoursKept{25};

/// Events are delayed by this time, plus one wait for the disk.
constexpr std::chrono::milliseconds kLongestBatch{8};

constexpr const char* kRoutine = "SaveResponseTimeData: ";

std::string Moment(DateTime when) {
    return "#" + when.DateText() + " " + when.TimeText() + "#";
}

std::string ResponsesOf(Recordset& server, const std::string& txtType, const std::string& since) {
    return "SELECT * FROM Response where idParent = " + TextOf(server, "ID") + " and txtType = '" + txtType +
           "' and dtCur >= " + since;
}

/// The averages of some servers, which become durable together.
class SessionAverages {
public:
    explicit SessionAverages(const Publication& publication) : publication_(publication) {}

    /// Returns whether the current server of `server` has an average that was saved.
    bool Save(Recordset& server) {
        double ave = 0;
        const bool done = publication_.OrSay(kRoutine, [&] {
            ave = NumberOf(server, "nAveSession");
            if (ave == 0 || !publication_.stores) return;
            if (!batch_) batch_.emplace(publication_.connection);
            SaveHour(server, ave);
            DropOldHours();
            SaveDay(server, ave);
        });
        return done && ave != 0;
    }

    bool Commit() {
        return !batch_ || publication_.OrSay(kRoutine, [&] { batch_->Commit(); });
    }

private:
    // A new hour begins a new session.
    void SaveHour(Recordset& server, double ave) {
        const DateTime now = publication_.clock.Now();
        const auto rows = publication_.Change(ResponsesOf(server, "hour", Moment(now - minutes(now.Minute()))));
        if (!rows->Eof()) {
            rows->Fields("dtCur") = now;
            rows->Fields("nAveResponse") = ave;
            return rows->Update();
        }
        AddRow(*rows, server, "hour", ave);
        BeginSession(server);
        rows->Update();
        PublishHourlyResponseTimeReport(publication_, server);
    }

    // Uses a recordset of its own: a change that cannot be written, because the entry was deleted or the store is locked, must not
    // stay pending in the caller's recordset.
    void BeginSession(Recordset& server) {
        const auto rs = publication_.Change("SELECT * FROM Servers where ID = " + TextOf(server, "ID"));
        rs->Fields("nTotalSession") = 0;
        rs->Fields("nAveSession") = 0.0;
        rs->Update();
    }

    // Of all servers. Within a batch nothing else changes, so a second check in the same second would find nothing.
    void DropOldHours() {
        const DateTime since = publication_.clock.Now() - kHoursKept;
        if (oldHoursGone_ == since) return;
        const auto rows = publication_.Change("SELECT * FROM Response where txtType = 'hour' and dtCur < " + Moment(since));
        for (; !rows->Eof(); rows->MoveNext())
            rows->Delete();
        oldHoursGone_ = since;
    }

    // The stored value counts as many hours as have passed, the new one as one hour, however often it is published within the hour.
    void SaveDay(Recordset& server, double ave) {
        const DateTime now = publication_.clock.Now();
        const auto rows = publication_.Change(ResponsesOf(server, "day", "#" + now.DateText() + "#"));
        if (rows->Eof()) {
            AddRow(*rows, server, "day", ave);
            rows->Update();
            return PublishDailyResponseTimeReport(publication_, server);
        }
        rows->Fields("dtCur") = now;
        const double stored = NumberOf(*rows, "nAveResponse");
        const int h = now.Hour();
        if (h == 0) throw Error("Division by zero", 11);  // in the hour after midnight the day's row stays unchanged
        rows->Fields("nAveResponse") = ((stored == 0 ? ave : stored) * (h - 1) + ave) / h;
        rows->Update();
    }

    void AddRow(Recordset& rows, Recordset& server, const char* txtType, double ave) {
        rows.AddNew();
        rows.Fields("id") = publication_.ids.NewServerID();
        rows.Fields("idParent") = server.Fields("ID").Value();
        rows.Fields("txtType") = txtType;
        rows.Fields("dtCur") = publication_.clock.Now();
        rows.Fields("nAveResponse") = ave;
    }

    const Publication& publication_;
    std::optional<WriteBatch> batch_;       ///< begun with the first change
    std::optional<DateTime> oldHoursGone_;  ///< up to this moment
};

}  // namespace

void SaveSomeResponseTimes(const Publication& publication, Recordset& servers, std::vector<bool>& saved) {
    const auto deadline = publication.clock.GetTickCount() + kLongestBatch;
    const auto first = static_cast<std::ptrdiff_t>(saved.size());
    SessionAverages averages(publication);
    do {
        saved.push_back(averages.Save(servers));
        servers.MoveNext();
    } while (!servers.Eof() && publication.clock.GetTickCount() < deadline);
    if (!averages.Commit()) std::fill(saved.begin() + first, saved.end(), false);
}

}  // namespace korvane
