// The start of the program in its fixed order, with every branch and message. Nothing here needs a window.
#include <memory>
#include <string>
#include <vector>

#include "base/ignore_errors.h"
#include "base/raised_flag.h"
#include "engine/server_table.h"
#include "platform/operator.h"
#include "platform/wait.h"
#include "shell/run/run.h"
#include "shell/run/run_rooms.h"
#include "shell/web/web_pages.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr std::string_view kReinstall = " was missing.  Please reinstall Korvane (may have to choose the repair option).";

/// Marks that there was a start with a window, or with entries: a file of its own, which survives a lost or damaged settings
/// file, and a key of the settings file for older programs.
constexpr const char* kSetupFile = "/kvsetup.dat";
constexpr std::string_view kSetupSection = "Setup";
constexpr std::string_view kSetupDone = "Done";
constexpr std::string_view kYes = "True";

/// The folder of the pages' pictures.
constexpr const char* kPictures = "/i";

std::string DatabaseFailureText(const std::string& error) {
    const std::string page(kDatabaseHelpAddress);
    return "Install Microsoft Jet4 components:\r\n\r\n"
           "Korvane was unable to open the server records database. This is the error: " +
           error +
           "\r\n\r\n"
           "This error is most likely caused when Microsoft Jet4 components are not installed.\r\n\r\n"
           "You must install these components to use this version of Korvane. \r\n\r\n"
           "Most people have these components already so they were not included with the Korvane install.\r\n\r\n"
           "Clicking OK will open your browser to " +
           page +
           " where you can download and install these Jet4 components.  Make sure you have a connection to the internet. "
           "Be sure to CLOSE ALL INSTANCES of Korvane before installing the Jet4 components (like the Korvane service)!";
}

std::string CloseKorvaneText() {
    return "Click this button only after you've browsed to " + std::string(kDatabaseHelpAddress) +
           ". To use Korvane, you must install the Jet4 components and reboot.\r\n\r\nClick OK to close Korvane";
}

void LogFatal(RunRooms& run, const std::string& text) {
    run.log.WriteLog(kLogFatal, kLogError, "frmMonitor:" + text);
}

// Monitoring continues: window and log tell the operator what is wrong.
void TellProblem(RunRooms& run, const std::string& problem) {
    LogFatal(run, "Form_Load: " + problem);
    run.status.setStatusMSG(problem);
}

void TellTheEnd(RunRooms& run, const std::string& title, const std::string& text) {
    const RaisedFlag telling(run.onlyTelling);
    run.person.ShowMessage(title, text);
}

// ---- the first start

bool IsSetUp(RunRooms& run) {
    bool marked = true;  // if the mark cannot be checked, it may exist
    IgnoreErrors([&] { marked = run.files.Exists(run.options.dir + kSetupFile); });
    return marked || run.settingsFile.Read(kSetupSection, kSetupDone, "") == kYes;
}

bool IsFirstRun(RunRooms& run) {
    return !IsSetUp(run) && run.settingsFile.Problem().empty();
}

void MarkSetUp(RunRooms& run) {
    run.settingsFile.Write(kSetupSection, kSetupDone, kYes);
    try {
        const std::string file = run.options.dir + kSetupFile;
        if (!run.files.Exists(file)) run.files.Replace(file, "Done=True\n");
    } catch (const std::exception& error) {
        LogFatal(run, "MarkSetUp: " + std::string(error.what()));
    }
}

bool HasEntries(RunRooms& run) {
    const auto conn = OpenDatabase(run.store, run.options.dir);
    const auto rs = OpenRows(run.store, *conn, query::kAllByNextCheck, CursorType::Static);
    return rs->RecordCount() > 0;
}

// Without a window only a home with entries counts as set up: a user who starts with a window later must be asked.
void SetUpForTheFirstTime(RunRooms& run) {
    run.mainWindow.SetUpForTheFirstTime();
    if (run.mainWindow.HasWindow() || HasEntries(run)) MarkSetUp(run);
}

// ---- what the home must have

// Returns whether the home has the file, after copying it from the installation if it was missing. Throws Error when the home
// cannot be written.
bool Has(RunRooms& run, const std::string& name) {
    if (run.files.Exists(run.options.dir + name)) return true;
    if (run.options.dataDir == run.options.dir || !run.files.Exists(run.options.dataDir + name)) return false;
    run.files.Copy(run.options.dataDir + name, run.options.dir + name);
    return true;
}

bool HasDatabase(RunRooms& run) {
    const std::string database = DatabasePath(run.options.dir);
    const std::string blank = "/" + std::string(kEmptyDatabaseFile);
    if (run.files.Exists(database)) {
        IgnoreErrors([&] { Has(run, blank); });
        run.log.Info("frmMonitor:Form_Load: Database Exists, do not read in ini files for first time init.");
        return true;
    }
    if (Has(run, blank)) {
        run.log.Info("frmMonitor:Form_Load: copy blank database template so we can initialize.");
        // This is written to the file first: a program killed after the copy would otherwise take the new database for the old
        // one at its next start.
        if (run.settings.AllInDB()) run.settingsFile.Write(kSettingsSection, "bALLInDB", "False");
        run.collection.setKvSettingsColValue("bAllInDB", "False");
        RemoveJournals(run.files, database);
        run.files.Copy(run.options.dir + blank, database);
        return true;
    }
    TellTheEnd(run, kMessageTitle, "The necessary Template Databasee " + run.options.dir + blank + std::string(kReinstall));
    LogFatal(run, "Form_Load: the blank database was not there.  can't initialize database.");
    return false;
}

bool HasTemplates(RunRooms& run) {
    for (const ReportTemplate& page : ReportTemplates()) {
        const std::string file = "/" + std::string(page.file);
        if (Has(run, file)) continue;
        TellTheEnd(run, kMessageTitle, "The necessary report template " + run.options.dir + file + std::string(kReinstall));
        LogFatal(run, "Form_Load: the " + std::string(page.word) + " template " + file + " was missing. can't continue.");
        return false;
    }
    return true;
}

bool DatabaseOpens(RunRooms& run) {
    std::string error;
    run.state.bReportsOK = IsDBConnectOK(run.store, run.files, run.options.dir, error);
    if (run.state.bReportsOK) return true;
    run.state.strReportsProblem = error;
    TellTheEnd(run, "Required: Install Microsoft Jet4 components...", DatabaseFailureText(error));
    LogFatal(run, "Form_Load: the database didn't open properly. sending user jet4 info.");
    LogFatal(run, "Form_Load: " + error);
    if (run.mainWindow.HasWindow()) IgnoreErrors([&] { run.pages.Show(std::string(kDatabaseHelpAddress)); });
    TellTheEnd(run, kMessageTitle, CloseKorvaneText());
    return false;
}

// Waits for as long as it takes; the service manager must not take that for a start that failed.
bool ServerOpens(RunRooms& run, const bool& exitAsked) {
    while (!exitAsked) {
        try {
            const auto connection = OpenDatabase(run.store, run.options.dir);
            OpenRows(run.store, *connection, "SELECT * from servers where id < 0");
            run.away.Back();
            run.state.bReportsOK = true;
            return true;
        } catch (const ServerAwayError& error) {
            if (!run.away.IsAway()) run.serviceManager.Ready();
            const auto pause = run.away.Away(error.what());
            WaitFor(run.events, run.clock, pause, [&] { return exitAsked; });
        }
    }
    return false;
}

bool HasAllItNeeds(RunRooms& run, const bool& exitAsked) {
    try {
        if (run.options.isShared) return HasTemplates(run) && ServerOpens(run, exitAsked);
        run.rescue.BeforeTheStart();
        return HasDatabase(run) && HasTemplates(run) && DatabaseOpens(run);
    } catch (const std::exception& error) {  // the disk is full, or a folder is not accessible
        TellTheEnd(run, kMessageTitle, error.what());
        LogFatal(run, "Form_Load: " + std::string(error.what()));
        return false;
    }
}

void BringPictures(RunRooms& run) {
    if (run.options.dataDir == run.options.dir) return;
    const std::vector<std::string> pictures = run.files.FileNames(run.options.dataDir + kPictures);
    run.files.CreateFolder(run.options.dir + kPictures);
    for (const std::string& picture : pictures)
        IgnoreErrors([&] { Has(run, kPictures + ("/" + picture)); });
}

// The cycle's query finds only rows with a due time: a row without one, left by another tool, becomes due now.
void FillBlankTimes(RunRooms& run) {
    const auto conn = OpenDatabase(run.store, run.options.dir);
    const auto rs = OpenRows(run.store, *conn, "SELECT * FROM Servers where dtNextCheck is null");
    for (; !rs->Eof(); rs->MoveNext()) {
        rs->Fields("dtNextCheck") = run.clock.Now();
        rs->Update();
    }
}

void PrepareEntries(RunRooms& run) {
    IgnoreErrors([&] { BringPictures(run); });
    if (const std::string problem = WriteProblemOf(run.store, run.options.dir); !problem.empty()) TellProblem(run, problem);
    IgnoreErrors([&] {
        for (const std::string& missing : MissingColumns(run.store, run.options.dir))
            TellProblem(run, "the database lacks " + missing + ". Checks go on without it as far as they can.");
    });
    run.settings.ImportEntriesOnce();
    IgnoreErrors([&] { FillBlankTimes(run); });
}

void ReadSettings(RunRooms& run) {
    run.log.Info("frmMonitor:Form_Load: ReadInGlobalSettings.");
    run.settings.ReadInGlobalSettings();
    if (const std::string problem = run.settingsFile.Problem(); !problem.empty()) TellProblem(run, problem);
    run.legacyLog.setLogTimer();
    run.safeguards.TellProblems();
    run.alertPath.Load();
}

}  // namespace

Run::Started Run::StartUp() {
    RunRooms& run = *rooms_;
    run.log.Info("Korvane Starting *********************************");
    run.bFormLoading = true;
    run.person.SetWaitCursor(true);
    run.person.SetProgress(0, 100);
    run.events.DoEvents();
    run.mainWindow.SetTitle(MainTitle(run.options.version));
    if (!run.files.HoldFolder(run.options.dir)) {
        run.events.DoEvents();
        TellTheEnd(run, "Korvane Multiple Instance.", "Korvane is already running.  \r\n\r\nOnly one instance may run.");
        return Started::SecondInstance;
    }
    run.log.Info("frmMonitor:Form_Load: determined to be first Instance");
    run.mainWindow.SetCaptions({.mnuFileGlobal = "Open Global log file (" + run.settings.GetLogFile() + "99.txt)",
                                .mnufilekvsettings = "Open Korvane Settings File (" + run.settings.GetSettingsFile() + ")"});
    run.settings.EnsureUniqueid();
    const bool firstRun = IsFirstRun(run);
    if (IsSetUp(run)) MarkSetUp(run);
    if (!firstRun) run.mainWindow.MinimizeToTray();
    ReadSettings(run);
    if (run.collection.IsTrue("bMinimized")) run.mainWindow.MinimizeToTray();
    run.mainWindow.Place(firstRun);
    run.person.SetTray(TrayPicture::Normal, "Korvane Initializing... Please Wait. Started: " + run.clock.Now().Text());
    if (!HasAllItNeeds(run, exitAsked_)) {
        if (run.away.IsAway()) return Started::Stopped;
        Form_Unload();
        return Started::CannotGoOn;
    }
    PrepareEntries(run);
    run.store.Rest();
    run.log.Info("frmMonitor:Form_Load: All data should be in database.");
    run.person.SetMonitoring(run.state.bMonitoring);
    run.service.LoadMarks();
    run.http.LoadInets(run.newInet);
    if (run.mainWindow.HasWindow()) run.testHttp.LoadInets(run.newInet);
    run.log.Info("frmMonitor:Form_Load: calling Form_Resize");
    run.mainWindow.Form_Resize();
    run.Timer2->SetEnabled(true);
    run.person.SetWaitCursor(false);
    run.bFormLoading = false;
    run.mainWindow.LoadResourceMonitors();
    run.FollowSafeguards();
    run.requests.Start();
    if (run.instances) run.instances->Start();
    run.service.Loaded();
    return Started::Running;
}

void RunRooms::BeginOperations() {
    person.SetTrayTip("Korvane Initialized. Beginning Operations: " + clock.Now().Text());
    if (IsFirstRun(*this)) IgnoreErrors([&] { SetUpForTheFirstTime(*this); });
    const bool toldToStayQuiet = options.commandLine.find("restart") != std::string::npos;
    if (collection.IsTrue("Reboot") && !toldToStayQuiet) actions.SendStartupNotice();
}

}  // namespace korvane
