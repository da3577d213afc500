// The one family of pictures of the windows, drawn at the size that is asked for, on a screen of any resolution. They
// are cousins of the pictures in the reports.
#pragma once

#include <QIcon>

#include "platform/operator.h"
#include "shell/list/server_list.h"

namespace korvane {

/// The pictures of commands: lines in the text colour of the application's palette, followed when that changes.
enum class CommandPicture {
    Start,
    Stop,
    StartNow,
    Add,
    Edit,
    Copy,
    Paste,
    Delete,
    Save,
    Reports,
    Settings,
    Help,
    Exit,
    Test,
    Mail,
    Folder,
    Show,
    Hide
};

/// The state of an entry, told by its shape as well as by its colour.
QIcon StateIcon(RowIcon icon);

/// The program's emblem in the colour of the state with a badge of the state's shape, outlined for panels of any colour.
QIcon TrayIcon(TrayPicture picture);

/// The emblem for the windows: green while monitoring is on.
QIcon ProgramIcon(bool on);

QIcon CommandIcon(CommandPicture picture);

}  // namespace korvane
