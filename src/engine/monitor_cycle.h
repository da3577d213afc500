// The core of the monitor. Each tick of a one-second timer either counts down a sleep or checks exactly one entry, the one that
// is due soonest, and writes the outcome back. There is no queue: the next tick queries again.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "engine/bad_entries.h"
#include "engine/blind_alarm.h"
#include "engine/check_keeper.h"
#include "engine/collaborators.h"
#include "engine/cycle_state.h"
#include "engine/http_requester.h"
#include "engine/kept_accounts.h"
#include "engine/outcome.h"
#include "engine/own_network.h"
#include "engine/ping_checker.h"
#include "engine/server_away.h"
#include "engine/shared_turn.h"
#include "engine/tcp_checker.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/events.h"
#include "platform/operator.h"
#include "platform/timer.h"
#include "store/entry_safeguards.h"
#include "store/log.h"
#include "store/safeguards.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

class MonitorCycle {
public:
    struct Ports {
        Store& store;
        const Clock& clock;
        Events& events;
        Operator& person;
        StatusLog& status;
        Log& log;
        const SettingsCollection& settings;
        const EntrySafeguards& ofEntries;
        HttpRequester& http;
        TcpChecker& tcp;
        PingChecker& ping;
        OwnNetwork& network;
        OutcomeAccounting& accounting;
        StoreAlarm& alarm;
        ReportPublisher& reports;
        CycleState& state;
        std::string connectionString;  ///< of the database
        Safeguards& safeguards;
        BadEntries& badEntries;
        KeptAccounts& kept;
        BlindAlarm& blind;
        CheckKeeper& keeper;
        SharedTurn& turn;
        ServerAway& away;
    };

    explicit MonitorCycle(const Ports& ports) : ports_(ports), state_(ports.state) {}

    /// Handles one tick. Waits through the event pump as long as the check takes; throws nothing. A tick that comes within the
    /// same second as the last one neither counts for the reports nor refreshes the window. Returns whether another entry could
    /// be checked at once: the entry that was due is checked and stored, or the sleep is over. Only for safeguards.
    bool TimerMonitorDB_Timer(bool withinSecond = false);

private:
    /// The open store and the current entry; both belong to one tick.
    struct Tick {
        std::unique_ptr<Connection> conn;
        bool opened = false;  ///< the store
        std::unique_ptr<Recordset> rs;
        std::string due;  ///< the query of `rs`
        std::string strReason;
        OwedFailure owed;
        DateTime dueAt;             ///< the `dtNextCheck` of the entry
        bool withinSecond = false;  ///< it is not the tick of a second
        bool stored = false;        ///< the outcome of the check was written
        bool refused = false;       ///< the store refused to write it
        bool kept = false;          ///< it was refused, and is kept in memory
        std::int64_t id = 0;        ///< of the entry; 0 without the safeguard that needs it
    };

    /// A daily window of an entry, as its row has it.
    struct DownTimeWindow {
        std::string number;
        std::string start;
        std::string minutes;
    };

    void Step(std::string name) { state_.strLastStep = std::move(name); }
    void Say(std::string_view text) { ports_.status.setStatusMSG(text); }
    void SayAndLog(const std::string& message);
    void LogOfTick(const std::string& message, std::string_view messageClass = kLogInformation);
    bool DoTick(bool withinSecond);
    bool CountDownSleep();
    bool HasMovedOn(Tick& tick);
    void GoToEntry(Tick& tick);
    void NoteOutcome(Tick& tick, const std::string& refusal);
    void NoteRefusal(Tick& tick, const std::string& refusal);
    bool StepOver(Tick& tick, const std::string& error);
    std::int32_t PortOf(Recordset& rs) const;
    bool LookAtDatabase(Tick& tick);
    void OpenDueRows(Tick& tick);
    bool TakeTurn(Tick& tick);
    void SeeAllRows(Tick& tick);
    std::chrono::seconds SecondsUntilDue(Tick& tick);
    void Sleep(std::chrono::seconds time);
    void SleepUntilDue(std::chrono::seconds diff);
    bool IsAway(const Tick& tick, const std::exception& error);
    void PublishReports();
    void SleepWithNothingDue(Tick& tick);
    bool SuspendForDownTime(Recordset& rs);
    void EnterDownTime(Recordset& rs, const DownTimeWindow& window);
    void SkipRow(Recordset& rs, bool inDownTime);
    TimedCheckResult RequestUrl(Recordset& rs, const std::string& scheme);
    std::string GoodStatusesOf(std::int64_t id);
    TimedCheckResult PingOrTalk(Recordset& rs, bool ping);
    CheckResult Ping(Recordset& rs);
    CheckResult Talk(Recordset& rs);

    // They return whether the tick goes on: a page that breaks a text rule ends it without the Update and the summary.
    bool HandleRow(Tick& tick);
    bool CheckRow(Tick& tick);
    bool PassesTextRules(Tick& tick, const std::string& response);

    void UpdateRow(Tick& tick);
    void SummariseInTray(Recordset& rs, bool atOnce);
    void Fail(const Tick& tick, const std::string& description);

    Ports ports_;
    CycleState& state_;
    std::map<std::int64_t, std::string> goodStatuses_;  ///< of entries, as they were read last
};

}  // namespace korvane
