#include "shell/list/monitor_commands.h"

#include <utility>

#include "base/ignore_errors.h"
#include "engine/machine_restart.h"
#include "platform/operator.h"
#include "shell/run/run.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr const char* kNoRoomToAdd =
    "Sorry, <most> is the maximum number of Server Entries supported for the production version.  "
    "Please remove or edit some unused, or less important URLs from the list.";
constexpr const char* kNoRoomToCopy =
    "Sorry, <most> is the maximum number of Servers supported for the production version.  "
    "Please remove or edit some unused, or less important Servers from the list.";
constexpr const char* kMonitoringIsStopped =
    "Monitoring is stopped, so nothing is checked.  Click the Start button to start monitoring.";
constexpr const char* kResetGraph = "This will delete the response time data for all servers (the hourly and daily graphs).";
constexpr const char* kResetSummary =
    "This will reset response time average, success count, fail count, and up-time percentage data for ALL server entries.  "
    "This will Also delete all failure records. This will NOT delete the response time records (daily/hourly graphs). ";
constexpr const char* kRepairing =
    "During Compact and Repair, Korvane will freeze and refuse user input for up to 2 minutes.  Please wait...";

}  // namespace

MonitorCommands::MonitorCommands(Run& run) : run_(run), desk_(run.TheDesk()), acts_(desk_) {}

void MonitorCommands::cmdStopWaiting() {
    if (run_.Loading()) return;
    const bool wasOn = run_.State().bMonitoring;
    run_.cmdStopStart();
    if (!wasOn) return;
    run_.cmdStopStart();
    run_.WakeUp();
    desk_.maintenance.ResetAllEventsToNow();
    desk_.person.RefreshURLList();
}

void MonitorCommands::mnuTrayOff() {
    if (run_.State().bMonitoring) run_.cmdStopStart();
}

void MonitorCommands::mnuTrayOn() {
    if (!run_.State().bMonitoring) run_.cmdStopStart();
}

bool MonitorCommands::HasRoom(const std::string& refusal) {
    if (EntryCount() < MostEntries(desk_)) return true;
    desk_.person.ShowMessage(kMessageTitle, ReplaceAll(refusal, "<most>", MostEntriesText(desk_)));
    return false;
}

// Other instances may have added some since the list was shown.
int MonitorCommands::EntryCount() const {
    int count = desk_.settings.GetTotalURLs();
    if (!desk_.isShared) return count;
    IgnoreErrors([&] {
        const auto connection = OpenDatabase(desk_.store, desk_.dir);
        count = OpenRows(desk_.store, *connection, "SELECT ID FROM Servers", CursorType::Static)->RecordCount();
    });
    return count;
}

bool MonitorCommands::BeginAdd() {
    if (!HasRoom(kNoRoomToAdd)) return false;
    desk_.entries.setServerEntryChangedIndex(kNoServerEntry);
    return true;
}

void MonitorCommands::BeginEdit() {
    desk_.log.Info("cmdEditURL_Click:  Enter routine");
    desk_.entries.setServerEntryChangedIndex(kNoServerEntry);
    desk_.log.Info("cmdEditURL_Click:  calling frmURLData.Show ");
}

void MonitorCommands::EndEdit() {
    desk_.log.Info("cmdEditURL_Click:  back from frmURLData.Show ");
}

std::string MonitorCommands::CopyURL(const std::string& id) {
    return CopyOf(id, &EntryActs::Copy);
}

std::string MonitorCommands::Duplicate(const std::string& id) {
    return CopyOf(id, &EntryActs::Duplicate);
}

std::string MonitorCommands::CopyOf(const std::string& id, std::string (EntryActs::*copy)(const std::string& id)) {
    if (!HasRoom(kNoRoomToCopy)) return "";
    std::string newId;
    try {
        newId = (acts_.*copy)(id);
        if (newId.empty()) desk_.person.ShowMessage(kMessageTitle, "didn't find source record to copy.");
    } catch (const std::exception& error) {
        desk_.log.WriteLog(kLogFatal, kLogError, "cmdCopyPaste_Click: " + std::string(error.what()));
        desk_.person.ShowError(kMessageTitle, error.what());
    }
    desk_.person.RefreshURLList();
    return newId;
}

void MonitorCommands::CheckNow(const EntryActs::Ids& ids) {
    if (!run_.State().bMonitoring) return desk_.person.ShowMessage(kMessageTitle, kMonitoringIsStopped);
    Do([&](EntryActs& acts) { return acts.CheckNow(ids); });
    run_.WakeUp();
}

void MonitorCommands::Do(const std::function<std::string(EntryActs& acts)>& act) {
    try {
        desk_.status.setStatusMSG(act(acts_));
    } catch (const std::exception& error) {
        desk_.log.WriteLog(kLogOrdinary, kLogError, "Entry: " + std::string(error.what()));
        desk_.person.ShowError(kMessageTitle, "Nothing was changed: " + std::string(error.what()));
    }
    desk_.person.RefreshURLList();
}

void MonitorCommands::DeleteURL(const std::string& id, const std::string& name, const std::function<void()>& answered) {
    if (id.empty()) {
        desk_.person.ShowMessage(kMessageTitle, "Please click an entry in the list, then click delete.");
        return;
    }
    AskDelete("the " + name + " Server?\r\n\r\nChoosing Yes will Delete the entry.", {id}, answered);
}

void MonitorCommands::DeleteURLs(const EntryActs::Ids& ids, const std::function<void()>& answered) {
    AskDelete("the " + std::to_string(ids.size()) + " selected Servers?\r\n\r\nChoosing Yes will Delete these entries.", ids,
              answered);
}

void MonitorCommands::AskDelete(const std::string& whom, const EntryActs::Ids& ids, const std::function<void()>& answered) {
    mnuTrayOff();
    desk_.person.Ask(
        kMessageTitle, "Are you sure you want to Permanently Delete " + whom,
        [=, this] {
            Delete(ids);
            answered();
        },
        [=, this] {
            desk_.status.setStatusMSG("Not Deleted");
            answered();
        });
}

void MonitorCommands::Delete(const EntryActs::Ids& ids) {
    const WaitCursor waiting(desk_.person);
    acts_.Delete(ids);
    desk_.person.RefreshURLList();
    const std::string problem = desk_.publisher.PublishReports();
    if (!problem.empty()) desk_.status.setStatusMSG("Reporting Error: " + problem);
    desk_.status.setStatusMSG(ids.size() == 1 ? "Server Entry Deleted" : std::to_string(ids.size()) + " Server Entries Deleted");
}

void MonitorCommands::OpenText(const std::string& path) {
    bool exists = false;
    IgnoreErrors([&] { exists = desk_.files.Exists(path); });
    if (!exists) {
        desk_.person.ShowMessage(kMessageTitle, "There is no file " + path + " yet.");
        return;
    }
    OpenInEditor(desk_.processes, desk_.person, path);
}

void MonitorCommands::mnuFileRepair() {
    const WaitCursor waiting(desk_.person);
    desk_.status.setStatusMSG(kRepairing);
    desk_.events.DoEvents();
    desk_.maintenance.CompactAndRepair(DatabasePath(desk_.dir));
    desk_.person.RefreshURLList();
}

void MonitorCommands::AskReset(const std::string& opening, std::function<void()> reset) {
    desk_.person.Ask(kMessageTitle,
                     opening +
                         "\r\n\r\nThere is no way to UNDO this if you click YES.\r\n\r\n"
                         "Click YES to Reset and Continue, NO to cancel",
                     [this, reset = std::move(reset)] {
                         const WaitCursor waiting(desk_.person);
                         reset();
                         desk_.person.RefreshURLList();
                     });
}

void MonitorCommands::mnuFileResetGraph() {
    AskReset(kResetGraph, [this] { desk_.maintenance.ResetResponseDataALL(); });
}

void MonitorCommands::mnuEditClearStatus() {
    AskReset(kResetSummary, [this] { desk_.maintenance.ResetStatDataALL(true); });
}

std::string ShutdownHelp(Files& files) {
    return "Korvane restarts THIS computer only through the command of a server entry: when the server fails, the command is run."
           "\r\n\r\n"
           "Edit the server entry, and on its page of commands choose the command that restarts this computer:\r\n\r\n" +
           getShudownEXEPath(files) +
           " -r -f\r\n\r\n"
           "The user that Korvane runs as must have the right to restart this computer.\r\n\r\n"
           "The option 'Reboot' of the settings announces the restart in emails.  The same page of the settings tests it.";
}

std::string RestartHelp() {
    return "When a server entry restarts this computer, Korvane must come back by itself.\r\n\r\n"
           "Install it as a service (it starts with the computer, even before anyone logs on), "
           "or add it to the startup group (it starts when you log on).\r\n\r\n"
           "Both are in the menu of the Korvane icon in your system tray, and in the settings.  "
           "We recommend that you choose one or the other, not both.";
}

std::string ShutdownRemoteHelp() {
    return "Another computer is restarted the same way: by the command of a server entry that names it.\r\n\r\n"
           "For a computer with Linux:\r\n"
           "ssh root@<ip> shutdown -r now\r\n\r\n"
           "For a computer with Windows:\r\n"
           "net rpc shutdown -r -f -I <ip> -U <administrator>%<password>\r\n\r\n"
           "Administrator rights on that computer are needed, and the command must run without asking for a password: "
           "try it in a terminal first, as the user that Korvane runs as.";
}

}  // namespace korvane
