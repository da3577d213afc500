// Export and import of entries in the main window: the choice of the file, and what is done with it.
#pragma once

#include <QWidget>
#include <functional>
#include <string>

#include "shell/list/monitor_commands.h"

class QFileDialog;

namespace korvane {

class EntryFiles {
public:
    /// Everything must outlive this. The dialogs are opened over `window`.
    EntryFiles(const Desk& desk, MonitorCommands& commands, QWidget& window)
        : desk_(desk), commands_(commands), window_(window) {}

    /// Asks for a file, and whether passwords are written to it.
    void Export();
    /// Asks for a file, and shows what it would change.
    void Import();

private:
    QFileDialog* Ask(const QString& title);
    void Write(const std::string& file, bool withPasswords);
    void Preview(const std::string& file);

    Desk desk_;
    MonitorCommands& commands_;
    QWidget& window_;
};

}  // namespace korvane
