// The commands of the main window: the table of all of them, from which its menus, the list's and the tray's are built, and those
// on entries.
#include <QClipboard>
#include <QGuiApplication>
#include <QMenuBar>
#include <algorithm>
#include <optional>

#include "platform/operator.h"
#include "shell/desktop/editor/frm_url_data.h"
#include "shell/desktop/look/icons.h"
#include "shell/desktop/main/frm_monitor.h"
#include "shell/run/run.h"

namespace korvane {
namespace {

constexpr const char* kFile = "&File";
constexpr const char* kEdit = "&Edit";
constexpr const char* kMonitor = "&Monitor";
constexpr const char* kView = "Vie&w";
constexpr const char* kSettings = "&Settings";
constexpr const char* kHelp = "&Help";
constexpr const char* kTray = "";  ///< the menu of the tray icon, which has no caption

/// Where a command is besides its menu: nowhere, in the context menu of the list, or there with keys that act only in the list,
/// for commands on an entry.
enum class Where { Menu, Context, List };

}  // namespace

struct frmMonitor::Command {
    const char* menu;  ///< the menu's caption
    const char* name;  ///< empty: a separator between groups
    const char* caption = "";
    const char* keys = "";
    std::optional<CommandPicture> picture = {};
    std::function<void()> run = {};
    Where where = Where::Menu;
};

std::vector<frmMonitor::Command> frmMonitor::Commands() {
    using enum CommandPicture;
    const auto none = std::nullopt;
    const auto show = [this](WebPage page) { return [this, page] { run_->TheDesk().pages.Show(page); }; };
    return {
        {kFile, "mnuFileSave", "&Save Settings", "Ctrl+S", Save, [this] { commands_->cmdSave(); }},
        {kFile, "mnuFileReports", "&Reports", "Ctrl+R", Reports, [this] { commands_->cmdReports(); }},
        {kFile, ""},
        {kFile, "mnuFileOpen", "&Open log file", "", none, [this] { commands_->mnuFileOpen(); }},
        {kFile, "mnuFileGlobal", "Open Global log file", "", none, [this] { commands_->mnuFileGlobal(); }},
        {kFile, "mnufilekvsettings", "Open Korvane Settings File", "", none, [this] { commands_->mnufilekvsettings(); }},
        {kFile, ""},
        {kFile, "mnuFileRepair", "&Compact and Repair Database", "", none, [this] { commands_->mnuFileRepair(); }},
        {kFile, "mnuFileResetGraph", "Reset &Graph Data...", "", none, [this] { commands_->mnuFileResetGraph(); }},
        {kFile, ""},
        {kFile, "mnuFileMin", "&Minimize to Tray", "Ctrl+M", Hide, [this] { MinimizeToTray(); }},
        {kFile, "mnuExit", "E&xit", "Ctrl+Q", Exit, [this] { exit_(); }},
        {kEdit, "mnuEditAddURL", "&Add Server...", "Ctrl+N", Add, [this] { cmdAddURL_Click(); }, Where::Context},
        {kEdit, "mnuEditURL", "&Edit Server...", "Ctrl+E; Return; Enter", Edit, [this] { cmdEditURL_Click(); }, Where::List},
        {kEdit, "", "", "", none, {}, Where::Context},
        {kEdit, "mnuEditCopyURL", "&Copy Server", "Ctrl+D; Ctrl+Ins", Copy, [this] { cmdCopyPaste_Click(); }, Where::List},
        {kEdit, "mnuEditPasteURL", "&Paste Server", "Shift+Ins", Paste, [this] { cmdCopyPaste_Click(); }, Where::List},
        {kEdit, "mnuEditDeleteURL", "&Delete Server...", "Del", Delete, [this] { cmdDeleteURL_Click(); }, Where::List},
        {kEdit, ""},
        {kEdit, "mnuEditClearStatus", "Clear &Statistics...", "", none, [this] { commands_->mnuEditClearStatus(); }},
        {kEdit, ""},
        {kEdit, "mnuEditSettings", "Se&ttings...", "", Settings, [this] { forms_->ShowOptions(); }},
        {kMonitor, "cmdStopStart", "S&top", "F9", Stop, [this] { run_->cmdStopStart(); }},
        {kMonitor, "", "", "", none, {}, Where::Context},
        {kMonitor, "cmdStopWaiting", "Check &All Now", "F5", StartNow, [this] { commands_->cmdStopWaiting(); }, Where::Context},
        {kView, "mnuViewConversation", "&Server Conversation", "", none, [this] { conversation_.Show(); }},
        {kView, "mnuViewMail", "&Mail Conversation", "", none, [this] { mailTrace_.Show(); }},
        {kSettings, "mnuOptions", "&Options...", "Ctrl+,", Settings, [this] { forms_->ShowOptions(); }},
        {kHelp, "mnuHelpWeb", "&Help on the Web", "F1", Help, show(WebPage::mnuHelpWeb)},
        {kHelp, "mnuHelpFeatures", "Fea&tures", "", none, show(WebPage::mnuHelpFeatures)},
        {kHelp, "mnuTerms", "T&erms of Use", "", none, show(WebPage::mnuTerms)},
        {kHelp, ""},
        {kHelp, "mnuShutdown", "&Restarting This Computer", "", none,
         [this] { ShowMessage(kMessageTitle, ShutdownHelp(run_->TheDesk().files)); }},
        {kHelp, "mnuRestart", "&Coming Back after a Restart", "", none, [this] { ShowMessage(kMessageTitle, RestartHelp()); }},
        {kHelp, "mnuShutdownRemote", "Restarting Another C&omputer", "", none,
         [this] { ShowMessage(kMessageTitle, ShutdownRemoteHelp()); }},
        {kHelp, ""},
        {kHelp, "mnuHelpFeedback", "Send &Feedback...", "", Mail, [this] { forms_->ShowFeedback(); }},
        {kHelp, "mnuHelpTellFriend", "Tell a Frie&nd...", "", none, [this] { forms_->ShowTellFriend(); }},
        {kHelp, ""},
        {kHelp, "mnuHelpAbout", "&About Korvane", "", none, [this] { forms_->ShowAbout(); }},
        {kTray, "mnuTraySettings", "&Open Korvane", "", none, [this] { mnuTraySettings_Click(); }},
        {kTray, ""},
        // A click changes the mark of these two, whatever the outcome.
        {kTray, "mnuTrayOn", "&Monitoring ON", "", none, [this] { commands_->mnuTrayOn(), tray_.SetMonitoring(monitoring_); }},
        {kTray, "mnuTrayOff", "&Pause Monitoring", "", none,
         [this] { commands_->mnuTrayOff(), tray_.SetMonitoring(monitoring_); }},
        {kTray, ""},
        {kTray, "mnuTrayReports", "&Reports", "", none, [this] { commands_->cmdReports(); }},
        {kTray, ""},
        {kTray, "mnuTrayNTService", "&Install as Service", "", none,
         [this] { run_->TheDesk().service.mnuTrayNTService_Click(); }},
        {kTray, "mnuTrayStartup", "Start when I &Log On", "", none, [this] { run_->TheDesk().service.mnuTrayStartup_Click(); }},
        {kTray, ""},
        {kTray, "mnuTrayTellFriend", "&Tell a Friend...", "", none, [this] { forms_->ShowTellFriend(); }},
        {kTray, "mnuTrayFeedback", "Send &Feedback...", "", none, [this] { forms_->ShowFeedback(); }},
        {kTray, ""},
        {kTray, "mnuTrayExit", "E&xit", "", none, [this] { exit_(); }},
    };
}

void frmMonitor::BuildMenus() {
    context_ = new QMenu(ListView1);
    std::map<std::string, QMenu*> menus{{kTray, &tray_.mnuTray()}};
    for (const Command& command : Commands()) {
        QMenu*& menu = menus[command.menu];
        if (menu == nullptr) menu = menuBar()->addMenu(command.menu);
        QMenu* const context = command.where == Where::Menu ? nullptr : context_;
        if (*command.name == '\0') {
            menu->addSeparator();
            if (context != nullptr) context->addSeparator();
            continue;
        }
        const bool ofTray = menu == &tray_.mnuTray();
        auto* action = new QAction(command.caption, ofTray ? menu : static_cast<QWidget*>(this));
        action->setObjectName(command.name);
        action->setShortcuts(QKeySequence::listFromString(command.keys));
        if (command.where == Where::List) action->setShortcutContext(Qt::WidgetShortcut);
        if (command.picture) action->setIcon(CommandIcon(*command.picture));
        connect(action, &QAction::triggered, this, [run = command.run] { run(); });
        menu->addAction(action);
        if (!ofTray) (command.where == Where::List ? static_cast<QWidget*>(ListView1) : this)->addAction(action);
        if (context != nullptr) context->addAction(action);
        actions_[command.name] = action;
    }
    tray_.MenuIsBuilt();
}

void frmMonitor::cmdAddURL_Click() {
    if (!commands_->BeginAdd()) return;
    OpenEditor(true, "");
}

void frmMonitor::cmdEditURL_Click() {
    const std::string id = SelectedRow().Id();
    if (id.empty()) {
        ShowMessage(kMessageTitle, "Please click an entry in the list, then click edit.");
        return;
    }
    commands_->BeginEdit();
    OpenEditor(false, id);
}

// Only one editor at a time: while it is open the commands are disabled, but the tray menu and key events that were already
// queued are not.
void frmMonitor::OpenEditor(bool isAddUrl, const std::string& id) {
    if (editor_ != nullptr) return;
    SetIsAddUrl(isAddUrl);
    const int row = ListView1->currentIndex().row();
    const auto saved = [this, id, row] {
        RefreshURLList();
        Form_Resize();
        columns_->Fit();
        if (!id.empty()) SelectEntry(id);
        if (id.empty()) SelectRow(row);
    };
    auto* editor = new frmURLData(run_->TheDesk(), isAddUrl, id, saved, this);
    editor_ = editor;
    conversation_.SetParent(editor);
    connect(editor, &QDialog::finished, this, [this, isAddUrl] {
        SetIsAddUrl(false);
        conversation_.SetParent(this);
        if (!isAddUrl) commands_->EndEdit();
        RefreshURLList();
        ListView1->setFocus();
    });
    editor->open();
}

// Stopping rebuilds the list, perhaps in another order, so the entry is searched again; if it is gone, its row now belongs to
// another entry.
void frmMonitor::cmdDeleteURL_Click() {
    const int row = ListView1->currentIndex().row();
    const ServerRow selected = SelectedRow();
    commands_->DeleteURL(selected.Id(), selected.Name(), [this, row, id = selected.Id()] {
        const int same = model_->RowOf(id);
        SelectRow(same < 0 ? row : same);
        Form_Resize();
    });
}

void frmMonitor::cmdCopyPaste_Click() {
    const std::string copy = commands_->CopyURL(SelectedRow().Id());
    if (!copy.empty()) SelectEntry(copy);
}

// Copies the row as the list shows it, for a mail or a spreadsheet.
void frmMonitor::CopyRowText() {
    QStringList cells;
    for (int column = 0; column < column::Count; ++column)
        for (const QModelIndex& cell : ListView1->selectionModel()->selectedRows(column))
            cells.append(cell.data().toString());
    if (!cells.isEmpty()) QGuiApplication::clipboard()->setText(cells.join('\t'));
}

ServerRow frmMonitor::SelectedRow() const {
    const QModelIndexList selected = ListView1->selectionModel()->selectedRows();
    return selected.isEmpty() ? ServerRow() : model_->Row(selected.first().row());
}

void frmMonitor::SelectRow(int row) {
    const int last = model_->rowCount() - 1;
    if (last < 0 || row < 0) return;
    ListView1->setCurrentIndex(model_->index(std::min(row, last), 0));
}

void frmMonitor::SelectEntry(const std::string& id) {
    SelectRow(model_->RowOf(id));
}

}  // namespace korvane
