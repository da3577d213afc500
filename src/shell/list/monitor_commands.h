// The commands of the main window, whether they come from a button, a menu, a key or the tray. The window adds the selected row
// and shows the outcome.
#pragma once

#include <functional>
#include <string>

#include "shell/list/entry_acts.h"
#include "shell/run/desk.h"

namespace korvane {

class Run;

class MonitorCommands {
public:
    explicit MonitorCommands(Run& run);

    /// While monitoring runs: stops it, starts it again and makes every entry due at once. Otherwise starts it.
    void cmdStopWaiting();
    /// The tray's two commands: only a running monitor can be paused, and only a stopped one resumed.
    void mnuTrayOff();
    void mnuTrayOn();

    /// Returns whether one more entry is allowed, so that the editor may be opened; notifies the operator if not.
    bool BeginAdd();
    /// To be called before and after the editor of an existing entry.
    void BeginEdit();
    void EndEdit();

    /// Copies the entry with reset counters and without its rules. Returns the new id, empty when nothing was copied.
    std::string CopyURL(const std::string& id);

    /// Asks, and removes the entry with everything that belongs to it. Monitoring is stopped first. With an empty id nothing is
    /// selected, and the operator is notified. `answered` is called after the answer has taken effect.
    void DeleteURL(
        const std::string& id, const std::string& name, const std::function<void()>& answered = [] {});

    /// The same for several, with one question.
    void DeleteURLs(const EntryActs::Ids& ids, const std::function<void()>& answered);

    /// Copies the entry with its rules. Returns the new id, empty when nothing was copied.
    std::string Duplicate(const std::string& id);
    /// Makes the entries due at once, before all others; while monitoring is stopped the operator is notified instead.
    void CheckNow(const EntryActs::Ids& ids);
    /// Carries out the act, says its outcome in the status log or why it failed in a message, and shows the list again.
    void Do(const std::function<std::string(EntryActs& acts)>& act);

    void cmdSave() { desk_.settings.cmdSave(); }
    void cmdReports() { desk_.reports.cmdReports_Click(); }
    void mnuFileOpen() { OpenText(desk_.legacyLog.FilePath()); }
    void OpenTodaysLog() { OpenText(desk_.log.TodaysFile()); }
    void mnuFileGlobal() { OpenText(GlobalLogPath()); }
    void mnufilekvsettings() { OpenText(desk_.settings.GetSettingsFile()); }

    void mnuFileRepair();
    /// Both ask first.
    void mnuFileResetGraph();
    void mnuEditClearStatus();

private:
    std::string GlobalLogPath() const { return desk_.settings.GetLogFile() + "99.txt"; }
    bool HasRoom(const std::string& refusal);
    int EntryCount() const;
    std::string CopyOf(const std::string& id, std::string (EntryActs::*copy)(const std::string& id));
    void OpenText(const std::string& path);
    void AskDelete(const std::string& whom, const EntryActs::Ids& ids, const std::function<void()>& answered);
    void Delete(const EntryActs::Ids& ids);
    void AskReset(const std::string& opening, std::function<void()> reset);

    Run& run_;
    Desk desk_;
    EntryActs acts_;
};

// Texts of the help menu about restarting computers: this one by a failing entry's own command, what must be set so that the
// program starts again afterwards, and other computers in the same way. The first reads the disk to find the command.
std::string ShutdownHelp(Files& files);
std::string RestartHelp();
std::string ShutdownRemoteHelp();

}  // namespace korvane
