// The pictures of the windows, in one common design, drawn at the requested size for any screen resolution. They resemble the
// pictures in the reports.
#pragma once

#include <QIcon>

#include "platform/operator.h"
#include "shell/list/server_list.h"

namespace korvane {

/// The pictures of commands: lines in the text colour of the application's palette, which they follow when it changes.
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

/// Returns the picture of an entry's state, which shape and colour both show.
QIcon StateIcon(RowIcon icon);

/// Returns the program's emblem in the colour of the state with a badge of the state's shape, outlined for panels of any colour.
QIcon TrayIcon(TrayPicture picture);

/// Returns the emblem for the windows: green while monitoring is on.
QIcon ProgramIcon(bool on);

/// State On is the picture under the mouse, filled and in the accent colour; with mode Active that of a pressed button.
QIcon CommandIcon(CommandPicture picture);

}  // namespace korvane
