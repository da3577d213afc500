#include "engine/outcome.h"

#include <algorithm>
#include <limits>
#include <utility>

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
constexpr seconds kRetryWithoutOne(60);
constexpr std::int64_t kStaggerPart = 10;  // of an interval
constexpr int kLongOutageTries = 50;
constexpr int kLongOutageFactor = 5;
constexpr seconds kLongestInterval = std::chrono::years(9999);

constexpr const char* kTip = "Korvane: Outcomes of checks can't be stored! ";
constexpr const char* kBegins = "Outcomes of checks can't be stored, and are lost: ";
constexpr const char* kKept = "Outcomes of checks can't be stored, and are kept in memory: ";
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

// Returns one more; with `stays` at most the highest value of the counter.
template <class Counter>
std::int64_t OneMore(std::int64_t count, bool stays) {
    const std::int64_t most = std::numeric_limits<Counter>::max();
    return stays && count >= most ? most : count + 1;
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

seconds LongestInterval(std::int64_t nIntervalSeconds, std::int64_t nTriesCur) {
    const seconds interval(nIntervalSeconds < 1 ? kIntervalWithoutOne : nIntervalSeconds);
    return std::min(interval, kLongestInterval) * (nTriesCur > kLongOutageTries ? kLongOutageFactor : 1);
}

std::string OutcomeAccounting::DoSuccess(Recordset& rs, Connection& conn, std::chrono::milliseconds nResponseMs) {
    const DateTime now = ports_.clock.Now();
    IgnoreErrors([&] { rs.Fields("strCurStatus") = status::kUp; });
    IgnoreErrors([&] { rs.Fields("datelastcheck") = now; });
    DateTime base = now;
    IgnoreErrors([&] { base = now - Stagger(rs); });
    IgnoreErrors([&] {
        if (CounterOf(rs, "nIntervalSeconds") < 1) rs.Fields("nIntervalSeconds") = kIntervalWithoutOne;
    });
    IgnoreErrors([&] { rs.Fields("dtNextCheck") = NextCheck(base, seconds(rs.Fields("nIntervalSeconds").Value().Int64())); });
    IgnoreErrors([&] {
        if (!HasComeBack(rs)) return;
        once_.OnRecovery(CounterOf(rs, "ID"), [&] {
            if (HasFailed(rs)) NoteOutage(rs, false, "");
            ports_.actions.DoUpAgainStuff(rs);
        });
    });
    IgnoreErrors([&] { rs.Fields("nTriesCur") = 0; });
    CountSuccess(rs, nResponseMs);
    std::string refusal;
    if (IgnoreErrors([&] { refusal = UpdateWithMails(rs, conn); }) && refusal.empty()) once_.Forget(CounterOf(rs, "ID"));
    return refusal;
}

// A row whose Update failed keeps its pending changes; one whose transaction failed has none that a later Update could write.
std::string OutcomeAccounting::UpdateWithMails(Recordset& rs, Connection& conn) {
    ports_.keeper.Prepare(rs, conn);
    if (!ports_.outbox.HasUnwritten() && !ports_.keeper.HasUnwritten()) {
        rs.Update();
        End(true);
        return "";
    }
    conn.BeginTrans();
    try {
        rs.Update();
        ports_.outbox.WriteWith(conn);
        ports_.keeper.WriteWith(conn);
    } catch (const std::exception& error) {
        CommitWhatThereIs(conn);
        if (IsShared()) return error.what();
        throw;
    }
    try {
        Commit(conn);
    } catch (const std::exception& error) {
        return RefusalOf(error);
    }
    return "";
}

void OutcomeAccounting::Commit(Connection& conn) {
    ports_.outbox.Commit(conn);
    ports_.keeper.Committed();
    End(true);
}

// Returns whether it is stored. Where instances share the list, it is all or nothing: another may go on from here.
bool OutcomeAccounting::CommitWhatThereIs(Connection& conn) {
    if (!IsShared()) return IgnoreErrors([&] { ports_.outbox.Commit(conn); });
    conn.Close();
    return false;
}

void OutcomeAccounting::End(bool stored) {
    if (!IsShared()) return;
    ports_.actions.Settle(stored);
    stored ? ports_.outbox.Flush() : ports_.outbox.DropUnwritten();
    if (!stored) ports_.keeper.Drop();
    once_ = {};
}

std::int32_t OutcomeAccounting::AddOne(Recordset& rs, std::string_view column) {
    const std::int32_t count = CheckedInt32(OneMore<std::int32_t>(CounterOf(rs, column), Guarded()));
    rs.Fields(column) = count;
    return count;
}

bool OutcomeAccounting::HasComeBack(Recordset& rs) const {
    return CounterOf(rs, "nTriesCur") >= TriesOf(rs).Int64() || once_.ActedOnOutage(CounterOf(rs, "ID"));
}

// Returns how far into the past the interval starts: up to a second for each row that was due, so that entries that are checked
// one after the other spread out. When they catch up, it is at most a tenth of the interval: otherwise an entry that was just
// checked could come before one that still waits.
seconds OutcomeAccounting::Stagger(Recordset& rs) {
    const double fraction = std::uniform_real_distribution<double>(0.0, 1.0)(random_);
    std::int64_t most = rs.RecordCount();
    if (ports_.safeguards.IsOn("CatchUp")) {
        const std::int64_t interval = CounterOf(rs, "nIntervalSeconds");
        most = std::min(most, (interval < 1 ? kIntervalWithoutOne : interval) / kStaggerPart);
    }
    return seconds(RoundHalfEven(fraction * static_cast<double>(most)));
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
        if (IsExcused(rs, strReason, owed)) return owed;
        const std::string begin = WithoutControls(Left(strResponse, kMostStoredCharacters));
        rs.Fields("strLastResponse") = Left(strReason + " " + begin, kMostStoredCharacters);
        const std::int32_t failed = AddOne(rs, "nFail");
        std::int16_t tries = CheckedInt16(OneMore<std::int16_t>(CounterOf(rs, "nTriesCur"), Guarded()));
        lacksWitnesses_ = IsShared() && LacksWitnesses(rs, conn, tries, strReason);
        if (lacksWitnesses_) tries = CheckedInt16(std::max<std::int64_t>(TriesOf(rs).Int64() - 1, 0));
        const auto total = static_cast<double>(CounterOf(rs, "nSuccess")) + failed;
        rs.Fields("nPercentUp") = PercentUp(failed, total);

        const std::string strAction = EnterFailureState(rs, conn, tries, strReason);
        const DateTime now = ports_.clock.Now();
        rs.Fields("datelastfail") = now;
        rs.Fields("datelastcheck") = now;
        rs.Fields("dtNextCheck") = lacksWitnesses_ ? now : NextCheckAfterFailure(rs, tries);
        owed.row = {strAction, strReason};
        Record(rs, conn, owed);
        ports_.events.DoEvents();
    } catch (const std::exception& error) {
        owed.error = error.what();
        const std::string message = "DoFailure: Error: " + std::string(error.what());
        ports_.status.setStatusMSG(message);
        if (owed.refusal.empty()) ports_.log.WriteLog(kLogOrdinary, kLogError, message);
    }
    return owed;
}

// The entry then stays at its last try, and is due at once: this instance leaves it to the others.
bool OutcomeAccounting::LacksWitnesses(Recordset& rs, Connection& conn, std::int64_t tries, const std::string& strReason) {
    const std::string before = ColumnText(rs, "strCurStatus");
    const bool enough =
        ports_.witnesses->See(conn, CounterOf(rs, "ID"), before != status::kFailing && before != status::kDown, strReason);
    return !enough && before != status::kDown && tries >= TriesOf(rs).Int64();
}

bool OutcomeAccounting::IsExcused(Recordset& rs, const std::string& strReason, OwedFailure& owed) {
    try {
        return ports_.network.Excuses(rs, strReason);
    } catch (const std::exception& error) {
        owed.refusal = RefusalOf(error);
        throw;
    }
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
    ports_.keeper.Prepare(rs, conn);
    conn.BeginTrans();
    try {
        rs.Update();
        counted = true;
        ports_.outbox.WriteWith(conn);
        AddFailureRow(rs, conn, *owed.row);
        ports_.keeper.WriteWith(conn);
        if (IsShared()) ports_.witnesses->WriteWith(conn);
    } catch (const std::exception&) {
        const bool kept = CommitWhatThereIs(conn);
        if (IsShared() && !kept) owed.row.reset();
        if (counted && !kept) owed.uncommitted = std::exchange(owed.row, std::nullopt);
        throw;
    }
    owed.uncommitted = std::exchange(owed.row, std::nullopt);  // if this fails, neither was written, and the entry is still due
    Commit(conn);
    owed.uncommitted.reset();
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
    const bool down = tries >= nTries && !lacksWitnesses_;
    rs.Fields("strCurStatus") = down ? status::kDown : status::kFailing;
    rs.Fields("nTriesCur") = tries;
    if (!down) {
        ports_.person.SetTray(TrayPicture::Warning, "Korvane: " + strDesc + " just began failing. ");
        SoundAlert("bYellowAlert", "YellowAlertWav");
        return "None.";
    }
    ports_.person.SetTray(TrayPicture::Error, "Korvane: " + strDesc + " in failure state! ");
    SoundAlert("bRedAlert", "RedAlertWav");
    if (nTries < 1 && tries == 1) NoteOutage(rs, true, strReason);  // without any actions
    if (tries != nTries) return "None.";
    return once_.OnOutage(id, [&] {
        NoteOutage(rs, true, strReason);
        return ports_.actions.DoFailureStateStuff(conn, rs, strReason);
    });
}

// With 0 tries every success is taken for a recovery.
bool OutcomeAccounting::HasFailed(Recordset& rs) const {
    return CounterOf(rs, "nTriesCur") > 0 || once_.ActedOnOutage(CounterOf(rs, "ID"));
}

void OutcomeAccounting::NoteOutage(Recordset& rs, bool isDown, const std::string& strReason) {
    IgnoreErrors([&] {
        const std::string strDesc = Trim(rs.Fields("strDesc").Value().Text());
        ports_.person.NoteOutage(strDesc.empty() ? rs.Fields("strAddress_IP").Value().Text() : strDesc, isDown, strReason);
    });
}

void OutcomeAccounting::SoundAlert(const char* wantedKey, const char* fileKey) {
    if (ports_.settings.IsTrue(wantedKey)) ports_.sound.PlaySound(ports_.settings.getKvSettingsColVal(fileKey));
}

seconds OutcomeAccounting::RetryDuration() {
    const std::string text = ports_.settings.getKvSettingsColVal("GlobalRetryDuration");
    if (!Guarded()) return seconds(ParseWhole(text));
    std::int64_t retry = 0;
    if (IgnoreErrors([&] { retry = ParseWhole(text); }) && retry > 0) return seconds(retry);
    if (std::exchange(toldRetry_, text + ".") != text + ".") {
        const std::string problem = "GlobalRetryDuration: '" + text + "' is not a number of seconds. 60 is used.";
        ports_.status.setStatusMSG(problem);
        ports_.log.WriteLog(kLogOrdinary, kLogError, problem);
    }
    return kRetryWithoutOne;
}

DateTime OutcomeAccounting::NextCheckAfterFailure(Recordset& rs, std::int16_t tries) {
    const seconds retry = RetryDuration();
    const seconds interval(CounterOf(rs, "nIntervalSeconds"));
    const DateTime now = ports_.clock.Now();
    const bool workingTowardsDown = tries <= TriesOf(rs).Int64();
    const bool longOutage = tries > kLongOutageTries;
    const seconds wait = workingTowardsDown && interval > retry ? retry
                         : longOutage                           ? std::min(interval, kLongestInterval) * kLongOutageFactor
                                                                : interval;
    // An entry that stays due would be checked over and over, before all that wait.
    return NextCheck(now, Guarded() || ports_.safeguards.IsOn("CatchUp") ? std::max(wait, seconds(1)) : wait);
}

std::vector<std::pair<std::string, Value>> FailureColumns(Recordset& rs, const OwedFailure::Row& row, DateTime now) {
    std::vector<std::pair<std::string, Value>> columns{{"IDParent", rs.Fields("ID").Value()}};
    for (const char* column : {"strGroup", "strDesc", "strAddress_IP", "strType", "strPort", "nTimeout"})
        columns.emplace_back(column, rs.Fields(column).Value());
    columns.emplace_back("nFailCount", rs.Fields("nTriesCur").Value());
    columns.emplace_back("nFailMax", TriesOf(rs));
    columns.emplace_back("strAction", row.strAction);
    columns.emplace_back("strReason", Left(row.strReason, kMostStoredCharacters));
    columns.emplace_back("dateFail", now);
    return columns;
}

void OutcomeAccounting::AddFailureRow(Recordset& rs, Connection& conn, const OwedFailure::Row& row) {
    const auto failures = OpenRows(ports_.store, conn, query::kNoFailures);
    failures->AddNew();
    failures->Fields("ID") = ports_.ids.NewServerID();
    for (const auto& [column, value] : FailureColumns(rs, row, ports_.clock.Now()))
        failures->Fields(column) = value;
    failures->Update();
    failures->Close();
}

void StoreAlarm::Note(const std::string& refusal, bool kept) {
    const bool refused = !refusal.empty();
    // Set each time: the failure of an entry, or a new start of monitoring, sets its own picture.
    if (refused) ports_.person.SetTray(TrayPicture::Error, kTip);
    if (refused == raised_) return;
    raised_ = refused;
    const std::string text = refused ? (kept ? kKept : kBegins) + refusal : kIsOver;
    ports_.status.setStatusMSG(text);
    ports_.log.WriteLog(kLogOrdinary, kLogError, text);
    ports_.manager.Status(text);
}

}  // namespace korvane
