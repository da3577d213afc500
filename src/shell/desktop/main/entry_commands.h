// The commands of the main window on the entries that are selected in its list: which of them make sense, and what each does.
#pragma once

#include <QAction>
#include <QTreeView>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "shell/desktop/editor/frm_set_entries.h"
#include "shell/desktop/look/icons.h"
#include "shell/desktop/main/server_list_model.h"
#include "shell/list/monitor_commands.h"

namespace korvane {

class EntryCommands {
public:
    struct Command {
        const char* name;
        const char* caption = "";
        const char* keys = "";
        std::optional<CommandPicture> picture = {};
        void (EntryCommands::*run)() = nullptr;
        bool (*makesSense)(const std::vector<ServerRow>& selected) = nullptr;
    };
    /// In the order of the menu. An empty name is a separator.
    static const std::vector<Command>& All();

    /// Everything must outlive this. `made` is called with the id of a new entry, which is then to be selected.
    EntryCommands(const Desk& desk, MonitorCommands& commands, QTreeView& list, ServerListModel& model,
                  std::function<void(const std::string& id)> made);

    /// Disables the actions, by name, that make no sense for what is selected.
    void Enable(const std::map<std::string, QAction*>& actions) const;

    /// Selects this row and no other, whatever keys are held down at the moment.
    static void SelectOnly(QTreeView& list, int row);

    /// In the order of the list.
    std::vector<ServerRow> Selected() const;
    /// Returns the ids of the selected entries.
    EntryActs::Ids Ids() const;

private:
    void CheckNow();
    void Pause();
    void Resume();
    void OpenAddress();
    void Report();
    void LastResponse();
    void LastTraceroute();
    void CopyText();
    void Duplicate();
    void SetInterval();
    void SetGroup();
    void SetRecipients();
    void Set(const QString& title, const frmSetEntries::Fields& fields);

    Desk desk_;
    MonitorCommands& commands_;
    QTreeView& list_;
    ServerListModel& model_;
    std::function<void(const std::string&)> made_;
};

}  // namespace korvane
