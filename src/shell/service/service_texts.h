// All texts about the program's service and the startup group. Line ends are "\r\n"; "<name>", "<file>" and "<why>" are
// placeholders.
#pragma once

#include "platform/operator.h"

namespace korvane::service_text {

// Status lines.
constexpr const char* kConnected = "Korvane Service Started Successfully!";
constexpr const char* kNotConnected = "Korvane Service Failed to Start.";
constexpr const char* kStarted = "Service Started.";
constexpr const char* kStopped = "Service Stopped.";
constexpr const char* kPaused = "Service Paused.";
constexpr const char* kAlreadyPaused = "Service Already Paused.";
constexpr const char* kStillContinuing = "Service Still Continuing.";
constexpr const char* kContinuing = "Service Continuing (monitoring again)";
constexpr const char* kShuttingDown = "Service Shutting Down. Monitoring stopping";

constexpr const char* kRunningAsService = " running as service";

/// What the operator is shown after a click on one of two commands: that of the service and that of the startup group.
struct Words {
    const char* title;  ///< of the message after an installation
    const char* installed;
    const char* installFailed;
    const char* removed;
    const char* removeFailed;

    const char* added;           ///< to the startup group
    const char* addedNote = "";  ///< follows if the program is also a service
    const char* addedEnd = "";
    const char* addedWarning;       ///< a message of its own, if the program is also a service
    const char* takenOut;           ///< of the startup group
    const char* takenOutNote = "";  ///< follows if the program is also a service
    const char* takenOutEnd = "";
};

/// Of the tray's two commands.
inline constexpr Words kTray = {
    .title = kMessageTitle,
    .installed =
        "Korvane is now installed as the NT Service named <name>.\r\n\r\n"
        "It WILL start automatically (even if no one logs onto NT).\r\n\r\n",
    .installFailed =
        "Korvane failed to Install itself as an NT service.  It may have already been installed.  "
        "Try checking and unchecking this option a few times.",
    .removed =
        "Korvane is no longer installed as the NT Service named <name>.\r\n\r\n"
        "It will not start automatically (before or after you logon to NT).\r\n\r\n"
        "You will have to start Korvane manually by looking for the Brellix program group and running Korvane.",
    .removeFailed =
        "Korvane failed to unintall itself as an NT service.  It may have already been removed.  "
        "Try checking and unchecking this option a few times.",
    .added =
        "Korvane was added to the Windows Startup Group. \r\n\r\n"
        "The shortcut is named <name>\r\n\r\n"
        "Korvane will automatically start after you logon to windows.",
    .addedWarning =
        "Warning: Korvane is also set to run as a service.  You just added  a shortcut to Korvane in the startup group.  "
        "This means when someone  logs onto windows, another instance of Korvane will start (in addition  to the one running as "
        "a service). \r\n\r\n We recommend that you choose one or the other, not both.",
    .takenOut =
        "Korvane was removed from the Windows Startup Group. \r\n\r\n"
        "Korvane will no longer automatically start after you logon to windows. "
        "You will have to start it manually by looking for the Brellix program group and running Korvane.",
};

/// Of the settings dialog's two check boxes.
inline constexpr Words kDialog = {
    .title = "PLEASE READ THIS",
    .installed =
        "The NT Service named <name> installed successfully. "
        "Now Korvane will automatically start when NT/2000/XP starts (even before anyone logs in). \r\n\r\n"
        "Check 'Control Panel - Services' and look for '<name>'\r\n\r\n",
    .installFailed = "The NT Service named <name> failed to install (maybe it was already installed).",
    .removed =
        "The NT Service named <name> uninstalled successfully.  Korvane will no longer start when NT is restarted. \r\n\r\n"
        "Check 'Control Panel - Services' and notice '<name>' is removed.",
    .removeFailed = "The NT Service named <name> failed to uninstall (it may have been uninstalled already).",
    .added =
        "Korvane was just added to the startup group.  It's named  '<name>'.  "
        "Korvane will now start each time windows starts. \r\n\r\n",
    .addedNote =
        "NOTE: You also have Korvane set to run as an NT Service. \r\n"
        "Korvane will start when NT starts (even before a user logs on to NT).\r\n\r\n",
    .addedEnd = "UnCheck this option to remove Korvane from the startup group.",
    .addedWarning =
        "Warning: Korvane is also set to run as a service.  You just added  a shortcut to Korvane in the startup group.  "
        "This means when someone  logs onto windows, another instance of Korvane will start (in addition  to the one running as "
        "a service. \r\n\r\n We recommend that you choose one or the other, not both.",
    .takenOut = "Removing Korvane from the startup group (Shortcut named <name>). \r\n\r\n",
    .takenOutNote =
        "NOTE: You have Korvane set to run as an NT Service. \r\n"
        "Korvane will start when NT starts (even though it's not in the startup group).\r\n\r\n",
    .takenOutEnd = "Check this option to Add Korvane to the startup group.",
};

// Follow the message about an installation: the running program holds the home that the service needs.
constexpr const char* kImportant =
    "IMPORTANT:  If you use Windows 2000 or XP, you need to go into control panel, administrative tools, and click the START "
    "button to initially start the Korvane service.  Next time you reboot, it will stay automatic.";
constexpr const char* kHandOver = "The service starts as soon as you end this Korvane with File, Exit.";

/// Follows the message about the service if there is a note. The second one precedes words of the manager alone.
constexpr const char* kMore = "\r\n\r\n";
constexpr const char* kManagerSays = "The service manager says: ";

// Both a service and in the startup group, after the installation by the tray or by the dialog.
constexpr const char* kAskWhenInstalled =
    "You have also configured Korvane to start when a user logs onto Windows (the startup group).  "
    "Since you also have just installed it as a service, two instances of the program will be running when you logon to Windows."
    "\r\n\r\n"
    "Would you like to REMOVE the shortcut to Korvane that exists in the startup group (recommended)? ";
constexpr const char* kDialogAsk =
    "You also have Korvane installed in the windows startup group. "
    "When you restart windows, Korvane will run as an NT service but it will also start a new instance of the program when "
    "someone logs into NT. \r\n\r\n"
    "Do you wish to remove the shortcut to Korvane from the startup menu (recommended)?";
constexpr const char* kRemovedForService =
    "Korvane was removed from the Windows Startup Group. \r\n\r\n"
    "Korvane will still start as an NT service when you reboot the computer Even if no one logs onto windows.";

// The shortcut cannot be changed.
constexpr const char* kShortcutStays =
    "The shortcut <file> could not be deleted: <why>\r\n\r\n"
    "Please open its folder in your file manager.  "
    "From there, you should be able to select and delete any shortcut you do not want.";
constexpr const char* kShortcutFailed = "The shortcut <file> could not be created: <why>";

}  // namespace korvane::service_text
