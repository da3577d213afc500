// Room `main`: the main window with its list, menus and tray icon.
//
// The main window: the list of all entries, the status log, start and stop, and every command, by button, menu, key and tray
// icon. As the Operator of the lower rooms it shows what they report, and it passes the user's commands to them; it decides
// nothing itself.
#pragma once

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>
#include <array>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/operator.h"
#include "platform/timer.h"
#include "shell/desktop/glance/list_bar.h"
#include "shell/desktop/glance/status_colours.h"
#include "shell/desktop/glance/stopped_bar.h"
#include "shell/desktop/main/entry_commands.h"
#include "shell/desktop/main/entry_files.h"
#include "shell/desktop/main/list_columns.h"
#include "shell/desktop/main/monitor_forms.h"
#include "shell/desktop/main/monitor_tray.h"
#include "shell/desktop/main/server_list_model.h"
#include "shell/desktop/monitors/resource_windows.h"
#include "shell/desktop/small/frm_msg.h"
#include "shell/desktop/toolkit/reading_text.h"
#include "shell/desktop/trace/trace_windows.h"
#include "shell/list/monitor_commands.h"
#include "shell/list/outage_notes.h"
#include "shell/list/outage_starts.h"
#include "shell/run/monitor_window.h"

class QBoxLayout;

namespace korvane {

class DetailStrip;
class Run;

class frmMonitor : public QMainWindow, public Operator, public MonitorWindow {
public:
    /// `timers` provides `Timer3` and `Timer4`. The window does nothing before Attach.
    explicit frmMonitor(Timers& timers);
    ~frmMonitor() override;

    /// Sets the run that this window shows and controls; `exit` ends the process. Must be called before the run's StartUp. The
    /// run must outlive this window's events.
    void Attach(Run& run, std::function<void()> exit);

    /// For the Ports of the run.
    ConversationWindow& Conversation() { return conversation_; }
    MailTrace& Mail() { return mailTrace_; }

    /// Called before the process ends: stores the columns and removes the tray icon.
    void BeforeExit();

    // Implementation of Operator.
    bool WindowVisible() const override;
    void StatusLine(const std::string& time, const std::string& text) override;
    void ClearStatus() override { txtStatus->clear(); }
    void SetClockText(const std::string& time) override;
    void SetCycleText(const std::string& text) override;
    void ShowProgress(bool shown) override;
    void SetProgress(int value, int max) override;
    void SetProgressTip(const std::string& text) override;
    void SetTray(TrayPicture picture, const std::string& tip) override;
    void SetTrayTip(const std::string& tip) override;
    void SetMonitoring(bool on) override;
    void SetCustomerCount(int count) override;
    void SetMailState(const std::string& text, bool alarming) override;
    void NoteOutage(const std::string& entry, bool isDown, const std::string& reason) override;
    void RefreshURLList() override;
    void SetWaitCursor(bool wait) override;
    void ShowMessage(const std::string& title, const std::string& text) override;
    void ShowError(const std::string& title, const std::string& text) override;
    void ShowLoggedError(const std::string& title, const std::string& text) override;
    bool AskYesNo(const std::string& title, const std::string& text) override;
    void Ask(const std::string& title, const std::string& text, const std::function<void()>& yes,
             const std::function<void()>& no) override;

    // Implementation of MonitorWindow, for start-up and the settings.
    bool HasWindow() const override { return true; }
    int ScreenWidth() const override;
    int Width() const override;
    int Height() const override;
    void SetWidth(int twips) override;
    void SetHeight(int twips) override;
    void SetTitle(const std::string& title) override;
    void SetCaptions(const Captions& captions) override;
    void Place(bool shown) override;
    void MinimizeToTray() override;
    void Form_Resize() override;
    void LoadResourceMonitors() override { resources_->Load(); }
    void SetStartMarks(bool mnuTrayNTService, bool mnuTrayStartup) override;
    void SetUpForTheFirstTime() override { forms_->SetUpForTheFirstTime(); }

    // Commands that need the window.
    void cmdAddURL_Click();
    void cmdEditURL_Click();
    void cmdDeleteURL_Click();
    void cmdCopyPaste_Click();
    void mnuTraySettings_Click();
    void SetIsAddUrl(bool isAddUrl) { isAddUrl_ = isAddUrl; }
    bool IsAddUrl() const { return isAddUrl_; }

    // Widgets.
    QTreeView* ListView1;
    StatusBox* txtStatus;
    QLabel* lblServers;
    QLabel* lblCustomers;
    QLabel* lblMail;
    QLabel* lblCount;
    QLabel* lblTime;
    QLabel* lblCo;
    QProgressBar* ProgressBar1;
    QPushButton* cmdStopStart;
    QPushButton* cmdStopWaiting;
    MonitorTray& Tray() { return tray_; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Command;

    /// A width or height in the settings file, and the pixels that it became: fewer on a small screen.
    struct SavedLength {
        int twips = 0;
        int pixels = -1;
        int Twips(int pixelsNow) const;
    };

    void BuildWidgets();
    QLayout* BuildButtons();
    QLayout* BuildProgress();
    void BuildList();
    void BuildStatusBar();
    QWidget* ResourceMarks();
    void BuildGlance(QBoxLayout& rows);
    void BuildEmptyText();
    void BuildLogCommands(QLayout& row);
    void BuildMenus();
    void BuildDetail(QVBoxLayout& rows, int at);
    void AttachDetail();
    void ShowDetail();
    void RestoreDetail();
    void mnuViewDetail();
    void mnuViewInstances();
    std::vector<Command> Commands();
    void AttachEntryCommands();

    void HideOrIconify();
    void SetWindowToFrontForeground();
    void WelcomeBack();
    void OpenEditor(bool isAddUrl, const std::string& id);
    void SelectRow(int row);
    void SelectEntry(const std::string& id);
    ServerRow SelectedRow() const;  ///< of several, the one with the focus; empty texts when none is selected
    void RememberColumns();
    void ApplyFilter();
    void ShowCounts();
    void LetBeSeen(const std::string& id);
    void SelectMade(const std::string& id);
    std::set<std::string> AllIds() const;
    void ShowStopped();
    int HeightAroundList() const;
    void RestoreView();
    void RememberView();
    void KeepOnScreen();
    QPoint HomePlace() const;
    void Timer3_Timer();
    void Timer4_Timer();
    void ShowStopStart(bool shown);
    void KeepRowSeen();
    void ResourceWindowHidden(ResourceMonitor monitor);
    void ShowOrQueue(MessageQueue::Message message);
    QWidget* MessageParent() const;

    Run* run_ = nullptr;
    std::unique_ptr<MonitorCommands> commands_;
    std::unique_ptr<EntryCommands> entryCommands_;
    std::unique_ptr<EntryFiles> entryFiles_;
    std::unique_ptr<ResourceWindows> resources_;
    std::unique_ptr<MonitorForms> forms_;
    std::array<QCheckBox*, kResourceMonitors.size()> ckResources_{};
    std::function<void()> exit_;
    ServerListModel* model_;
    DetailStrip* detail_;
    MonitorTray tray_{[this] { mnuTraySettings_Click(); }};
    OutageNotes notes_;
    OutageStarts outageStarts_;
    std::map<std::string, QAction*> actions_;  ///< by name
    QMenu* context_;                           ///< of the list
    MessageQueue messages_{[this] { return MessageParent(); }};
    QPointer<QWidget> editor_;  ///< while one is open
    ConversationViewer conversation_;
    MailTraceViewer mailTrace_;
    std::unique_ptr<Timer> Timer3_;
    std::unique_ptr<Timer> Timer4_;
    ListColumns* columns_;
    ListBar* bar_;
    StoppedBar* stopped_;
    QLabel* lblEmpty_;  ///< over an empty list
    std::vector<QPushButton*> commandButtons_;
    std::vector<QWidget*> aroundList_;  ///< for which the list leaves room
    std::string storedProblemsFirst_;
    int rowHeight_ = 0;
    SavedLength width_;
    SavedLength height_;
    std::string mailState_;
    int nBlink_ = 0;
    bool monitoring_ = true;
    bool isAddUrl_ = false;
    bool placed_ = false;
    bool welcomed_ = false;
    bool hiddenAtStart_ = false;
};

}  // namespace korvane
