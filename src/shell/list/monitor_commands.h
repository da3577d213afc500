// What the commands of the main window do, whatever pressed them: a button, a menu, a key, the tray. The window adds the
// selected row and shows the outcome.
#pragma once

#include <functional>
#include <string>

#include "shell/run/desk.h"

namespace korvane {

class Run;

class MonitorCommands {
public:
    explicit MonitorCommands(Run& run);

    /// Stops what runs, starts again and makes every entry due at once; starts when monitoring is stopped.
    void cmdStopWaiting();
    /// The tray's two: only a running monitor pauses and only a stopped one resumes.
    void mnuTrayOff();
    void mnuTrayOn();

    /// Whether there is room for one more entry; the operator is told when there is none. The editor may then be opened.
    bool BeginAdd();
    /// Before and behind the editor of an entry that is there.
    void BeginEdit();
    void EndEdit();

    /// A copy of the entry with its counters at their beginning, without its rules. Returns its id, blank when nothing was
    /// copied.
    std::string CopyURL(const std::string& id);

    /// Asks, and removes the entry with all that hangs on it. Monitoring is stopped first. A blank id: nothing is selected, and
    /// the operator is told. `answered` is called behind what the answer led to.
    void DeleteURL(
        const std::string& id, const std::string& name, const std::function<void()>& answered = [] {});

    void cmdSave() { desk_.settings.cmdSave(); }
    void cmdReports() { desk_.reports.cmdReports_Click(); }
    void mnuFileOpen() { OpenText(desk_.legacyLog.FilePath()); }
    void mnuFileGlobal() { OpenText(GlobalLogPath()); }
    void mnufilekvsettings() { OpenText(desk_.settings.GetSettingsFile()); }

    void mnuFileRepair();
    /// Both ask first.
    void mnuFileResetGraph();
    void mnuEditClearStatus();

private:
    std::string GlobalLogPath() const { return desk_.settings.GetLogFile() + "99.txt"; }
    bool HasRoom(const std::string& refusal);
    std::string Copy(const std::string& id);
    void OpenText(const std::string& path);
    void Delete(const std::string& id);
    void AskReset(const std::string& opening, std::function<void()> reset);

    Run& run_;
    Desk desk_;
};

}  // namespace korvane
