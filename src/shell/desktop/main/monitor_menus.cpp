#include "shell/desktop/main/monitor_menus.h"

#include <QKeySequence>
#include <QMenu>
#include <utility>

namespace korvane {
namespace {

/// Where the keys of a command are active: in the whole window, or only in the list, for commands on an entry.
enum class Keys { Window, List };

struct Command {
    const char* menu;  ///< the menu's caption
    const char* name;  ///< empty: a separator between groups
    const char* caption = "";
    const char* keys = "";
    Keys where = Keys::Window;
    bool inContextMenu = false;
};

constexpr const char* kFile = "&File";
constexpr const char* kEdit = "&Edit";
constexpr const char* kMonitor = "&Monitor";
constexpr const char* kView = "Vie&w";
constexpr const char* kSettings = "&Settings";
constexpr const char* kHelp = "&Help";

constexpr Command kCommands[] = {
    {kFile, "mnuFileSave", "&Save Settings", "Ctrl+S"},
    {kFile, "mnuFileReports", "&Reports", "Ctrl+R"},
    {kFile, ""},
    {kFile, "mnuFileOpen", "&Open log file"},
    {kFile, "mnuFileGlobal", "Open Global log file"},
    {kFile, "mnufilekvsettings", "Open Korvane Settings File"},
    {kFile, ""},
    {kFile, "mnuFileRepair", "&Compact and Repair Database"},
    {kFile, "mnuFileResetGraph", "Reset &Graph Data..."},
    {kFile, ""},
    {kFile, "mnuFileMin", "&Minimize to Tray", "Ctrl+M"},
    {kFile, "mnuExit", "E&xit", "Ctrl+Q"},
    {kEdit, "mnuEditAddURL", "&Add Server...", "Ctrl+N", Keys::Window, true},
    {kEdit, "mnuEditURL", "&Edit Server...", "Ctrl+E; Return; Enter", Keys::List, true},
    {kEdit, "", "", "", Keys::Window, true},
    {kEdit, "mnuEditCopyURL", "&Copy Server", "Ctrl+D; Ctrl+Ins", Keys::List, true},
    {kEdit, "mnuEditPasteURL", "&Paste Server", "Shift+Ins", Keys::List, true},
    {kEdit, "mnuEditDeleteURL", "&Delete Server...", "Del", Keys::List, true},
    {kEdit, ""},
    {kEdit, "mnuEditClearStatus", "Clear &Statistics..."},
    {kEdit, ""},
    {kEdit, "mnuEditSettings", "Se&ttings..."},
    {kMonitor, "cmdStopStart", "S&top", "F9"},
    {kMonitor, "", "", "", Keys::Window, true},
    {kMonitor, "cmdStopWaiting", "Check &All Now", "F5", Keys::Window, true},
    {kView, "mnuViewConversation", "&Server Conversation"},
    {kView, "mnuViewMail", "&Mail Conversation"},
    {kSettings, "mnuOptions", "&Options...", "Ctrl+,"},
    {kHelp, "mnuHelpWeb", "&Help on the Web", "F1"},
    {kHelp, "mnuHelpFeatures", "Fea&tures"},
    {kHelp, "mnuTerms", "T&erms of Use"},
    {kHelp, ""},
    {kHelp, "mnuShutdown", "&Restarting This Computer"},
    {kHelp, "mnuRestart", "&Coming Back after a Restart"},
    {kHelp, "mnuShutdownRemote", "Restarting Another C&omputer"},
    {kHelp, ""},
    {kHelp, "mnuHelpFeedback", "Send &Feedback..."},
    {kHelp, "mnuHelpTellFriend", "Tell a Frie&nd..."},
    {kHelp, ""},
    {kHelp, "mnuHelpAbout", "&About Korvane"},
};

}  // namespace

MonitorMenus::MonitorMenus(QMenuBar& bar, QWidget& list, QWidget& owner, Handlers handlers) : context_(new QMenu(&list)) {
    std::map<std::string, QMenu*> menus;
    for (const Command& command : kCommands) {
        QMenu*& menu = menus[command.menu];
        if (menu == nullptr) menu = bar.addMenu(command.menu);
        if (*command.name == '\0') {
            menu->addSeparator();
            if (command.inContextMenu) context_->addSeparator();
            continue;
        }
        auto* action = new QAction(command.caption, &owner);
        action->setObjectName(command.name);
        action->setShortcuts(QKeySequence::listFromString(command.keys));
        action->setShortcutContext(command.where == Keys::List ? Qt::WidgetShortcut : Qt::WindowShortcut);
        (command.where == Keys::List ? list : owner).addAction(action);
        QObject::connect(action, &QAction::triggered, &owner, [handler = std::move(handlers.at(command.name))] { handler(); });
        menu->addAction(action);
        if (command.inContextMenu) context_->addAction(action);
        actions_[command.name] = action;
    }
}

}  // namespace korvane
