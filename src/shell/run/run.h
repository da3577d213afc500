// Room `run`: the start and the end of the program, the objects that live as long as it runs, and what it provides to the
// windows.
//
// Owns everything that lives as long as the program runs, with or without a window: settings, sockets, transfer slots, timers and
// the state of the cycle. It creates the rooms, passes them their ports and starts the timers.
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
        TcpSocket& tcpSocket;    ///< for conversations with servers
        TcpSocket& sckesmtp;     ///< for mail with a login
        TcpSocket& plainSocket;  ///< for mail without a login
        TcpSocket& testSocket;   ///< for the operator's tests while the cycle uses its own
        TcpSocket& alertEsmtp;   ///< for mails of the resource monitors, which are sent independently of those of the cycle
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
        std::function<std::string()> proxyServer;    ///< the proxy of this session, as "host:port"; empty: none
        std::function<void()> exit;                  ///< mnuExit_Click and the end of the process
        MonitorWindow* window = nullptr;             ///< null without a display
        ConversationWindow* conversation = nullptr;  ///< null: no window
        MailTrace* mailTrace = nullptr;              ///< the same for mail
    };

    struct Options {
        std::string dir;      ///< folder of settings, database and log, without a slash at the end
        std::string dataDir;  ///< folder of the installation's templates and empty database; may be the same
        std::string commandLine;
        std::string version;       ///< "major.minor.revision"
        std::string program = {};  ///< the executable's path
        std::string icon = {};     ///< the program's icon, by its name in the desktop's theme or its path
    };

    Run(const Ports& ports, Options options);

    enum class Started { Running, SecondInstance, CannotGoOn };

    /// Performs the whole start in its fixed order, including messages. After Running the first timer is armed; after any other
    /// result all messages have been shown and the program must end with status 1.
    Started StartUp();

    /// Called when the program is asked to end. Returns whether it may end now: during StartUp nothing can be saved yet, so the
    /// request is kept, and the caller must check ExitAsked after StartUp has returned.
    bool MayExit();
    /// True while a start that cannot continue shows its message: there is nothing to save, and the process may end at any time,
    /// with status 1.
    bool OnlyTelling() const { return onlyTelling_; }
    bool ExitAsked() const { return exitAsked_; }

    /// File, Exit and equivalents: saves, logs, and leaves the timers off. The caller must end the process at once; a running
    /// check is abandoned, and its row stays unchanged and due.
    void mnuExit_Click();

    /// Saves the settings at an exit, if SavesOnExit.
    void SaveOnExit();
    /// False in a service, whose changes last only as long as it runs: at its end nothing is written to the settings file.
    bool SavesOnExit() const { return !noSaveOnExit_; }

    void cmdStopStart() { stopStart_.cmdStopStart(); }

    ServiceMode& Service() { return service_; }

    /// Returns what the windows use.
    Desk TheDesk();

    /// True while StartUp runs.
    const bool& Loading() const { return bFormLoading_; }
    /// True before monitoring begins, during the wait defined in the settings.
    bool WaitingToStart() const { return Timer2_->Enabled(); }
    /// True if the cycle runs and is not asleep: the entry that is due first is being requested. A sleep whose seconds have run
    /// out no longer counts, although its length is still known.
    bool Requesting() const { return TimerMonitorDB_->Enabled() && state_.nSleepLeft <= 0; }
    /// Ends the sleep before the next check.
    void WakeUp();
    /// Called when the operator looks at the window again in the middle of a request: its estimate continues.
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
    std::string moreTitle_;  ///< follows the title of every run
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

    // The timers must come before the objects that switch them.
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
