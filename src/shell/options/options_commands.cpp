#include "shell/options/options_commands.h"

#include "base/text.h"
#include "shell/run/message_title.h"

namespace korvane {
namespace {

constexpr const char* kTestTitle = "Testing SMTP Servers";
constexpr const char* kAskTo =
    "Test emails are about to be sent to your Primary and Backup SMTP Servers.\r\n\r\nWho do you want these test emails sent to?";
constexpr const char* kAskFrom = "Enter a 'from:' email address:";

constexpr const char* kNoUndo =
    "\r\n\r\nThere is no way to UNDO this if you click YES.\r\n\r\nClick YES to Reset and Continue, NO to cancel";

void SetMailSettings(const Desk& desk, const OptionsFields& fields) {
    const auto set = [&](std::string_view key, const std::string& value) { desk.collection.setKvSettingsColValue(key, value); };
    set("Server", fields.Server);
    set("ServerBackup", fields.ServerBackup);
    set("SMTPPass1", Trim(fields.SMTPPass1));
    set("SMTPPass2", Trim(fields.SMTPPass2));
    set("SMTPUser1", Trim(fields.SMTPUser1));
    set("SMTPUser2", Trim(fields.SMTPUser2));
    set("SMTPPopHost1", Trim(fields.SMTPPopHost1));
    set("SMTPPopHost2", Trim(fields.SMTPPopHost2));
}

void SendTest(Dispatcher& mail, const std::string& to, const std::string& from,
              const std::function<void(const std::string& text)>& setStatus, const std::function<void()>& done) {
    if (Trim(to).empty()) {
        setStatus("Email Test Cancelled. No To: email supplied.");
        return done();
    }
    setStatus("Sending email to " + to + " from " + from);
    mail.TestEmail(to, "", false, "Test", "Subject", "Server A", "", "", from, [=](bool sent) {
        setStatus(sent ? "Email Test Concluded." : "EMAIL TEST FAILED.");
        done();
    });
}

std::string OpeningOf(OptionsReset reset) {
    switch (reset) {
        case OptionsReset::Summary:
            return "This will reset response time average, success count, fail count, and up-time percentage data for ALL server "
                   "entries.  This will Also delete all failure records. "
                   "This will NOT delete the response time records (daily/hourly graphs). ";
        case OptionsReset::ResponseData:
            return "This will delete the response time data for all servers (the hourly and daily graphs).";
        case OptionsReset::All:
            break;
    }
    return "This will reset response time average, success count, fail count, and up-time percentage data for ALL server "
           "entries and it WILL ALSO delete all failure records. "
           "A Failure record is stored each time a server can't be reached.  These are used to create the failure reports.";
}

}  // namespace

constexpr std::string_view kRestartTested =
    "IF YOU CLICKED YES, your computer should be shutting down. If not, the shutdown command failed.  "
    "Verify whether you have the file 'shutdown.exe' on your computer.  "
    "If so, it should be located in the same directory where Korvane is installed 'korvanecore.exe'";

constexpr std::string_view kRestartsThisMachine =
    "Select this option ONLY when you've installed Korvane on the web server (or important server) computer.  "
    "To shutdown a remote computer, check out the help topics.";
constexpr std::string_view kDoesNotRestart =
    "Korvane will not reboot THIS machine (the one this program is running on), when a server failure occurs.  "
    "This is the option to choose when Korvane is NOT installed on the web server (or important server) machine.";
constexpr std::string_view kRestartsForAny = "Korvane will restart this computer if ANY server failes (x times in a row).";
constexpr std::string_view kRestartsForAll =
    "Korvane will restart this computer when ALL servers are failing.  "
    "If a server fails x times in a row and all other server entries are failing or have failed x times in a row, "
    "this computer will be restarted";

void TestMailSettings(const Desk& desk, const OptionsFields& fields, const AskText& ask,
                      const std::function<void(const std::string& text)>& setStatus, const std::function<void()>& done) {
    SetMailSettings(desk, fields);
    setStatus("Please refer to the Korvane main window to see progress indications.");
    Dispatcher& mail = desk.mail;
    ask(kTestTitle, kAskTo, [=, &mail](const std::string& to) {
        ask(kTestTitle, kAskFrom, [=, &mail](const std::string& from) { SendTest(mail, to, from, setStatus, done); });
    });
}

void ResetForAll(const Desk& desk, OptionsReset reset) {
    constexpr bool kWithFailures = true;
    Maintenance& maintenance = desk.maintenance;
    desk.person.Ask(kMessageTitle, OpeningOf(reset) + kNoUndo, [&maintenance, reset] {
        if (reset != OptionsReset::ResponseData) maintenance.ResetStatDataALL(kWithFailures);
        if (reset != OptionsReset::Summary) maintenance.ResetResponseDataALL();
    });
}

std::string FolderOfFile(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace korvane
