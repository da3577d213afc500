// The objects that live as long as the program runs, in the order of their construction. The constructor passes each its ports
// and the objects that it works with.
#pragma once

#include <memory>

#include "engine/catch_up.h"
#include "engine/clock_guard.h"
#include "engine/failure_actions.h"
#include "engine/hiding_conversation.h"
#include "engine/list_clock.h"
#include "engine/monitor_cycle.h"
#include "engine/outcome.h"
#include "engine/own_network.h"
#include "engine/server_away.h"
#include "engine/shared_turn.h"
#include "engine/stop_start.h"
#include "engine/witnesses.h"
#include "notify/mail_proof.h"
#include "reports/pipeline.h"
#include "resources/machine_watch.h"
#include "shell/run/desk.h"
#include "shell/run/heartbeat.h"
#include "shell/run/instance_watch.h"
#include "shell/run/ports.h"
#include "shell/run/requests.h"
#include "store/duty.h"
#include "store/entry_safeguards.h"

namespace korvane {

struct RunRooms : RunPorts {
    RunRooms(const RunPorts& ports, RunOptions runOptions);
    RunRooms(const RunRooms&) = delete;

    /// Called after the wait before monitoring begins: finishes a first start, and announces the start.
    void BeginOperations();
    /// Starts or stops what works beside the cycle while its safeguard is on: without their keys no timer of theirs runs.
    void FollowSafeguards();
    /// Lets the cycle look at the entries now, if it sleeps.
    void LookAtEntries();
    /// Stops monitoring if it is on.
    void StopMonitor();
    /// Hands the mail to the outbox; while that is off, sends it through the primary server or the backup, and waits as mails do.
    SendOutcome SendOrPost(const Notification& notification);
    /// Sends a mail to the recipients of the first entry, later and once.
    void MailToFirstEntry(const std::string& subject, const std::string& text);

    RunOptions options;
    bool bFormLoading = false;
    bool onlyTelling = false;  ///< a start that cannot continue shows its message

    CycleState state;
    Log log;
    StatusLog status;
    IniFile settingsFile;
    IniFile noFile;
    ServerIds ids;
    SettingsCollection collection;
    MonitorWindow noWindow;
    MonitorWindow& mainWindow;
    ServerEntries entries;
    Settings settings;
    LegacyLog legacyLog;
    Safeguards safeguards;
    HiddenPasswords hiddenPasswords;
    AlertPath alertPath;
    DatabaseRescue rescue;
    EntrySafeguards ofEntries;
    ListClock listClock;

    // The timers must come before the objects that switch them.
    std::unique_ptr<Timer> Timer2;
    std::unique_ptr<Timer> TimerMonitorDB;
    std::unique_ptr<Timer> TimerProgress;
    std::unique_ptr<Timer> TimerLog;
    std::unique_ptr<Timer> TimerCopies;
    CycleTimers switches;

    // Null unless the list is shared.
    std::unique_ptr<Duty> mailDuty;
    std::unique_ptr<Duty> pagesDuty;
    std::unique_ptr<Witnesses> witnesses;

    Dispatcher mail;
    MailOutbox outbox;
    TraceRoute trace;
    CommandRunner commands;
    ServerActions actions;
    Reports reports;
    WebPages pages;
    ReportCommands reportCommands;
    Maintenance maintenance;
    NoConversationWindow noConversation;
    HidingConversation conversationWindow;
    RequestProgress progress;
    HttpRequester http;
    TcpChecker tcp;
    PingChecker ping;
    HttpRequester testHttp;
    TcpChecker testTcp;
    OwnNetwork network;
    CheckKeeper keeper;
    OutcomeAccounting accounting;
    StoreAlarm alarm;
    KeptAccounts kept;
    BadEntries badEntries;
    BlindAlarm blind;
    SharedTurn turn;
    ServerAway away;
    MonitorCycle cycle;
    CatchUp catchUp;
    ClockGuard clockGuard;
    Heartbeat heartbeat;
    BeginWait wait;
    StopStart stopStart;
    MachineRestart restart;
    VersionCheck versionCheck;
    ServiceMode service;
    Dispatcher alertDispatcher;
    AlertMails alertMails;
    MailProof mailProof;
    MachineWatch machineWatch;
    Requests requests;
    std::unique_ptr<InstanceWatch> instances;  ///< null unless the list is shared
    const Desk desk;
};

}  // namespace korvane
