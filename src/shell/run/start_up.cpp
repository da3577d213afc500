// The start of the program in its fixed order, with every branch and message. Nothing here needs a window.
#include <string>
#include <vector>

#include "base/ignore_errors.h"
#include "base/raised_flag.h"
#include "shell/run/message_title.h"
#include "shell/run/run.h"
#include "shell/web/web_addresses.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr std::string_view kReinstall = " was missing.  Please reinstall Korvane (may have to choose the repair option).";

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

}  // namespace

Run::Started Run::StartUp() {
    log_.Info("Korvane Starting *********************************");
    bFormLoading_ = true;
    ports_.person.SetWaitCursor(true);
    ports_.person.SetProgress(0, 100);
    ports_.events.DoEvents();
    window_.SetTitle(Title());
    if (!ports_.files.HoldFolder(options_.dir)) {
        TellSecondInstance();
        return Started::SecondInstance;
    }
    log_.Info("frmMonitor:Form_Load: determined to be first Instance");
    SetCaptions();
    settings_.EnsureUniqueid();
    const bool firstRun = IsFirstRun();
    if (IsSetUp()) MarkSetUp();
    if (!firstRun) window_.MinimizeToTray();
    ReadSettings();
    if (collection_.IsTrue("bMinimized")) window_.MinimizeToTray();
    window_.Place(firstRun);
    ports_.person.SetTray(TrayPicture::Normal, "Korvane Initializing... Please Wait. Started: " + ports_.clock.Now().Text());
    if (!HasAllItNeeds()) {
        Form_Unload();
        return Started::CannotGoOn;
    }
    PrepareEntries();
    ports_.store.Rest();
    log_.Info("frmMonitor:Form_Load: All data should be in database.");
    ports_.person.SetMonitoring(state_.bMonitoring);
    service_.LoadMarks();
    http_.LoadInets(ports_.newInet);
    if (window_.HasWindow()) testHttp_.LoadInets(ports_.newInet);
    log_.Info("frmMonitor:Form_Load: calling Form_Resize");
    window_.Form_Resize();
    Timer2_->SetEnabled(true);
    ports_.person.SetWaitCursor(false);
    bFormLoading_ = false;
    window_.LoadResourceMonitors();
    service_.Loaded();
    return Started::Running;
}

void Run::TellSecondInstance() {
    ports_.events.DoEvents();
    TellTheEnd("Korvane Multiple Instance.", "Korvane is already running.  \r\n\r\nOnly one instance may run.");
}

void Run::TellTheEnd(const std::string& title, const std::string& text) {
    const RaisedFlag telling(onlyTelling_);
    ports_.person.ShowMessage(title, text);
}

void Run::ReadSettings() {
    log_.Info("frmMonitor:Form_Load: ReadInGlobalSettings.");
    settings_.ReadInGlobalSettings();
    if (const std::string problem = settingsFile_.Problem(); !problem.empty()) {
        log_.WriteLog(kLogFatal, kLogError, "frmMonitor:Form_Load: " + problem);
        status_.setStatusMSG(problem);
    }
    legacyLog_.setLogTimer();
}

// Returns whether the home has the file, after copying it from the installation if it was missing. Throws Error when the home
// cannot be written.
bool Run::Has(const std::string& name) {
    if (ports_.files.Exists(options_.dir + name)) return true;
    if (options_.dataDir == options_.dir || !ports_.files.Exists(options_.dataDir + name)) return false;
    ports_.files.Copy(options_.dataDir + name, options_.dir + name);
    return true;
}

void Run::BringPictures() {
    if (options_.dataDir == options_.dir) return;
    const std::vector<std::string> pictures = ports_.files.FileNames(options_.dataDir + kPictures);
    ports_.files.CreateFolder(options_.dir + kPictures);
    for (const std::string& picture : pictures)
        IgnoreErrors([&] { Has(kPictures + ("/" + picture)); });
}

bool Run::HasDatabase() {
    const std::string database = DatabasePath(options_.dir);
    const std::string blank = "/" + std::string(kEmptyDatabaseFile);
    if (ports_.files.Exists(database)) {
        IgnoreErrors([&] { Has(blank); });
        log_.Info("frmMonitor:Form_Load: Database Exists, do not read in ini files for first time init.");
        return true;
    }
    if (Has(blank)) {
        log_.Info("frmMonitor:Form_Load: copy blank database template so we can initialize.");
        // This is written to the file first: a program killed after the copy would otherwise take the new database for the old
        // one at its next start.
        if (settings_.AllInDB()) settingsFile_.Write(kSettingsSection, "bALLInDB", "False");
        collection_.setKvSettingsColValue("bAllInDB", "False");
        RemoveJournals(ports_.files, database);
        ports_.files.Copy(options_.dir + blank, database);
        return true;
    }
    TellTheEnd(kMessageTitle, "The necessary Template Databasee " + options_.dir + blank + std::string(kReinstall));
    log_.WriteLog(kLogFatal, kLogError, "frmMonitor:Form_Load: the blank database was not there.  can't initialize database.");
    return false;
}

bool Run::HasTemplates() {
    for (const ReportTemplate& page : ReportTemplates()) {
        const std::string file = "/" + std::string(page.file);
        if (Has(file)) continue;
        TellTheEnd(kMessageTitle, "The necessary report template " + options_.dir + file + std::string(kReinstall));
        log_.WriteLog(
            kLogFatal, kLogError,
            "frmMonitor:Form_Load: the " + std::string(page.word) + " template " + file + " was missing. can't continue.");
        return false;
    }
    return true;
}

bool Run::DatabaseOpens() {
    std::string error;
    state_.bReportsOK = IsDBConnectOK(ports_.store, ports_.files, options_.dir, error);
    if (state_.bReportsOK) return true;
    state_.strReportsProblem = error;
    TellTheEnd("Required: Install Microsoft Jet4 components...", DatabaseFailureText(error));
    log_.WriteLog(kLogFatal, kLogError, "frmMonitor:Form_Load: the database didn't open properly. sending user jet4 info.");
    log_.WriteLog(kLogFatal, kLogError, "frmMonitor:Form_Load: " + error);
    if (window_.HasWindow()) IgnoreErrors([&] { pages_.Show(std::string(kDatabaseHelpAddress)); });
    TellTheEnd(kMessageTitle, CloseKorvaneText());
    return false;
}

bool Run::HasAllItNeeds() {
    try {
        return HasDatabase() && HasTemplates() && DatabaseOpens();
    } catch (const std::exception& error) {  // the disk is full, or a folder is not accessible
        TellTheEnd(kMessageTitle, error.what());
        log_.WriteLog(kLogFatal, kLogError, "frmMonitor:Form_Load: " + std::string(error.what()));
        return false;
    }
}

void Run::NameMissingColumns() {
    for (const std::string& missing : MissingColumns(ports_.store, options_.dir)) {
        const std::string problem = "the database lacks " + missing + ". Checks go on without it as far as they can.";
        log_.WriteLog(kLogFatal, kLogError, "frmMonitor:Form_Load: " + problem);
        status_.setStatusMSG(problem);
    }
}

// Monitoring continues: window and log tell the operator why its results are not stored.
void Run::NameWriteProblem() {
    const std::string problem = WriteProblemOf(ports_.store, options_.dir);
    if (problem.empty()) return;
    log_.WriteLog(kLogFatal, kLogError, "frmMonitor:Form_Load: " + problem);
    status_.setStatusMSG(problem);
}

void Run::PrepareEntries() {
    IgnoreErrors([&] { BringPictures(); });
    NameWriteProblem();
    IgnoreErrors([&] { NameMissingColumns(); });
    settings_.ImportEntriesOnce();
    IgnoreErrors([&] { MendBlankTimes(); });
}

// The cycle's query finds only rows with a due time: a row without one, left by another tool, becomes due now.
void Run::MendBlankTimes() {
    const auto conn = ports_.store.NewConnection();
    conn->SetConnectionString(OleDbConnectionText(options_.dir));
    conn->Open();
    const auto rs = ports_.store.NewRecordset();
    rs->Open("SELECT * FROM Servers where dtNextCheck is null", *conn, CursorType::Keyset, LockType::Optimistic);
    for (; !rs->Eof(); rs->MoveNext()) {
        rs->Fields("dtNextCheck") = ports_.clock.Now();
        rs->Update();
    }
}

}  // namespace korvane
