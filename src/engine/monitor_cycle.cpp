#include "engine/monitor_cycle.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "engine/down_time.h"
#include "engine/server_table.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::seconds;

constexpr auto kLookAhead = 120s;            // rows due so soon are read, though only a row already due is checked
constexpr auto kSleepWithNothingDue = 60s;   // half of the look-ahead
constexpr seconds kSleepWhileKeeping = 10s;  // what is kept in memory is written soon
constexpr std::int32_t kMostReportTicks = 1001;
constexpr std::int32_t kReportTicksAtLeast = 60;   // between publications
constexpr std::int32_t kReportTicksAtMost = 1000;  // the sleep branch is then forced
constexpr std::int32_t kMostCycleCount = 32000;
constexpr int kRefreshWhileSleeping = 10;  // seconds
constexpr int kSummaryEveryCycles = 5;
constexpr std::string_view kDashes = "------------------------------------";

bool IsOn(Recordset& rs, std::string_view column) {
    return rs.Fields(column).Value().Bool();
}

// Cuts the seconds of both off. Negative when `to` is earlier.
std::int64_t MinutesBetween(DateTime from, DateTime to) {
    const auto minuteOf = [](DateTime when) { return (when.Seconds() - when.Second()) / 60; };
    return minuteOf(to) - minuteOf(from);
}

}  // namespace

bool MonitorCycle::TimerMonitorDB_Timer(bool withinSecond) {
    const bool another = DoTick(withinSecond);
    if (state_.nSleepLeft > 0) ports_.store.Rest();
    return another;
}

bool MonitorCycle::DoTick(bool withinSecond) {
    Tick tick;
    tick.withinSecond = withinSecond;
    try {
        Step("Starting Monitor Timer");
        if (state_.nReportTicks > kMostReportTicks) {
            state_.nReportTicks = kMostReportTicks;
            Step("Setting Reports time to 1001");
        }
        if (!withinSecond) ++state_.nReportTicks;
        ++state_.nTicks;
        ports_.person.SetClockText(ports_.clock.Now().TimeText());
        Step("checking sleep time");
        if (state_.nSleepLeft > 0) return CountDownSleep();
        ports_.person.SetCycleText("Monitoring. Please Wait...");
        ports_.person.ShowProgress(false);
        Step("refresh url list");
        if (!withinSecond) ports_.person.RefreshURLList();
        return LookAtDatabase(tick);
    } catch (const std::exception& error) {
        if (IsAway(tick, error)) return false;
        if (StepOver(tick, error.what())) return true;
        if (tick.id == 0 && ports_.badEntries.On()) ports_.blind.IsBlind(error.what());
        Fail(tick, error.what());
    }
    return false;
}

bool MonitorCycle::CountDownSleep() {
    state_.nSleepLeft = !ports_.away.IsAway() && ports_.turn.IsAnyDue() ? 0 : state_.nSleepLeft - 1;
    const bool over = state_.nSleepLeft <= 0;
    if (!ports_.person.WindowVisible()) return over;
    if (state_.nSleepLeft % kRefreshWhileSleeping == 0) ports_.person.RefreshURLList();
    if (state_.nSleepTotal <= 0) return over;
    const std::string left = std::to_string(state_.nSleepLeft);
    ports_.person.SetProgress(state_.nSleepTotal - state_.nSleepLeft, state_.nSleepTotal);
    ports_.person.SetProgressTip("Next Monitoring Event scheduled to occur in " + left + " seconds.");
    ports_.person.SetCycleText("Sleeping for " + left + " seconds.");
    ports_.person.ShowProgress(true);
    return over;
}

bool MonitorCycle::LookAtDatabase(Tick& tick) {
    if (ports_.kept.Write()) ports_.alarm.Note("");
    OpenDueRows(tick);
    if (!TakeTurn(tick)) return false;
    GoToEntry(tick);
    const bool atOnce = ports_.alarm.Raised() || tick.withinSecond;
    bool goesOn = ports_.kept.Empty();
    bool isLate = false;
    bool another = false;
    if (tick.rs->RecordCount() < 1) {
        SleepWithNothingDue(tick);
    } else if (const seconds diff = SecondsUntilDue(tick); diff > 0s || state_.nReportTicks > kReportTicksAtMost) {
        tick.id = 0;  // an error in here is not the entry's
        SleepUntilDue(ports_.kept.Empty() ? diff : std::min(diff, kSleepWhileKeeping));
        if (tick.withinSecond) SeeAllRows(tick);
    } else {
        goesOn = HandleRow(tick) && !tick.withinSecond;
        another = tick.kept || HasMovedOn(tick);
        isLate = !another && !tick.refused;
        if (another) tick.id = 0;
    }
    if (goesOn && !(ports_.turn.IsShared() && tick.refused)) SummariseInTray(*tick.rs, atOnce);
    IgnoreErrors([&] { tick.rs->Close(); });
    IgnoreErrors([&] { tick.conn->Close(); });
    return another || (isLate && StepOver(tick, tick.owed.error.empty() ? "It stays due" : tick.owed.error));
}

// Only for safeguards. What is kept in memory counts instead of what is stored.
void MonitorCycle::GoToEntry(Tick& tick) {
    if (!ports_.badEntries.On() && ports_.kept.Empty()) return;
    const bool hasRows = tick.rs->RecordCount() > 0;
    ports_.blind.Sees(hasRows ? tick.rs.get() : nullptr);
    if (!hasRows) return;
    if (!ports_.kept.Empty()) {
        tick.due = query::ById(ports_.kept.FirstDue(*tick.rs));
        tick.rs->Close();
        tick.rs->Open(tick.due, *tick.conn, CursorType::Keyset, LockType::Pessimistic);
        ports_.kept.PutInto(*tick.rs);
    }
    tick.id = tick.rs->Fields("ID").Value().Int64();
}

// Returns whether the entry of the tick, which is still due, was set aside.
bool MonitorCycle::StepOver(Tick& tick, const std::string& error) {
    if (tick.id == 0) return false;
    IgnoreErrors([&] { tick.rs->Close(); });
    IgnoreErrors([&] { tick.conn->Close(); });
    return ports_.badEntries.SetAside(tick.id, error);
}

// Returns whether the entry has another time for its next check. The stagger may have put it before the last one.
bool MonitorCycle::HasMovedOn(Tick& tick) {
    if (!tick.stored || (tick.id == 0 && !ports_.safeguards.IsOn("CatchUp"))) return false;
    bool moved = false;
    IgnoreErrors([&] { moved = tick.rs->Fields("dtNextCheck").Value().When() != tick.dueAt; });
    if (moved) ports_.badEntries.Passed();
    return moved;
}

void MonitorCycle::OpenDueRows(Tick& tick) {
    tick.conn = ports_.store.NewConnection();
    tick.conn->SetConnectionString(ports_.connectionString);
    Step("open db");
    tick.conn->Open();
    tick.opened = true;
    if (ports_.turn.IsShared()) ports_.away.Back();
    ports_.turn.Begin(*tick.conn);
    const DateTime ahead = ports_.clock.Now() + kLookAhead;
    const bool needsAll = !tick.withinSecond || !ports_.kept.Empty();
    tick.due = needsAll ? query::DueBy(ahead) : query::FirstDueBy(ahead);
    tick.rs = ports_.store.NewRecordset();
    tick.rs->Open(tick.due, *tick.conn, CursorType::Keyset, LockType::Pessimistic);
    if (++state_.nCycleCount > kMostCycleCount) state_.nCycleCount = 0;
    ports_.accounting.Reseed(static_cast<std::uint32_t>(ports_.clock.GetTickCount().count()));
    ports_.person.SetProgress(0, 100);
}

// Returns false when other instances check all that is due. Reports that are overdue come before that.
bool MonitorCycle::TakeTurn(Tick& tick) {
    if (tick.rs->RecordCount() < 1 || state_.nReportTicks > kReportTicksAtMost || ports_.turn.Take(*tick.rs)) return true;
    if (ports_.badEntries.On()) ports_.blind.Sees(nullptr);
    return false;
}

// For the summary, which is not made while entries are due.
void MonitorCycle::SeeAllRows(Tick& tick) {
    tick.rs->Close();
    tick.rs->Open(query::DueBy(ports_.clock.Now() + kLookAhead), *tick.conn, CursorType::Keyset, LockType::Pessimistic);
}

seconds MonitorCycle::SecondsUntilDue(Tick& tick) {
    Step("checking dtnextcheck");
    if (tick.rs->Fields("dtNextCheck").Value().IsBlank()) tick.rs->Fields("dtNextCheck") = ports_.clock.Now();
    Step("checking dtNextCheck difference");
    tick.dueAt = tick.rs->Fields("dtNextCheck").Value().When();
    return tick.dueAt - ports_.clock.Now();
}

void MonitorCycle::Sleep(seconds time) {
    // A row overdue by more than nine hours would exceed 16 bits; it costs no sleep, like every overdue row.
    constexpr seconds::rep kLongestOverdue = std::numeric_limits<std::int16_t>::min();
    const std::int16_t length = CheckedInt16(std::max(time.count(), kLongestOverdue));
    state_.nSleepLeft = length;
    state_.nSleepTotal = length;
}

void MonitorCycle::SleepUntilDue(seconds diff) {
    Sleep(diff);
    if (state_.nReportTicks >= kReportTicksAtLeast) {
        state_.nReportTicks = 0;
        PublishReports();
    }
    Step("closeinets");
    ports_.http.CloseInets();
    Say(kDashes);
    Say("WAITING " + std::to_string(state_.nSleepLeft) + " SECONDS before checking database for next scheduled monitor event.");
    Say(kDashes);
    ports_.person.RefreshURLList();
}

// Nothing is known of the entry that was being checked; it is still due, for whoever comes first.
bool MonitorCycle::IsAway(const Tick& tick, const std::exception& error) {
    const bool lost = dynamic_cast<const ServerAwayError*>(&error) != nullptr;
    if (!ports_.turn.IsShared() || tick.conn == nullptr || (tick.opened && !lost)) return false;
    ports_.accounting.End(false);
    Sleep(ports_.away.Away(error.what()) - 1s);  // the next tick is a second away
    return true;
}

// An instance may leave the pages to others.
void MonitorCycle::PublishReports() {
    const std::string* const publishes = ports_.turn.IsShared() ? ports_.settings.Find("PublishPages") : nullptr;
    if (publishes != nullptr && EqualsNoCase(*publishes, "False")) return;
    Say(kDashes);
    if (state_.bReportsOK) {
        Say("Publishing Up-Time Reports...");
        ports_.events.DoEvents();
        Step("PublishReports");
        const std::string problem = ports_.reports.PublishReports();
        if (!problem.empty()) Say("Reporting Error: " + problem);
        LogOfTick(problem.empty() ? "Publishing Reports Success." : "Publishing Reports Failure: " + problem);
    } else {
        Say("Can't Publish Up-Time Reports:  Please click the Reports Button for more info.");
        Say("--" + state_.strReportsProblem);
        LogOfTick("Publishing Failure: DBConnect Failed.");
    }
    Say(kDashes);
}

void MonitorCycle::SleepWithNothingDue(Tick& tick) {
    Sleep(kSleepWithNothingDue);
    SayAndLog("No servers need monitoring at this time. Sleeping for 60 seconds...");
    Step("open db 2nd time");
    tick.rs->Close();
    tick.rs->Open(query::kAllByNextCheck, *tick.conn, CursorType::Keyset, LockType::Pessimistic);
    // The due query never finds a row without a time. Such a row comes first here, and becomes due.
    if (tick.rs->Fields("dtNextCheck").Value().IsBlank()) {
        tick.rs->Fields("dtNextCheck") = ports_.clock.Now();
        tick.rs->Update();
    }
    const DateTime next = tick.rs->Fields("dtNextCheck").Value().When();
    LogOfTick("Next Scheduled DATABASE SERVER event at " + next.Text() + " which is in " +
              std::to_string(MinutesBetween(ports_.clock.Now(), next)) + " minutes.");
}

bool MonitorCycle::HandleRow(Tick& tick) {
    Recordset& rs = *tick.rs;
    Say(">" + std::string(kDashes));
    state_.nSleepLeft = 0;
    state_.nSleepTotal = 0;
    Step("check downtime");
    const bool inDownTime = SuspendForDownTime(rs);
    Step("set blank status");
    if (rs.Fields("strCurStatus").Value().IsEmpty()) rs.Fields("strCurStatus") = status::kUp;
    if (inDownTime || !IsOn(rs, "bIsMonitoring")) {
        SkipRow(rs, inDownTime);
    } else if (!CheckRow(tick)) {
        NoteOutcome(tick, tick.owed.refusal);
        return false;
    }
    UpdateRow(tick);
    return true;
}

bool MonitorCycle::SuspendForDownTime(Recordset& rs) {
    std::vector<DownTimeWindow> holding;
    for (const std::string number : {"1", "2"}) {
        const std::string start = ColumnText(rs, "strDownTime" + number);
        if (start.empty()) continue;
        const DownTimeWindow window{number, start, ColumnText(rs, "nDownDuration" + number)};
        if (IsDownTime(window.start, window.minutes, ports_.clock.Now()).bIsDown) holding.push_back(window);
    }
    for (const DownTimeWindow& window : holding)
        EnterDownTime(rs, window);
    return !holding.empty();
}

void MonitorCycle::EnterDownTime(Recordset& rs, const DownTimeWindow& window) {
    Step("is downtime " + window.number);
    IgnoreErrors([&] { rs.Fields("strCurStatus") = status::kDownTime; });
    Say("Down time (" + window.start + ") for " + window.minutes + " minutes. - monitoring stopped.");
    const DateTime now = ports_.clock.Now();
    DateTime resume;
    IgnoreErrors([&] {
        resume = DownTimeEnd(window.start, std::chrono::minutes(ParseWhole(window.minutes)), now);
        rs.Fields("dtNextCheck") = resume;
    });
    IgnoreErrors([&] { rs.Update(); });
    Say("DownTime " + window.number + " (Begins: " + window.start + "). Server Checks Begin Again at " + resume.Text() +
        " which is in " + std::to_string(MinutesBetween(now, resume)) + " Minutes.");
}

void MonitorCycle::SkipRow(Recordset& rs, bool inDownTime) {
    const std::string address = ColumnText(rs, "strAddress_IP");
    Say("Skipping " + address);
    const DateTime now = ports_.clock.Now();
    if (inDownTime) {
        const auto minutes = MinutesBetween(now, rs.Fields("dtNextCheck").Value().When());
        LogOfTick("Skipping " + address + " because of server down time (set to resume in " + std::to_string(minutes) +
                  " minutes).");
    }
    if (!IsOn(rs, "bIsMonitoring")) {
        rs.Fields("strCurStatus") = status::kInactive;
        rs.Fields("dtNextCheck") = now + kInactiveInterval;
    }
}

void MonitorCycle::UpdateRow(Tick& tick) {
    Step("Update record");
    try {
        tick.rs->Update();
        ports_.accounting.Settle(*tick.rs, *tick.conn, tick.owed);
        NoteOutcome(tick, tick.owed.refusal);
    } catch (const std::exception& error) {
        LogOfTick("tried to update record. err = " + std::string(error.what()), kLogError);
        NoteRefusal(tick, RefusalOf(error));
        if (ports_.turn.IsShared()) return tick.rs->Close();
        // The row keeps its pending changes, and the first cursor move of the summary would try to write them again.
        tick.rs->Close();
        tick.rs->Open(tick.due, *tick.conn, CursorType::Keyset, LockType::Pessimistic);
    }
}

void MonitorCycle::NoteOutcome(Tick& tick, const std::string& refusal) {
    NoteRefusal(tick, refusal);
    if (tick.id != 0 && !tick.refused) ports_.kept.Written(tick.id, *tick.conn);
    tick.stored = !tick.refused;
}

void MonitorCycle::NoteRefusal(Tick& tick, const std::string& refusal) {
    tick.refused = !refusal.empty();
    ports_.accounting.End(!tick.refused);
    if (tick.refused && tick.id != 0 && !ports_.turn.IsShared())
        tick.kept = IgnoreErrors([&] { ports_.kept.Keep(*tick.rs, tick.owed); });
    ports_.alarm.Note(refusal, tick.kept);
}

void MonitorCycle::SayAndLog(const std::string& message) {
    Say(message);
    LogOfTick(message);
}

// Covers only the rows of the open result, from the current one on: the rows due soon, or all of them when nothing is due.
void MonitorCycle::SummariseInTray(Recordset& rs, bool atOnce) {
    if (ports_.alarm.Raised()) return;  // the alarm uses the tray
    const bool wanted = atOnce || state_.nCycleCount % kSummaryEveryCycles == 0 || ports_.person.WindowVisible();
    if (!wanted || rs.RecordCount() < 1) return;
    bool failing = false;
    bool down = false;
    for (; !rs.Eof() && !down; rs.MoveNext()) {
        const std::string current = ToLower(ColumnText(rs, "strCurStatus"));
        failing = failing || current == "failing";
        down = current == "down";
    }
    if (down) {
        ports_.person.SetTray(TrayPicture::Error, "Korvane: One or more Server in Failure State! ");
    } else if (failing) {
        ports_.person.SetTray(TrayPicture::Warning, "Korvane: One or more server are failing. ");
    } else {
        ports_.person.SetTray(TrayPicture::Normal, "Korvane Monitoring: No Recent Failures");
    }
}

void MonitorCycle::LogOfTick(const std::string& message, std::string_view messageClass) {
    ports_.log.WriteLog(kLogOrdinary, messageClass, "frmMonitor:TimerMonitorDB: " + message);
}

void MonitorCycle::Fail(const Tick& tick, const std::string& description) {
    const std::string where = description + " Last Step " + state_.strLastStep;
    Say("Monitor Timer Error: " + where);
    LogOfTick("Errors block: " + where + ": Reason ='" + tick.strReason + "'", kLogError);
}

}  // namespace korvane
