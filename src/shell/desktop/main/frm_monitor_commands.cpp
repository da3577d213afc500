// The commands of the main window: the table of all of them, from which its menus, the list's and the tray's are built, and those
// on entries.
#include <QMenuBar>
#include <algorithm>
#include <optional>

#include "platform/operator.h"
#include "shell/desktop/editor/frm_url_data.h"
#include "shell/desktop/look/icons.h"
#include "shell/desktop/main/frm_monitor.h"
#include "shell/run/run.h"
#include "store/database_files.h"
#include "store/instances.h"

namespace korvane {
namespace {

constexpr const char* kFile = "&File";
constexpr const char* kEdit = "&Edit";
constexpr const char* kMonitor = "&Monitor";
constexpr const char* kEntry = "Entr&y";
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
    std::vector<Command> all{
        {kFile, "mnuFileSave", "&Save Settings", "Ctrl+S", Save, [this] { commands_->cmdSave(); }},
        {kFile, "mnuFileReports", "&Reports", "Ctrl+R", Reports, [this] { commands_->cmdReports(); }},
        {kFile, ""},
        {kFile, "mnuFileOpen", "&Open log file", "", none, [this] { commands_->mnuFileOpen(); }},
        {kFile, "mnuFileGlobal", "Open Global log file", "", none, [this] { commands_->mnuFileGlobal(); }},
        {kFile, "mnufilekvsettings", "Open Korvane Settings File", "", none, [this] { commands_->mnufilekvsettings(); }},
        {kFile, ""},
        {kFile, "mnuFileRepair", "&Compact and Repair Database", "", none, [this] { commands_->mnuFileRepair(); }},
        {kFile, "mnuFileResetGraph", "Reset &Graph Data...", "", none, [this] { commands_->mnuFileResetGraph(); }},
        {kFile, "mnuFileImport", "&Import Entries...", "", none, [this] { entryFiles_->Import(); }},
        {kFile, "mnuFileExport", "&Export Entries...", "", none, [this] { entryFiles_->Export(); }},
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
        {kView, ""},
        {kView, "mnuViewFind", "&Find...", "Ctrl+F", none, [this] { bar_->Find(); }},
        {kView, "mnuViewProblemsFirst", "&Problems First"},  // its mark is followed
        {kView, "mnuViewShowAll", "Show &All", "", none, [this] { bar_->TakeFilterOff(); }},
        {kView, "mnuViewDetail", "Show &Details", "", none, [this] { mnuViewDetail(); }},
        {kView, "mnuViewInstances", "&Instances", "", none, [this] { mnuViewInstances(); }},  // only of a shared list
        {kSettings, "mnuOptions", "&Options...", "Ctrl+,", Settings, [this] { forms_->ShowOptions(); }},
        {kHelp, "mnuHelpWeb", "&Help on the Web", "", Help, show(WebPage::mnuHelpWeb)},
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
        {kHelp, "mnuHelpManual", "&Manual", "F1", Help, [this] { forms_->ShowManual(); }},
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
    auto at = std::ranges::find(all, kView, &Command::menu);
    at = all.insert(at, {kEntry, "", "", "", none, {}, Where::Context});
    for (const EntryCommands::Command& each : EntryCommands::All()) {
        const auto run = [this, command = each.run] { (entryCommands_.get()->*command)(); };
        const bool isSeparator = *each.name == '\0';
        at = all.insert(
            at + 1, {kEntry, each.name, each.caption, each.keys, each.picture, run, isSeparator ? Where::Context : Where::List});
    }
    return all;
}

void frmMonitor::AttachEntryCommands() {
    entryCommands_ = std::make_unique<EntryCommands>(run_->TheDesk(), *commands_, *ListView1, *model_,
                                                     [this](const std::string& id) { SelectMade(id); });
    entryFiles_ = std::make_unique<EntryFiles>(run_->TheDesk(), *commands_, *this);
    const auto enable = [this] { entryCommands_->Enable(actions_); };
    connect(ListView1->selectionModel(), &QItemSelectionModel::selectionChanged, this, enable);
    connect(model_, &QAbstractItemModel::layoutChanged, this, enable);
    enable();
    actions_["mnuViewInstances"]->setVisible(run_->TheDesk().isShared);
}

void frmMonitor::mnuViewInstances() {
    const Desk& desk = run_->TheDesk();
    std::string text;
    try {
        for (const std::string& line : Instances(desk.store).Lines(*OpenDatabase(desk.store, desk.dir)))
            text += (text.empty() ? "" : "\r\n") + line;
    } catch (const std::exception& error) {
        text = error.what();
    }
    ShowMessage("Instances", Or(text, "There is none."));
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
        connect(action, &QAction::triggered, this, [run = command.run] { run ? run() : void(); });
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
    const auto saved = [this, id, row, before = AllIds()] {
        RefreshURLList();
        Form_Resize();
        columns_->Fit();
        if (!id.empty()) SelectEntry(id);
        if (id.empty()) SelectRow(row);
        for (const std::string& now : AllIds())
            if (!before.contains(now)) LetBeSeen(now);
    };
    auto* editor = new frmURLData(run_->TheDesk(), isAddUrl, id, saved, this);
    editor_ = editor;
    const bool viewing = conversation_.Visible();
    conversation_.SetParent(editor);
    connect(editor, &QDialog::finished, this, [this, isAddUrl, viewing] {
        SetIsAddUrl(false);
        viewing ? conversation_.MoveTo(this) : conversation_.SetParent(this);
        if (!isAddUrl) commands_->EndEdit();
        RefreshURLList();
        ListView1->setFocus();
    });
    editor->open();
    conversation_.MoveTo(editor);
}

// Stopping rebuilds the list, perhaps in another order, so the entry is searched again; if it is gone, its row now belongs to
// another entry.
void frmMonitor::cmdDeleteURL_Click() {
    const int row = ListView1->currentIndex().row();
    if (const EntryActs::Ids ids = entryCommands_->Ids(); ids.size() > 1) {
        return commands_->DeleteURLs(ids, [this, row] {
            if (entryCommands_->Ids().empty()) SelectRow(row);
            Form_Resize();
        });
    }
    const ServerRow selected = SelectedRow();
    commands_->DeleteURL(selected.Id(), selected.Name(), [this, row, id = selected.Id()] {
        const int same = model_->RowOf(id);
        SelectRow(same < 0 ? row : same);
        Form_Resize();
    });
}

void frmMonitor::cmdCopyPaste_Click() {
    const std::string copy = commands_->CopyURL(SelectedRow().Id());
    if (!copy.empty()) SelectMade(copy);
}

void frmMonitor::SelectMade(const std::string& id) {
    LetBeSeen(id);
    SelectEntry(id);
}

ServerRow frmMonitor::SelectedRow() const {
    const QItemSelectionModel& selection = *ListView1->selectionModel();
    const QModelIndexList selected = selection.selectedRows();
    if (selected.isEmpty()) return {};
    const int current = selection.currentIndex().row();
    return model_->Row(selection.isRowSelected(current) ? current : selected.first().row());
}

void frmMonitor::SelectRow(int row) {
    const int last = model_->rowCount() - 1;
    if (last < 0 || row < 0) return;
    EntryCommands::SelectOnly(*ListView1, std::min(row, last));
}

void frmMonitor::SelectEntry(const std::string& id) {
    SelectRow(model_->RowOf(id));
}

}  // namespace korvane
