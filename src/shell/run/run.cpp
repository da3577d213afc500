#include "shell/run/run.h"

#include <array>
#include <chrono>
#include <utility>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "shell/options/setting_change.h"
#include "shell/run/run_rooms.h"
#include "shell/web/web_pages.h"
#include "store/database_files.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

// Each tick handles its own errors; no exception may reach the event loop, which cannot handle them.
std::unique_ptr<Timer> NewTimer(Timers& timers, const char* name, std::chrono::milliseconds period, std::function<void()> tick) {
    auto timer = timers.NewTimer(name);
    timer->SetInterval(period);
    timer->OnTick([tick = std::move(tick)] { IgnoreErrors(tick); });
    return timer;
}

RunOptions WithInstance(RunOptions options, TcpSocket& socket) {
    if (options.isShared && options.instance.empty()) options.instance = socket.LocalHostName() + ":" + options.dir;
    return options;
}

Dispatcher NewDispatcher(RunRooms& run, TcpSocket& sckesmtp, TcpSocket& plainSocket, MailTrace* mailTrace) {
    return {{sckesmtp, plainSocket, run.clock, run.events, run.person, run.files, run.guids, run.status, run.log, run.collection,
             run.safeguards, [&run] { run.StopMonitor(); }, mailTrace, &run.alertPath},
            {.contactAddress = std::string(kContactAddress)}};
}

std::unique_ptr<InstanceWatch> NewInstanceWatch(RunRooms& run) {
    const RunOptions& options = run.options;
    const std::string host = run.sckesmtp.LocalHostName();
    return std::make_unique<InstanceWatch>(
        InstanceWatch::Ports{run.store, run.files, run.timers, run.clock, run.status, run.log, run.collection,
                             [&run](const Notification& mail) { run.alertMails.Alert(mail); }, [] { return std::int64_t{0}; }},
        Instance{.name = Or(options.instance, host + ":" + options.dir.substr(options.dir.rfind('/') + 1)),
                 .host = host,
                 .pid = options.pid,
                 .home = options.dir,
                 .version = options.version});
}

}  // namespace

RunRooms::RunRooms(const RunPorts& ports, RunOptions runOptions)
    : RunPorts(ports),
      options(WithInstance(std::move(runOptions), sckesmtp)),
      log(files, clock, options.dir, options.version),
      status(person, clock),
      settingsFile(files, SettingsFilePath(options.dir)),
      noFile(files, ""),
      ids(options.isGuest ? noFile : settingsFile, clock),
      mainWindow(window == nullptr ? noWindow : *window),
      entries({store, clock, events, log, status, settingsFile, ids, collection}, options.dir),
      settings({files, clock, events, person, mainWindow, log, status, settingsFile, collection, entries,
                [this] { service.StartService(); }},
               options.dir),
      legacyLog(collection, settings.GetLogFile()),
      safeguards(collection, clock, log, status),
      hiddenPasswords(safeguards, collection),
      alertPath({safeguards, collection, files, clock}, options.dir),
      rescue({store, files, clock, events, log, status, safeguards,
              [this](const std::string& text) {
                  outbox.FollowRestoredDatabase();
                  MailToFirstEntry("Korvane: the database was brought back", text);
              }},
             options.dir),
      ofEntries(store, OdbcConnectionText(options.dir)),
      listClock({clock, status, log}),
      Timer2(NewTimer(timers, "Timer2", 1000ms, [this] { wait.Timer2_Timer(); })),
      TimerMonitorDB(NewTimer(timers, "TimerMonitorDB", 1000ms,
                              [this] {
                                  clockGuard.Look();
                                  catchUp.TimerMonitorDB_Timer();
                                  reports.NoteTurn(state.lastCheck);
                              })),
      TimerProgress(NewTimer(timers, "TimerProgress", 250ms, [this] { progress.TimerProgress_Timer(); })),
      TimerLog(NewTimer(timers, "TimerLog", 60000ms,
                        [this] {
                            TimerLog->SetEnabled(false);
                            legacyLog.TimerLog();
                        })),
      TimerCopies(NewTimer(timers, "TimerCopies", 10000ms, [this] { rescue.KeepDailyCopy(); })),
      switches{*Timer2, *TimerMonitorDB, *TimerLog},
      mailDuty(options.isShared ? std::make_unique<Duty>(store, options.dir, "outbox") : nullptr),
      pagesDuty(options.isShared ? std::make_unique<Duty>(store, options.dir, "publish") : nullptr),
      witnesses(options.isShared
                    ? std::make_unique<Witnesses>(Witnesses::Ports{store, listClock, log, collection, options.instance})
                    : nullptr),
      mail(NewDispatcher(*this, sckesmtp, plainSocket, mailTrace)),
      outbox({store, clock, timers, guids, ownProgram, person, status, log, collection, safeguards, options.dir,
              [this] { return sckesmtp.LocalHostName(); }, alertPath,
              [this] {
                  if (!alarm.Raised()) service.FollowAlertPath();
              },
              mailDuty.get()}),
      trace({files, processes, status, log}, options.dir),
      commands({processes, status, log, hiddenPasswords}),
      actions({store, listClock, status, log, collection, entries, mail, outbox, trace, commands, witnesses.get()}),
      reports({store, clock, events, person, files, status, collection, ids, safeguards, alertPath,
               [this](std::string_view text) { return hiddenPasswords.InWords(text); }, pagesDuty.get()},
              options.dir),
      pages({processes, person, settingsFile}),
      reportCommands({reports, pages, store, files, person, status}, options.dir),
      maintenance({store, listClock, files, log, status, rescue, [this] { reportCommands.PublishReports(false); }}, options.dir),
      conversationWindow(conversation == nullptr ? noConversation : *conversation, hiddenPasswords),
      progress({events, person, state, *TimerProgress}),
      http({collection, safeguards, events, clock, progress}),
      tcp({tcpSocket, events, clock, person, status, conversationWindow, &hiddenPasswords, &safeguards}),
      ping({echo, clock, person, status, log}),
      testHttp({collection, safeguards, events, clock, progress}),
      testTcp({testSocket, events, clock, person, status, conversationWindow, &hiddenPasswords, &safeguards}),
      network({networkEcho, networkSocket, listClock, events, status, log, collection, safeguards,
               [this](const Notification& notification) { return SendOrPost(notification); }, store,
               OdbcConnectionText(options.dir)}),
      keeper({store, listClock, status, log, collection, outbox,
              [this](const Notification& notification) { return mail.SendWithBackup(notification); }}),
      accounting({store, listClock, events, person, sound, status, log, collection, ids, actions, network, safeguards, outbox,
                  keeper, witnesses.get()}),
      alarm({person, status, log, serviceManager}),
      kept({store, listClock, log, ids, safeguards, OdbcConnectionText(options.dir)}),
      badEntries({store, listClock, status, log, safeguards, kept, OdbcConnectionText(options.dir), options.isShared}),
      blind({clock, status, log, [this](const Notification& notification) { return SendOrPost(notification); }, safeguards}),
      turn({store, listClock, OdbcConnectionText(options.dir), collection, witnesses.get()}),
      away({clock, status, log, serviceManager, files,
            [this](const Notification& notification) { return mail.SendWithBackup(notification); }, options.dir}),
      cycle({store,
             listClock,
             events,
             person,
             status,
             log,
             collection,
             ofEntries,
             http,
             tcp,
             ping,
             network,
             accounting,
             alarm,
             reportCommands,
             state,
             OdbcConnectionText(options.dir),
             safeguards,
             badEntries,
             kept,
             blind,
             keeper,
             turn,
             away}),
      catchUp({cycle, clock, safeguards, *TimerMonitorDB}),
      clockGuard({store, listClock, safeguards, state, OdbcConnectionText(options.dir), options.isShared}),
      heartbeat({timers, clock, log, collection, safeguards, state, switches, newInet}),
      wait({clock, person, status, log, collection, safeguards, switches, state, [this] { BeginOperations(); },
            [this] { maintenance.CompactAndRepair(DatabasePath(options.dir)); }}),
      stopStart({person, status, switches, state, bFormLoading,
                 [this] {
                     if (pagesDuty) pagesDuty->Release();
                 }}),
      restart({power, person, status, log, state, [this] { stopStart.cmdStopStart(); }}),
      versionCheck(testHttp, person, pages, options.version),
      service({*this, person, mainWindow, status, collection, settings, state, stopStart, alertPath}, options),
      alertDispatcher(NewDispatcher(*this, alertEsmtp, alertPlain, nullptr)),
      alertMails(
          alertDispatcher, timers, log, [this] { return mail.Sending() || TimerMonitorDB->Ticking(); }, &outbox),
      mailProof({popSocket, clock, events, timers, files, guids, sound, alertDispatcher, safeguards, collection, status, log,
                 alertPath, [this] { return mail.Sending() || TimerMonitorDB->Ticking(); }},
                options.dir),
      machineWatch({options.dir, clock, timers, store, person, files, collection, alertMails, log, safeguards}, events,
                   systemInfo, RunPorts::services),
      requests(
          {files, timers, log}, options.dir, [this] { LookAtEntries(); },
          [this](const std::string& key, const std::string& value) {
              WriteSetting(desk, key, value);
              FollowSetting(desk, key);
          }),
      instances(options.isShared ? NewInstanceWatch(*this) : nullptr),
      desk{*this,
           *this,
           person,
           options.dir,
           options.dataDir,
           options.version,
           options.isShared,
           log,
           status,
           ids,
           collection,
           settingsFile,
           settings,
           entries,
           legacyLog,
           safeguards,
           hiddenPasswords,
           alertPath,
           ofEntries,
           mail,
           outbox,
           trace,
           commands,
           reportCommands,
           reportCommands,
           maintenance,
           restart,
           pages,
           versionCheck,
           service,
           alertMails,
           [this] { FollowSafeguards(); },
           conversationWindow,
           testHttp,
           testTcp,
           ping} {
    const auto withoutPasswords = [this](std::string_view text) { return hiddenPasswords.In(text); };
    state.bMonitoring = !options.isGuest;
    if (options.isShared)
        ids.Scatter(static_cast<std::uint32_t>(std::hash<std::string>()(options.instance) +
                                               static_cast<std::size_t>(clock.UtcNow().Seconds())));
    status.SetFilter(withoutPasswords);
    log.SetFilter(withoutPasswords);
    alertPath.OnProblem([this] { outbox.LookAtPath(); });
}

SendOutcome RunRooms::SendOrPost(const Notification& notification) {
    if (outbox.Post(notification)) return {.sent = true, .strError = {}};
    return mail.SendWithBackup(notification);
}

void RunRooms::MailToFirstEntry(const std::string& subject, const std::string& text) {
    IgnoreErrors([&] {
        const auto connection = OpenDatabase(store, options.dir);
        const auto first = OpenRows(store, *connection, "SELECT * from servers order by id");
        const auto column = [&](const char* name) { return first->Fields(name).Value().Text(); };
        if (first->Eof() || Trim(column("strEmailList1") + column("strEmailList2")).empty()) return;
        alertMails.Alert({column("strEmailList1"), column("strEmailList2"), column("strEmailFrom"), subject, text});
    });
}

void RunRooms::FollowSafeguards() {
    outbox.Follow();
    mailProof.Follow();
    heartbeat.Follow();
    machineWatch.Follow();
    TimerCopies->SetEnabled(rescue.IsOn() && !options.isShared);
}

void RunRooms::LookAtEntries() {
    state.nSleepLeft = 0;
    state.nSleepTotal = 0;
    // A tick that waits for a check is followed by another one anyway.
    if (TimerMonitorDB->Enabled() && !TimerMonitorDB->Ticking()) TimerMonitorDB->SetInterval(1ms);
    person.RefreshURLList();
}

void RunRooms::StopMonitor() {
    if (state.bMonitoring) stopStart.cmdStopStart();
}

Run::Run(const RunPorts& ports, Options options) : rooms_(std::make_unique<RunRooms>(ports, std::move(options))) {}

Run::~Run() = default;

bool Run::MayExit() {
    exitAsked_ = true;
    if (Loading()) rooms_->entries.LeaveOff();
    return !Loading();
}

bool Run::OnlyTelling() const {
    return rooms_->onlyTelling;
}

void Run::mnuExit_Click() {
    SaveOnExit();
    Form_Unload();
}

void Run::SaveOnExit() {
    if (SavesOnExit()) rooms_->settings.Save();
}

void Run::Form_Unload() {
    RunRooms& run = *rooms_;
    for (Timer* timer : std::array{run.Timer2.get(), run.TimerMonitorDB.get(), run.TimerProgress.get(), run.TimerLog.get(),
                                   run.TimerCopies.get()})
        timer->SetEnabled(false);
    run.mailProof.Stop();
    run.heartbeat.End();
    IgnoreErrors([&] { run.http.CloseInets(); });
    run.outbox.Flush();  // first: an account that stands without its mail would never be mailed
    run.kept.Write(true);
    SaveOnExit();
    if (const std::string& error = run.settingsFile.LastWriteError(); !error.empty())
        run.log.WriteLog(kLogFatal, kLogError, "Save: " + error);
    if (run.instances) run.instances->End();
    run.log.Info("Korvane Closing: Form_Unload:----------------------");
    run.log.Info("Korvane Closing: Form_Terminate:----------------------");
}

void Run::cmdStopStart() {
    rooms_->stopStart.cmdStopStart();
}

const Desk& Run::TheDesk() const {
    return rooms_->desk;
}

bool Run::Loading() const {
    return rooms_->bFormLoading;
}

bool Run::WaitingToStart() const {
    return rooms_->Timer2->Enabled();
}

bool Run::Requesting() const {
    return rooms_->TimerMonitorDB->Enabled() && rooms_->state.nSleepLeft <= 0;
}

void Run::WakeUp() {
    rooms_->state.nSleepLeft = 0;
    rooms_->state.nSleepTotal = 0;
}

void Run::ResumeProgress() {
    rooms_->progress.Resume();
}

const CycleState& Run::State() const {
    return rooms_->state;
}

}  // namespace korvane
