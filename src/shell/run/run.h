// Room `run`: the start and the end of the program, what lives as long as it runs, and what it lends to the windows.
//
// Everything that lives as long as the program runs, with or without a window: settings, sockets, transfer slots, timers
// and the state of the cycle. It makes the rooms, hands them their ports and starts the timers.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/begin_wait.h"
#include "engine/collaborators.h"
#include "engine/cycle_state.h"
#include "engine/cycle_timers.h"
#include "engine/failure_actions.h"
#include "engine/http_requester.h"
#include "engine/machine_restart.h"
#include "engine/monitor_cycle.h"
#include "engine/outcome.h"
#include "engine/ping_checker.h"
#include "engine/request_progress.h"
#include "engine/run_command.h"
#include "engine/stop_start.h"
#include "engine/store_alarm.h"
#include "engine/tcp_checker.h"
#include "engine/trace_route.h"
#include "notify/dispatcher.h"
#include "platform/autostart.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/events.h"
#include "platform/files.h"
#include "platform/guid_source.h"
#include "platform/icmp_echo.h"
#include "platform/inet.h"
#include "platform/operator.h"
#include "platform/power.h"
#include "platform/processes.h"
#include "platform/service_manager.h"
#include "platform/services.h"
#include "platform/sound.h"
#include "platform/system_info.h"
#include "platform/tcp_socket.h"
#include "platform/timer.h"
#include "reports/pipeline.h"
#include "resources/alert_mails.h"
#include "shell/run/cycle_publisher.h"
#include "shell/run/desk.h"
#include "shell/run/monitor_window.h"
#include "shell/run/report_commands.h"
#include "shell/service/service_mode.h"
#include "shell/web/version_check.h"
#include "shell/web/web_pages.h"
#include "store/ini_file.h"
#include "store/legacy_log.h"
#include "store/log.h"
#include "store/maintenance.h"
#include "store/server_entries.h"
#include "store/server_id.h"
#include "store/settings.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

class Run {
public:
    struct Ports {
        Clock& clock;
        Events& events;
        Timers& timers;
        Store& store;
        Operator& person;
        Files& files;
        TcpSocket& tcpSocket;    ///< of the conversations with servers
        TcpSocket& sckesmtp;     ///< of mail with a login
        TcpSocket& plainSocket;  ///< of mail without one
        TcpSocket& testSocket;   ///< of conversations that the operator tries out while the cycle holds its own
        TcpSocket& alertEsmtp;   ///< of the mails of the resource monitors, which go out beside those of the cycle
        TcpSocket& alertPlain;
        IcmpEcho& echo;
        Sound& sound;
        Processes& processes;
        GuidSource& guids;
        Power& power;
        ServiceManager& serviceManager;
        Services& services;
        Autostart& autostart;
        const SystemInfo& systemInfo;
        std::function<std::unique_ptr<Inet>()> newInet;
        std::function<std::string()> proxyServer;    ///< that this session goes through, as "host:port"; blank: none
        std::function<void()> exit;                  ///< mnuExit_Click and the end of the process
        MonitorWindow* window = nullptr;             ///< null without a display
        ConversationWindow* conversation = nullptr;  ///< null: nobody looks on
        MailTrace* mailTrace = nullptr;              ///< the same for mail
    };

    struct Options {
        std::string dir;      ///< where settings, database and log are, without a slash at the end
        std::string dataDir;  ///< where the installation's templates and blank database are; may be the same
        std::string commandLine;
        std::string version;       ///< "major.minor.revision"
        std::string program = {};  ///< the executable's path
        std::string icon = {};     ///< of the program, by its name in the desktop's theme or its path
    };

    Run(const Ports& ports, Options options);

    enum class Started { Running, SecondInstance, CannotGoOn };

    /// The whole start in its fixed order, messages included. After Running the first timer is armed; after anything else the
    /// program must end with status 1, and what there was to say has been said.
    Started StartUp();

    /// Somebody wants the program to end. Whether it may right now: during StartUp nothing can be saved yet, so the wish is kept,
    /// and the caller looks at ExitAsked when StartUp has returned.
    bool MayExit();
    /// The start can't go on and tells so: there is nothing to save, and the process may end at any time, with status 1.
    bool OnlyTelling() const { return onlyTelling_; }
    bool ExitAsked() const { return exitAsked_; }

    /// File, Exit and its like: saves, logs, and leaves the timers off. The caller ends the process at once; a check that is
    /// under way is abandoned, and its row stays as it was and due.
    void mnuExit_Click();

    /// Saves the settings as an exit does, if it does.
    void SaveOnExit();
    /// Not in a service, whose changes last as long as its run: at its end nothing is written to the settings file.
    bool SavesOnExit() const { return !noSaveOnExit_; }

    void cmdStopStart() { stopStart_.cmdStopStart(); }

    ServiceMode& Service() { return service_; }

    /// What the windows work with.
    Desk TheDesk();

    /// While StartUp runs.
    const bool& Loading() const { return bFormLoading_; }
    /// Before monitoring begins: in the wait that the settings ask for.
    bool WaitingToStart() const { return Timer2_->Enabled(); }
    /// The cycle runs and is not asleep: the entry that is due first is being requested. A sleep whose seconds have run out is
    /// none, although its length is still known.
    bool Requesting() const { return TimerMonitorDB_->Enabled() && state_.nSleepLeft <= 0; }
    /// The sleep until the next check is over.
    void WakeUp();
    /// The operator looks at the window again in the middle of a request: its estimate goes on.
    void ResumeProgress() { progress_.Resume(); }

    const CycleState& State() const { return state_; }
    const SettingsCollection& GlobalSettings() const { return collection_; }

private:
    struct NamedTimer {
        std::string_view name;
        std::chrono::milliseconds period;
        std::function<void()> tick;
    };

    std::unique_ptr<Timer> NewTimer(const NamedTimer& timer);
    CycleTimers Switches() { return {*Timer2_, *TimerMonitorDB_, *TimerLog_}; }

    /// The title of the main window, with the version.
    std::string Title() const;
    void SetCaptions();
    ServiceMode::Commands CommandsOfService();
    bool IsFirstRun();
    bool IsSetUp();
    void MarkSetUp();
    bool HasEntries();
    void SetUpForTheFirstTime();
    void BeginOperations();
    void StopMonitor();
    void TimerLog_Timer();

    void TellSecondInstance();
    void TellTheEnd(const std::string& title, const std::string& text);
    void ReadSettings();
    bool HasAllItNeeds();
    bool HasDatabase();
    bool HasTemplates();
    bool DatabaseOpens();
    void PrepareEntries();
    void NameMissingColumns();
    void MendBlankTimes();
    bool Has(const std::string& name);
    void BringPictures();
    void NameWriteProblem();
    void Form_Unload();
    void LogWriteError();

    Ports ports_;
    Options options_;
    bool bFormLoading_ = false;
    bool noSaveOnExit_ = false;
    std::string moreTitle_;  ///< behind that of every run
    bool exitAsked_ = false;
    bool onlyTelling_ = false;

    CycleState state_;
    Log log_;
    StatusLog status_;
    IniFile settingsFile_;
    ServerIds ids_;
    SettingsCollection collection_;
    MonitorWindow noWindow_;
    MonitorWindow& window_;
    ServerEntries entries_;
    Settings settings_;
    LegacyLog legacyLog_;

    // The timers come before what switches them.
    std::unique_ptr<Timer> Timer2_;
    std::unique_ptr<Timer> TimerMonitorDB_;
    std::unique_ptr<Timer> TimerProgress_;
    std::unique_ptr<Timer> TimerLog_;

    Dispatcher mail_;
    TraceRoute trace_;
    CommandRunner commands_;
    ServerActions actions_;
    Reports reports_;
    CyclePublisher publisher_;
    ReportCommands reportCommands_;
    Maintenance maintenance_;
    NoConversationWindow noConversation_;
    ConversationWindow& conversation_;
    RequestProgress progress_;
    HttpRequester http_;
    TcpChecker tcp_;
    PingChecker ping_;
    HttpRequester testHttp_;
    TcpChecker testTcp_;
    OutcomeAccounting accounting_;
    StoreAlarm alarm_;
    MonitorCycle cycle_;
    BeginWait wait_;
    StopStart stopStart_;
    MachineRestart restart_;
    WebPages pages_;
    VersionCheck versionCheck_;
    ServiceMode service_;
    Dispatcher alertDispatcher_;
    AlertMails alertMails_;
};

}  // namespace korvane
