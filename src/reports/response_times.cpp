#include "reports/response_times.h"

#include <algorithm>
#include <cstddef>
#include <exception>

#include "base/error.h"
#include "reports/columns.h"

namespace korvane {
namespace {

using std::chrono::hours;
using std::chrono::minutes;

constexpr hours kHoursKept{25};

/// Events are delayed by this time, plus one wait for the disk.
constexpr std::chrono::milliseconds kLongestBatch{8};

std::string Moment(DateTime when) {
    return "#" + when.DateText() + " " + when.TimeText() + "#";
}

std::string RowsOf(Recordset& serverRecord, const std::string& txtType, const std::string& since) {
    return "SELECT * FROM Response where idParent = " + TextOf(serverRecord, "ID") + " and txtType = '" + txtType +
           "' and dtCur >= " + since;
}

}  // namespace

void ResponseTimes::SaveSome(Connection& connection, Recordset& servers, std::vector<bool>& saved) {
    const auto deadline = ports_.clock.GetTickCount() + kLongestBatch;
    const auto first = static_cast<std::ptrdiff_t>(saved.size());
    std::optional<WriteBatch> batch;
    oldHoursGone_.reset();
    do {
        saved.push_back(SaveResponseTimeData(connection, servers, batch));
        servers.MoveNext();
    } while (!servers.Eof() && ports_.clock.GetTickCount() < deadline);
    const bool isDurable = !batch || OrSay([&] { batch->Commit(); });
    if (!isDurable) std::fill(saved.begin() + first, saved.end(), false);
}

bool ResponseTimes::SaveResponseTimeData(Connection& connection, Recordset& serverRecord, std::optional<WriteBatch>& batch) {
    double ave = 0;
    const bool done = OrSay([&] {
        ave = NumberOf(serverRecord, "nAveSession");
        if (ave == 0) return;
        if (!batch) batch.emplace(connection);
        Save(connection, serverRecord, ave);
    });
    return done && ave != 0;
}

bool ResponseTimes::OrSay(const std::function<void()>& work) {
    try {
        work();
        return true;
    } catch (const std::exception& error) {
        ports_.status.setStatusMSG("SaveResponseTimeData: " + std::string(error.what()));
        return false;
    }
}

void ResponseTimes::Save(Connection& connection, Recordset& serverRecord, double ave) {
    SaveHour(connection, serverRecord, ave);
    DropOldHours(connection);
    SaveDay(connection, serverRecord, ave);
}

void ResponseTimes::SaveHour(Connection& connection, Recordset& serverRecord, double ave) {
    const DateTime now = ports_.clock.Now();
    const auto rows = ports_.store.NewRecordset();
    rows->Open(RowsOf(serverRecord, "hour", Moment(now - minutes(now.Minute()))), connection, CursorType::Keyset,
               LockType::Optimistic);
    if (!rows->Eof()) {
        rows->Fields("dtCur") = now;
        rows->Fields("nAveResponse") = ave;
        return rows->Update();
    }
    AddRow(*rows, serverRecord, "hour", ave);
    BeginSession(connection, serverRecord);
    rows->Update();
    ports_.graphs.PublishHourlyResponseTimeReport(connection, serverRecord);
}

// Uses a recordset of its own: a change that cannot be written, because the entry was deleted or the store is locked, must not
// stay pending in the caller's recordset.
void ResponseTimes::BeginSession(Connection& connection, Recordset& serverRecord) {
    const auto rs = ports_.store.NewRecordset();
    rs->Open("SELECT * FROM Servers where ID = " + TextOf(serverRecord, "ID"), connection, CursorType::Keyset,
             LockType::Optimistic);
    rs->Fields("nTotalSession") = 0;
    rs->Fields("nAveSession") = 0.0;
    rs->Update();
}

// Within a batch nothing else changes, so a second check in the same second would find nothing.
void ResponseTimes::DropOldHours(Connection& connection) {
    const DateTime since = ports_.clock.Now() - kHoursKept;
    if (oldHoursGone_ == since) return;
    const auto rows = ports_.store.NewRecordset();
    rows->Open("SELECT * FROM Response where txtType = 'hour' and dtCur < " + Moment(since), connection, CursorType::Keyset,
               LockType::Optimistic);
    for (; !rows->Eof(); rows->MoveNext())
        rows->Delete();
    oldHoursGone_ = since;
}

// The stored value counts as many hours as have passed, the new one as one hour, however often it is published within the hour.
void ResponseTimes::SaveDay(Connection& connection, Recordset& serverRecord, double ave) {
    const DateTime now = ports_.clock.Now();
    const auto rows = ports_.store.NewRecordset();
    rows->Open(RowsOf(serverRecord, "day", "#" + now.DateText() + "#"), connection, CursorType::Keyset, LockType::Optimistic);
    if (rows->Eof()) {
        AddRow(*rows, serverRecord, "day", ave);
        rows->Update();
        return ports_.graphs.PublishDailyResponseTimeReport(connection, serverRecord);
    }
    rows->Fields("dtCur") = now;
    const double stored = NumberOf(*rows, "nAveResponse");
    const int h = now.Hour();
    if (h == 0) throw Error("Division by zero", 11);  // in the hour after midnight the day's row stays unchanged
    rows->Fields("nAveResponse") = ((stored == 0 ? ave : stored) * (h - 1) + ave) / h;
    rows->Update();
}

void ResponseTimes::AddRow(Recordset& rows, Recordset& serverRecord, const char* txtType, double ave) {
    rows.AddNew();
    rows.Fields("id") = ports_.ids.NewServerID();
    rows.Fields("idParent") = serverRecord.Fields("ID").Value();
    rows.Fields("txtType") = txtType;
    rows.Fields("dtCur") = ports_.clock.Now();
    rows.Fields("nAveResponse") = ave;
}

}  // namespace korvane
