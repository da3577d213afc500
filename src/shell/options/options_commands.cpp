#include "shell/options/options_commands.h"

#include "base/text.h"
#include "platform/operator.h"
#include "shell/entry/fresh_entry.h"

namespace korvane {
namespace {

constexpr const char* kTestTitle = "Testing SMTP Servers";
constexpr const char* kAskTo =
    "Test emails are about to be sent to your Primary and Backup SMTP Servers.\r\n\r\nWho do you want these test emails sent to?";
constexpr const char* kAskFrom = "Enter a 'from:' email address:";

constexpr const char* kScheme = "http://";

constexpr const char* kNoUndo =
    "\r\n\r\nThere is no way to UNDO this if you click YES.\r\n\r\nClick YES to Reset and Continue, NO to cancel";

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

void TestMailSettings(const Desk& desk, const OptionsFields& fields, const AskText& ask,
                      const std::function<void(const std::string& text)>& setStatus, const std::function<void()>& done) {
    SetMailSettings(desk, fields);
    setStatus("Please refer to the Korvane main window to see progress indications.");
    Dispatcher& mail = desk.mail;
    ask(kTestTitle, kAskTo, [=, &mail](const std::string& to) {
        ask(kTestTitle, kAskFrom, [=, &mail](const std::string& from) { SendTest(mail, to, from, setStatus, done); });
    });
}

void FindMailSecurity(const Desk& desk, const OptionsFields& fields,
                      const std::function<void(const std::string& text)>& setStatus,
                      const std::function<void(const MailProposal& proposal)>& propose) {
    struct Server {
        std::string OptionsFields::*name, OptionsFields::*security, OptionsFields::*port;
    };
    constexpr Server kServers[] = {{&OptionsFields::Server, &OptionsFields::SMTPSecurity1, &OptionsFields::SMTPPort1},
                                   {&OptionsFields::ServerBackup, &OptionsFields::SMTPSecurity2, &OptionsFields::SMTPPort2}};
    std::string all;
    for (const Server& server : kServers) {
        const std::string name = Trim(fields.*server.name);
        if (name.empty()) continue;
        std::string last;
        const auto tell = [&](const std::string& text) { setStatus(last = text); };
        const std::optional<MailSecurity> found = desk.alertMails.FindSecurity(name, tell);
        if (found) propose({server.security, server.port, *found});
        all += (all.empty() ? "" : "  ") + (found ? last : "No encryption was found at " + name + ".  " + last);
    }
    setStatus(all);
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

std::string ProxyDetectedText(const std::string& detected) {
    return "Korvane has detected your Internet Explorer Proxy server is '" + detected +
           "'.  Click the 'Set Proxy' button to the left to fill in the proxy server string above.";
}

ProxyBoxes ProxyFromDetected(const std::string& detected) {
    const std::size_t colon = detected.find(':') + 1;  // positions are counted from 1; 0: there is none
    const std::size_t equals = detected.find('=') + 1;
    const std::size_t afterColon = detected.size() - colon;
    ProxyBoxes boxes{.name = std::nullopt, .port = detected.substr(colon)};
    if (colon + 1 >= afterColon) boxes.name = kScheme + detected.substr(equals, colon + 1 - afterColon);
    return boxes;
}

bool LacksProxyScheme(const std::string& name) {
    return !Trim(name).empty() && !EqualsNoCase(name.substr(0, 1), "H");
}

std::string NoMailServerHint() {
    return "Please enter an STMP mail server name.  Most SMTP server names are like '" + std::string(kSampleMailHost) + "'";
}

std::string NoMailServerMessage() {
    return "You should set the SMTP server value.  "
           "If you want to get automatic email replies if a Server failure occurs, you must specify this value.  "
           "It usually is something like '" +
           std::string(kSampleMailHost) + "'";
}

}  // namespace korvane
