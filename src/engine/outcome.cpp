#include "engine/outcome.h"

#include <algorithm>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "engine/server_table.h"
#include "store/database_files.h"

namespace korvane {
namespace {

using std::chrono::seconds;

constexpr std::int64_t kIntervalWithoutOne = 15000;
constexpr int kLongOutageTries = 50;
constexpr int kLongOutageFactor = 5;
constexpr seconds kLongestInterval = std::chrono::years(9999);

constexpr const char* kTip = "Korvane: Outcomes of checks can't be stored! ";
constexpr const char* kBegins = "Outcomes of checks can't be stored, and are lost: ";
constexpr const char* kIsOver = "Outcomes of checks are stored again.";

// A counter that was never written counts as zero.
std::int64_t CounterOf(Recordset& rs, std::string_view column) {
    const Value value = rs.Fields(column).Value();
    return value.IsBlank() ? 0 : value.Int64();
}

double AverageOf(Recordset& rs, std::string_view column) {
    const Value value = rs.Fields(column).Value();
    return value.IsBlank() ? 0.0 : value.Double();
}

std::int32_t AddOne(Recordset& rs, std::string_view column) {
    const std::int32_t count = CheckedInt32(CounterOf(rs, column) + 1);
    rs.Fields(column) = count;
    return count;
}

double PercentUp(std::int64_t failed, double total) {
    return 100.0 - static_cast<double>(failed) / total * 100.0;
}

// The interval has no upper limit, but dates have one: an interval beyond it means never again.
DateTime NextCheck(DateTime from, seconds interval) {
    try {
        return from + interval;
    } catch (const OverflowError&) {
        return DateTime::Last();
    }
}

// Returns a running average with one more sample.
double WithSample(double average, double count, double sample) {
    return ((count - 1) * average + sample) / count;
}

}  // namespace

std::string RefusalOf(const std::exception& error) {
    return dynamic_cast<const RowGoneError*>(&error) == nullptr ? error.what() : "";
}

void OutcomeAccounting::DoSuccess(Recordset& rs, Connection& conn, std::chrono::milliseconds nResponseMs) {
    const DateTime now = ports_.clock.Now();
    IgnoreErrors([&] { rs.Fields("strCurStatus") = status::kUp; });
    IgnoreErrors([&] { rs.Fields("datelastcheck") = now; });
    DateTime base = now;
    IgnoreErrors([&] { base = now - Stagger(rs.RecordCount()); });
    IgnoreErrors([&] {
        if (CounterOf(rs, "nIntervalSeconds") < 1) rs.Fields("nIntervalSeconds") = kIntervalWithoutOne;
    });
    IgnoreErrors([&] { rs.Fields("dtNextCheck") = NextCheck(base, seconds(rs.Fields("nIntervalSeconds").Value().Int64())); });
    IgnoreErrors([&] {
        if (HasComeBack(rs)) once_.OnRecovery(CounterOf(rs, "ID"), [&] { ports_.actions.DoUpAgainStuff(rs); });
    });
    IgnoreErrors([&] { rs.Fields("nTriesCur") = 0; });
    CountSuccess(rs, nResponseMs);
    if (IgnoreErrors([&] { UpdateWithMails(rs, conn); })) once_.Forget(CounterOf(rs, "ID"));
}

void OutcomeAccounting::UpdateWithMails(Recordset& rs, Connection& conn) {
    if (!ports_.outbox.HasUnwritten()) return rs.Update();
    conn.BeginTrans();
    try {
        rs.Update();
        ports_.outbox.WriteWith(conn);
    } catch (const std::exception&) {
        IgnoreErrors([&] { ports_.outbox.Commit(conn); });
        throw;
    }
    ports_.outbox.Commit(conn);
}

bool OutcomeAccounting::HasComeBack(Recordset& rs) const {
    return CounterOf(rs, "nTriesCur") >= TriesOf(rs).Int64() || once_.ActedOnOutage(CounterOf(rs, "ID"));
}

// Returns how far into the past the interval starts: up to a second for each row that was due, so that entries that are checked
// one after the other spread out.
seconds OutcomeAccounting::Stagger(int recordCount) {
    const double fraction = std::uniform_real_distribution<double>(0.0, 1.0)(random_);
    return seconds(RoundHalfEven(fraction * recordCount));
}

void OutcomeAccounting::CountSuccess(Recordset& rs, std::chrono::milliseconds nResponseMs) {
    const auto ms = static_cast<double>(nResponseMs.count());
    std::int64_t failed = 0;
    double total = 1;
    double session = 1;
    IgnoreErrors([&] { total = AddOne(rs, "nSuccess"); });
    IgnoreErrors([&] {
        failed = CounterOf(rs, "nFail");
        total += static_cast<double>(failed);
    });
    IgnoreErrors([&] { session = AddOne(rs, "nTotalSession"); });
    IgnoreErrors([&] { rs.Fields("nPercentUp") = PercentUp(failed, total); });
    // Failures count in the divisor and add nothing to the sum: each one lowers the average a little.
    IgnoreErrors([&] { rs.Fields("nAveResponse") = WithSample(AverageOf(rs, "nAveResponse"), total, ms); });
    IgnoreErrors([&] { rs.Fields("nAveSession") = WithSample(AverageOf(rs, "nAveSession"), session, ms); });
}

OwedFailure OutcomeAccounting::DoFailure(Recordset& rs, Connection& conn, const std::string& strResponse,
                                         const std::string& strReason) {
    OwedFailure owed;
    try {
        const std::string begin = WithoutControls(Left(strResponse, kMostStoredCharacters));
        rs.Fields("strLastResponse") = Left(strReason + " " + begin, kMostStoredCharacters);
        const std::int32_t failed = AddOne(rs, "nFail");
        const std::int16_t tries = CheckedInt16(CounterOf(rs, "nTriesCur") + 1);
        const auto total = static_cast<double>(CounterOf(rs, "nSuccess")) + failed;
        rs.Fields("nPercentUp") = PercentUp(failed, total);

        const std::string strAction = EnterFailureState(rs, conn, tries, strReason);
        const DateTime now = ports_.clock.Now();
        rs.Fields("datelastfail") = now;
        rs.Fields("datelastcheck") = now;
        rs.Fields("dtNextCheck") = NextCheckAfterFailure(rs, tries);
        owed.row = {strAction, strReason};
        Record(rs, conn, owed);
        ports_.events.DoEvents();
    } catch (const std::exception& error) {
        const std::string message = "DoFailure: Error: " + std::string(error.what());
        ports_.status.setStatusMSG(message);
        if (owed.refusal.empty()) ports_.log.WriteLog(kLogOrdinary, kLogError, message);
    }
    return owed;
}

void OutcomeAccounting::Record(Recordset& rs, Connection& conn, OwedFailure& owed) {
    try {
        WriteTogether(rs, conn, owed);
    } catch (const std::exception& error) {
        owed.refusal = RefusalOf(error);
        throw;
    }
    once_.Forget(CounterOf(rs, "ID"));
}

// The counters and their row are written together or not at all: a program that is killed in between must not leave one without
// the other.
void OutcomeAccounting::WriteTogether(Recordset& rs, Connection& conn, OwedFailure& owed) {
    bool counted = false;
    conn.BeginTrans();
    try {
        rs.Update();
        counted = true;
        ports_.outbox.WriteWith(conn);
        AddFailureRow(rs, conn, *owed.row);
    } catch (const std::exception&) {
        const bool kept = IgnoreErrors([&] { ports_.outbox.Commit(conn); });
        if (counted && !kept) owed.row.reset();
        throw;
    }
    owed.row.reset();  // if this fails, neither was written, and the entry is still due
    ports_.outbox.Commit(conn);
}

void OutcomeAccounting::Settle(Recordset& rs, Connection& conn, OwedFailure& owed) {
    if (!owed.row) return;
    AddFailureRow(rs, conn, *owed.row);
    owed = {};
}

std::string OutcomeAccounting::EnterFailureState(Recordset& rs, Connection& conn, std::int16_t tries,
                                                 const std::string& strReason) {
    const std::int64_t nTries = TriesOf(rs).Int64();
    const std::string strDesc = rs.Fields("strDesc").Value().Text();
    const std::int64_t id = CounterOf(rs, "ID");
    if (tries != nTries || once_.ActedOnRecovery(id)) once_.Forget(id);  // another outage
    const bool down = tries >= nTries;
    rs.Fields("strCurStatus") = down ? status::kDown : status::kFailing;
    rs.Fields("nTriesCur") = tries;
    if (!down) {
        ports_.person.SetTray(TrayPicture::Warning, "Korvane: " + strDesc + " just began failing. ");
        SoundAlert("bYellowAlert", "YellowAlertWav");
        return "None.";
    }
    ports_.person.SetTray(TrayPicture::Error, "Korvane: " + strDesc + " in failure state! ");
    SoundAlert("bRedAlert", "RedAlertWav");
    if (tries != nTries) return "None.";
    return once_.OnOutage(id, [&] { return ports_.actions.DoFailureStateStuff(conn, rs, strReason); });
}

void OutcomeAccounting::SoundAlert(const char* wantedKey, const char* fileKey) {
    if (ports_.settings.IsTrue(wantedKey)) ports_.sound.PlaySound(ports_.settings.getKvSettingsColVal(fileKey));
}

DateTime OutcomeAccounting::NextCheckAfterFailure(Recordset& rs, std::int16_t tries) const {
    const seconds retry(ParseWhole(ports_.settings.getKvSettingsColVal("GlobalRetryDuration")));
    const seconds interval(CounterOf(rs, "nIntervalSeconds"));
    const DateTime now = ports_.clock.Now();
    const bool workingTowardsDown = tries <= TriesOf(rs).Int64();
    if (workingTowardsDown && interval > retry) return NextCheck(now, retry);
    return NextCheck(now, tries > kLongOutageTries ? std::min(interval, kLongestInterval) * kLongOutageFactor : interval);
}

void OutcomeAccounting::AddFailureRow(Recordset& rs, Connection& conn, const OwedFailure::Row& row) {
    const auto failures = OpenRows(ports_.store, conn, query::kNoFailures);
    failures->AddNew();
    failures->Fields("ID") = ports_.ids.NewServerID();
    failures->Fields("IDParent") = rs.Fields("ID").Value();
    for (const char* column : {"strGroup", "strDesc", "strAddress_IP", "strType", "strPort", "nTimeout"}) {
        failures->Fields(column) = rs.Fields(column).Value();
    }
    failures->Fields("nFailCount") = rs.Fields("nTriesCur").Value();
    failures->Fields("nFailMax") = TriesOf(rs);
    failures->Fields("strAction") = row.strAction;
    failures->Fields("strReason") = Left(row.strReason, kMostStoredCharacters);
    failures->Fields("dateFail") = ports_.clock.Now();
    failures->Update();
    failures->Close();
}

void StoreAlarm::Note(const std::string& refusal) {
    const bool refused = !refusal.empty();
    // Set each time: the failure of an entry, or a new start of monitoring, sets its own picture.
    if (refused) ports_.person.SetTray(TrayPicture::Error, kTip);
    if (refused == raised_) return;
    raised_ = refused;
    const std::string text = refused ? kBegins + refusal : kIsOver;
    ports_.status.setStatusMSG(text);
    ports_.log.WriteLog(kLogOrdinary, kLogError, text);
    ports_.manager.Status(text);
}

}  // namespace korvane
