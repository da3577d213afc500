#include "shell/options/options_hints.h"

#include "shell/options/help_table.h"

namespace korvane {
namespace {

constexpr Help kOptionsPages[] = {
    {"Monitoring", "When monitoring begins, and how soon a server that failed is tried again."},
    {"E-Mail", "The mail servers through which you are told when a server goes down."},
    {"Reports and Sound", "Where the reports go, and what you hear when a server fails."},
    {"Restart", "Whether this computer is to be restarted when servers fail."},
    {"Proxy", "The proxy server through which web pages are checked, where this network has one."},
    {"Service", "How Korvane starts by itself."},
    {"Resets", "Begins statistics, failures and response times of all servers anew."},
};

constexpr Help kOptionsInputs[] = {
    {"txtBegin", "How many minutes Korvane waits after its start until it begins to check, 0 to 10."},
    {"txtGlobalRetryDuration", "How many seconds after a failed check the server is tried again, 5 to 32400."},
    {"txtSuccess", "An answer that takes longer than this many seconds is slow, 0 to 50."},
    {"txtServer", "The mail server that sends your notifications."},
    {"txtSMTPUser1", "The user name for the mail server. Leave it blank for a server that asks for none."},
    {"txtSMTPPass1", "The password that goes with the user name. It is kept in clear in the settings file."},
    {"txtSMTPPopHost1", "Fill this in only where you must log in to a POP server before you may send mail."},
    {"txtServerBackup",
     "The mail server that is used when the primary one fails. Blank means none, and so does a name of 5 characters or fewer."},
    {"txtSMTPUser2", "The user name for the backup mail server. Leave it blank for a server that asks for none."},
    {"txtSMTPPass2", "The password that goes with the user name. It is kept in clear in the settings file."},
    {"txtSMTPPopHost2", "Fill this in only where you must log in to a POP server before you may send mail by the backup server."},
    {"txtZone", "Your offset from GMT for the date of mails, such as -600 or +0100. Blank means GMT."},
    {"ckShowPasswords", "Shows both passwords while it is marked."},
    {"cmdTestEmail", "Sends a test mail through both mail servers with what is on this page."},
    {"cmdGlobalEmail", "Edits the addresses that all monitors and servers share."},
    {"txtReportPath", "The folder in which reports are published. It is created when it is not there."},
    {"cmdReportPath", "Looks for the folder on your disk."},
    {"ckYellowAlert", "Plays the sound when a server fails that is not yet down."},
    {"txtYellowAlertWav", "The wave file for a server that fails. Leave it blank to play nothing."},
    {"cmdYellowAlertWav", "Looks for the wave file on your disk."},
    {"cmdTestYellowAlert", "Plays the sound now."},
    {"ckRedAlert", "Plays the sound when a server goes down."},
    {"txtRedAlertWav", "The wave file for a server that is down. Leave it blank to play nothing."},
    {"cmdRedAlertWav", "Looks for the wave file on your disk."},
    {"cmdTestRedAlert", "Plays the sound now."},
    {"cmdTestShutDown", "Restarts this computer after a question, so that you know that it can be done."},
    {"cmdHelpShutDown", "Opens the help on restarting computers in your browser."},
    {"txtProxyName", "The address of the proxy server, beginning with http://. Leave it blank to check web pages directly."},
    {"txtProxyPort", "The port of the proxy server."},
    {"cmdSetProxy", "Fills in the proxy server that your desktop uses."},
    {"chkService", "Starts Korvane together with this computer, before anybody logs on."},
    {"chkStartup", "Starts Korvane on your desktop each time you log on."},
    {"cmdHelpService", "Opens the help on services in your browser."},
    {"cmdResetSummary", "Begins the statistics of all servers anew and deletes their failures. The graphs stay."},
    {"cmdDeleteResponse", "Deletes the hourly and daily response times of all servers, from which the graphs are made."},
    {"cmdDeleteAll", "Deletes statistics, failures and response times of all servers."},
    {"cmdCheckVersion", "Asks whether there is a newer version of Korvane."},
};

}  // namespace

std::string_view HelpOnOptionsPage(std::string_view page) {
    return FindHelp(kOptionsPages, page);
}

std::string_view HelpOnOptionsInput(std::string_view control) {
    return FindHelp(kOptionsInputs, control);
}

}  // namespace korvane
