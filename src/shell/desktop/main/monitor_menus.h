// The commands of the main window as one table: name, caption, keys and place in the menus. Buttons, menus, context menu and tray
// all use the same actions.
#pragma once

#include <QAction>
#include <QMenuBar>
#include <functional>
#include <map>
#include <string>

namespace korvane {

class MonitorMenus {
public:
    using Handlers = std::map<std::string, std::function<void()>>;

    /// Fills the bar. `list` receives the keys for entries, `owner` those of the whole window. Each action has its name as
    /// objectName.
    MonitorMenus(QMenuBar& bar, QWidget& list, QWidget& owner, Handlers handlers);

    /// Returns the action by name ("mnuFileSave"); every command of the table exists.
    QAction& Action(const std::string& name) const { return *actions_.at(name); }

    /// Returns the context menu of the list.
    QMenu& ContextMenu() const { return *context_; }

private:
    std::map<std::string, QAction*> actions_;
    QMenu* context_;
};

}  // namespace korvane
