#include "shell/run/run.h"

#include <array>

#include "base/ignore_errors.h"
#include "engine/server_table.h"
#include "shell/web/web_addresses.h"
#include "store/database_files.h"

namespace korvane {

using namespace std::chrono_literals;

namespace {

/// Marks that there was a start with a window, or with entries: a file of its own, which survives a lost or damaged settings
/// file, and a key of the settings file for older programs.
constexpr const char* kSetupFile = "/kvsetup.dat";
constexpr std::string_view kSetupSection = "Setup";
constexpr std::string_view kSetupDone = "Done";
constexpr std::string_view kYes = "True";

}  // namespace

Run::Run(const Ports& ports, Options options)
    : ports_(ports),
      options_(std::move(options)),
      log_(ports.files, ports.clock, options_.dir, options_.version),
      status_(ports.person, ports.clock),
      settingsFile_(ports.files, SettingsFilePath(options_.dir)),
      ids_(settingsFile_, ports.clock),
      window_(ports.window == nullptr ? noWindow_ : *ports.window),
      entries_({ports.store, ports.clock, ports.events, log_, status_, settingsFile_, ids_, collection_}, options_.dir),
      settings_({ports.files, ports.clock, ports.events, ports.person, window_, log_, status_, settingsFile_, collection_,
                 entries_, [this] { service_.StartService(); }},
                options_.dir),
      legacyLog_(collection_, settings_.GetLogFile()),
      Timer2_(NewTimer({"Timer2", 1000ms, [this] { wait_.Timer2_Timer(); }})),
      TimerMonitorDB_(NewTimer({"TimerMonitorDB", 1000ms, [this] { cycle_.TimerMonitorDB_Timer(); }})),
      TimerProgress_(NewTimer({"TimerProgress", 250ms, [this] { progress_.TimerProgress_Timer(); }})),
      TimerLog_(NewTimer({"TimerLog", 60000ms, [this] { TimerLog_Timer(); }})),
      mail_({ports.sckesmtp, ports.plainSocket, ports.clock, ports.events, ports.person, ports.files, ports.guids, status_, log_,
             collection_, [this] { StopMonitor(); }, ports.mailTrace},
            {.contactAddress = std::string(kContactAddress)}),
      trace_({ports.files, ports.processes, status_, log_}, options_.dir),
      commands_({ports.processes, status_, log_}),
      actions_({ports.store, ports.clock, status_, log_, collection_, entries_, mail_, trace_, commands_}),
      reports_({ports.store, ports.clock, ports.events, ports.person, ports.files, status_, collection_, ids_}, options_.dir),
      publisher_(reports_),
      reportCommands_({reports_, ports.store, ports.files, ports.person, ports.processes, status_}, options_.dir),
      maintenance_({ports.store, ports.clock, ports.files, log_, status_, [this] { reportCommands_.PublishReports(false); }},
                   options_.dir),
      conversation_(ports.conversation == nullptr ? noConversation_ : *ports.conversation),
      progress_({ports.events, ports.person, state_, *TimerProgress_}),
      http_({collection_, ports.events, ports.clock, progress_}),
      tcp_({ports.tcpSocket, ports.events, ports.clock, ports.person, status_, conversation_}),
      ping_({ports.echo, ports.clock, ports.person, status_, log_}),
      testHttp_({collection_, ports.events, ports.clock, progress_}),
      testTcp_({ports.testSocket, ports.events, ports.clock, ports.person, status_, conversation_}),
      accounting_(
          {ports.store, ports.clock, ports.events, ports.person, ports.sound, status_, log_, collection_, ids_, actions_}),
      alarm_({ports.person, status_, log_, ports.serviceManager}),
      cycle_({ports.store, ports.clock, ports.events, ports.person, status_, log_, collection_, http_, tcp_, ping_, accounting_,
              alarm_, publisher_, state_, OdbcConnectionText(options_.dir)}),
      wait_({ports.clock, ports.person, status_, collection_, Switches(), state_, [this] { BeginOperations(); },
             [this] { maintenance_.CompactAndRepair(DatabasePath(options_.dir)); }}),
      stopStart_({ports.person, status_, Switches(), state_, bFormLoading_}),
      restart_({ports.power, ports.person, status_, log_, state_, [this] { cmdStopStart(); }}),
      pages_({ports.processes, ports.person, settingsFile_}),
      versionCheck_({testHttp_, ports.person, pages_}, options_.version),
      service_({ports.serviceManager, ports.autostart, ports.person, ports.timers, status_, collection_}, CommandsOfService(),
               {.path = options_.program, .home = options_.dir, .icon = options_.icon}),
      alertDispatcher_({ports.alertEsmtp, ports.alertPlain, ports.clock, ports.events, ports.person, ports.files, ports.guids,
                        status_, log_, collection_, [this] { StopMonitor(); }, nullptr},
                       {.contactAddress = std::string(kContactAddress)}),
      alertMails_(alertDispatcher_, ports.timers, log_, [this] { return mail_.Sending() || TimerMonitorDB_->Ticking(); }) {}

ServiceMode::Commands Run::CommandsOfService() {
    return {.Save = [this] { settings_.Save(); },
            .isMonitoring = [this] { return state_.bMonitoring; },
            .cmdStopStart = [this] { cmdStopStart(); },
            .keepSettingsOnExit = [this] { noSaveOnExit_ = true; },
            .appendToTitle =
                [this](const std::string& more) {
                    moreTitle_ += more;
                    window_.SetTitle(Title());
                },
            .unload = ports_.exit,
            .showMarks = [this] { window_.SetStartMarks(service_.mnuTrayNTService(), service_.mnuTrayStartup()); }};
}

std::unique_ptr<Timer> Run::NewTimer(const NamedTimer& timer) {
    auto made = ports_.timers.NewTimer(std::string(timer.name));
    made->SetInterval(timer.period);
    // Each tick handles its own errors; no exception may reach the event loop, which cannot handle them.
    made->OnTick([tick = timer.tick] { IgnoreErrors(tick); });
    return made;
}

std::string Run::Title() const {
    return "Korvane Network Monitoring & Server Monitor v" + options_.version + " by Brellix" + moreTitle_;
}

void Run::SetCaptions() {
    window_.SetCaptions({.mnuFileGlobal = "Open Global log file (" + settings_.GetLogFile() + "99.txt)",
                         .mnufilekvsettings = "Open Korvane Settings File (" + settings_.GetSettingsFile() + ")"});
}

Desk Run::TheDesk() {
    return {.dir = options_.dir,
            .version = options_.version,
            .store = ports_.store,
            .clock = ports_.clock,
            .events = ports_.events,
            .timers = ports_.timers,
            .person = ports_.person,
            .files = ports_.files,
            .processes = ports_.processes,
            .sound = ports_.sound,
            .systemInfo = ports_.systemInfo,
            .services = ports_.services,
            .proxyServer = ports_.proxyServer,
            .log = log_,
            .status = status_,
            .ids = ids_,
            .collection = collection_,
            .settingsFile = settingsFile_,
            .settings = settings_,
            .entries = entries_,
            .legacyLog = legacyLog_,
            .mail = mail_,
            .trace = trace_,
            .commands = commands_,
            .publisher = publisher_,
            .reports = reportCommands_,
            .maintenance = maintenance_,
            .restart = restart_,
            .pages = pages_,
            .versionCheck = versionCheck_,
            .service = service_,
            .alertMails = alertMails_,
            .conversation = conversation_,
            .http = testHttp_,
            .tcp = testTcp_,
            .ping = ping_};
}

void Run::BeginOperations() {
    ports_.person.SetTrayTip("Korvane Initialized. Beginning Operations: " + ports_.clock.Now().Text());
    if (IsFirstRun()) IgnoreErrors([&] { SetUpForTheFirstTime(); });
    const bool toldToStayQuiet = options_.commandLine.find("restart") != std::string::npos;
    if (collection_.IsTrue("Reboot") && !toldToStayQuiet) actions_.SendStartupNotice();
}

bool Run::IsFirstRun() {
    return !IsSetUp() && settingsFile_.Problem().empty();
}

bool Run::IsSetUp() {
    bool marked = true;  // if the mark cannot be checked, it may exist
    IgnoreErrors([&] { marked = ports_.files.Exists(options_.dir + kSetupFile); });
    return marked || settingsFile_.Read(kSetupSection, kSetupDone, "") == kYes;
}

void Run::MarkSetUp() {
    settingsFile_.Write(kSetupSection, kSetupDone, kYes);
    try {
        const std::string file = options_.dir + kSetupFile;
        if (!ports_.files.Exists(file)) ports_.files.Replace(file, "Done=True\n");
    } catch (const std::exception& error) {
        log_.WriteLog(kLogFatal, kLogError, "frmMonitor:MarkSetUp: " + std::string(error.what()));
    }
}

// Without a window only a home with entries counts as set up: a user who starts with a window later must be asked.
void Run::SetUpForTheFirstTime() {
    window_.SetUpForTheFirstTime();
    if (window_.HasWindow() || HasEntries()) MarkSetUp();
}

bool Run::HasEntries() {
    const auto conn = ports_.store.NewConnection();
    conn->SetConnectionString(OdbcConnectionText(options_.dir));
    conn->Open();
    const auto rs = ports_.store.NewRecordset();
    rs->Open(query::kAllByNextCheck, *conn, CursorType::Static, LockType::Optimistic);
    return rs->RecordCount() > 0;
}

void Run::WakeUp() {
    state_.nSleepLeft = 0;
    state_.nSleepTotal = 0;
}

void Run::StopMonitor() {
    if (state_.bMonitoring) stopStart_.cmdStopStart();
}

void Run::TimerLog_Timer() {
    TimerLog_->SetEnabled(false);
    legacyLog_.TimerLog();
}

bool Run::MayExit() {
    exitAsked_ = true;
    if (bFormLoading_) entries_.LeaveOff();
    return !bFormLoading_;
}

void Run::mnuExit_Click() {
    SaveOnExit();
    Form_Unload();
}

void Run::SaveOnExit() {
    if (SavesOnExit()) settings_.Save();
}

void Run::LogWriteError() {
    if (!settingsFile_.LastWriteError().empty()) log_.WriteLog(kLogFatal, kLogError, "Save: " + settingsFile_.LastWriteError());
}

void Run::Form_Unload() {
    for (Timer* timer : std::array{Timer2_.get(), TimerMonitorDB_.get(), TimerProgress_.get(), TimerLog_.get()})
        timer->SetEnabled(false);
    IgnoreErrors([&] { http_.CloseInets(); });
    SaveOnExit();
    LogWriteError();
    log_.Info("Korvane Closing: Form_Unload:----------------------");
    log_.Info("Korvane Closing: Form_Terminate:----------------------");
}

}  // namespace korvane
