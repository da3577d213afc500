#include "shell/list/restart_help.h"

#include "engine/machine_restart.h"

namespace korvane {

std::string ShutdownHelp(Files& files) {
    return "Korvane restarts THIS computer only through the command of a server entry: when the server fails, the command is run."
           "\r\n\r\n"
           "Edit the server entry, and on its page of commands choose the command that restarts this computer:\r\n\r\n" +
           getShudownEXEPath(files) +
           " -r -f\r\n\r\n"
           "The user that Korvane runs as must have the right to restart this computer.\r\n\r\n"
           "The option 'Reboot' of the settings announces the restart in emails.  The same page of the settings tests it.";
}

std::string RestartHelp() {
    return "When a server entry restarts this computer, Korvane must come back by itself.\r\n\r\n"
           "Install it as a service (it starts with the computer, even before anyone logs on), "
           "or add it to the startup group (it starts when you log on).\r\n\r\n"
           "Both are in the menu of the Korvane icon in your system tray, and in the settings.  "
           "We recommend that you choose one or the other, not both.";
}

std::string ShutdownRemoteHelp() {
    return "Another computer is restarted the same way: by the command of a server entry that names it.\r\n\r\n"
           "For a computer with Linux:\r\n"
           "ssh root@<ip> shutdown -r now\r\n\r\n"
           "For a computer with Windows:\r\n"
           "net rpc shutdown -r -f -I <ip> -U <administrator>%<password>\r\n\r\n"
           "Administrator rights on that computer are needed, and the command must run without asking for a password: "
           "try it in a terminal first, as the user that Korvane runs as.";
}

}  // namespace korvane
