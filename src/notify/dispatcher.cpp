#include "notify/dispatcher.h"

#include <algorithm>
#include <array>
#include <exception>
#include <utility>

#include "base/numbers.h"
#include "base/raised_flag.h"
#include "base/text.h"
#include "notify/recipients.h"

namespace korvane {
namespace {

constexpr const char* kOwnName = " Korvane Notifier";
constexpr const char* kOwnSubject = "Korvane Notify";
constexpr const char* kMailer = "Brellix Automated Mailer";
constexpr const char* kHighPriority = "1";

/// A backup name of at most this length counts as not set.
constexpr std::size_t kTooShortForBackup = 5;

constexpr int kProgressMax = 100;

struct ServerKeys {
    const char* server;
    const char* user;
    const char* password;
    const char* popHost;
};
constexpr ServerKeys kPrimaryKeys = {"Server", "SMTPUser1", "SMTPPass1", "SMTPPopHost1"};
constexpr ServerKeys kBackupKeys = {"ServerBackup", "SMTPUser2", "SMTPPass2", "SMTPPopHost2"};

const ServerKeys& KeysOf(MailServer server) {
    return server == MailServer::Primary ? kPrimaryKeys : kBackupKeys;
}

}  // namespace

Dispatcher::Dispatcher(const Ports& ports, Options options)
    : ports_(ports),
      options_(std::move(options)),
      plainMailer_({ports.plainSocket, ports.clock, ports.events, ports.person, ports.status, ports.log, ports.trace},
                   options_.smtpPort) {}

bool Dispatcher::SendEmail(std::string& strTo1, std::string& strTo2, std::string& strFrom, std::string& strSubject,
                           std::string& strBody, const std::string& /*reserved*/, std::string strServer, std::string& strUser,
                           std::string& strPass, std::string& strPopHost, std::string& strError) {
    if (strTo1.empty()) return false;
    if (sending_) {
        strError = "Another message is still being sent.";
        return false;
    }
    const RaisedFlag guard(sending_);
    // A line end in one of these would add a header line or a command.
    for (std::string* text : std::array{&strTo1, &strTo2, &strFrom, &strSubject})
        *text = WithoutLineEnds(*text);
    strTo1 = NormaliseRecipients(strTo1);
    strTo2 = NormaliseRecipients(strTo2);
    const Account account{strServer, strUser, strPass, strPopHost};
    Message message{strFrom.empty() ? kOwnName : strFrom, strFrom, strSubject.empty() ? kOwnSubject : strSubject,
                    WithMailLineEnds(WithoutControls(strBody))};
    const bool sent = SendToEach(strTo1, strTo2.empty() ? strTo1 : strTo1 + ";" + strTo2, message, account, strError);
    strFrom = message.strFrom;
    strSubject = message.strSubject;
    SetProgress(0);
    return sent;
}

bool Dispatcher::SendToEach(const std::string& strTo1, const std::string& everybody, Message& message, const Account& account,
                            std::string& strError) {
    std::vector<std::string> recipients = Split(everybody, ';');
    std::erase_if(recipients, [](const std::string& recipient) { return Trim(recipient).empty(); });
    if (recipients.empty()) strError = "There is no recipient.";
    SetProgress(0);
    for (std::size_t i = 0; i < recipients.size(); ++i) {
        const std::string recipient = Trim(recipients[i]);
        if (!Holds(message.strFrom, "@")) message.strFrom = recipient;
        if (!SendToOne(recipient, message, account, strError)) {
            ports_.status.setStatusMSG(strTo1 + " Email failed because " + strError);
            return false;
        }
        if (recipient != options_.contactAddress) ports_.status.setStatusMSG(strTo1 + " sent successfully.");
        SetProgress(kProgressMax * static_cast<double>(i + 1) / static_cast<double>(recipients.size()));
    }
    return !recipients.empty();
}

// Only clsEsmtp can log in; a server without a login always uses the plain mailer.
bool Dispatcher::SendToOne(const std::string& recipient, const Message& message, const Account& account, std::string& strError) {
    bool sent = false;
    try {
        sent = account.strUser.empty() ? SendThroughPlainMailer(recipient, message, account, strError)
                                       : SendThroughEsmtp(recipient, message, account, strError);
    } catch (const std::exception& error) {
        strError = error.what();
    }
    strError = WithoutControls(strError);  // it contains the server's words
    return sent;
}

bool Dispatcher::SendThroughPlainMailer(const std::string& recipient, const Message& message, const Account& account,
                                        std::string& strError) {
    return plainMailer_.SendPlainMail(recipient, recipient, message.strFromName, message.strFrom, DatedSubject(message),
                                      message.strBody, account.strServer, Zone(), strError, "", "");
}

bool Dispatcher::SendThroughEsmtp(const std::string& recipient, const Message& message, const Account& account,
                                  std::string& strError) {
    clsEsmtp mycls({ports_.files, ports_.clock, ports_.events, ports_.guids, ports_.trace}, ports_.sckesmtp);
    mycls.SetHandlers({.StateChange = [&](int State) { mycls_StateChange(mycls, State); }});
    mycls.SmtpHost = account.strServer;
    mycls.smtpport = options_.smtpPort;
    mycls.emailFromAddress = message.strFrom;
    mycls.emailFromName = message.strFrom;
    mycls.emailXMailer = kMailer;
    mycls.emailXPriority = kHighPriority;
    mycls.emailTimeZoneAdjust = Zone();
    mycls.emailTo = recipient;
    mycls.subject = DatedSubject(message);
    mycls.POPhost = account.strPopHost;
    mycls.popPort = options_.popPort;
    mycls.UserID = account.strUser;
    mycls.Password = account.strPass;
    mycls.plainMessage = message.strBody;

    const WaitCursor cursor(ports_.person);
    strError.clear();
    const bool sent = mycls.SendMail();
    if (!sent) strError = mycls.ErrorLog;
    return sent;
}

// The operator is meant to see the login as it is used.
void Dispatcher::mycls_StateChange(const clsEsmtp& mycls, int State) {
    const std::string texts[] = {
        "Connecting to ESMTP Server " + mycls.SmtpHost,
        "Connected to ESMTP Server " + mycls.SmtpHost,
        "Authorizing ESMTP Server: User=" + mycls.UserID + " Password=" + mycls.Password,
        "Sending Mail",
        "Mail Sent",
        "disconnecting from ESMTP Server",
        "Disconnected from ESMTP server",
        "Connecting to POP server " + mycls.POPhost,
        "Connected to POP server",
        "Authorizing POP Server: User=" + mycls.UserID + " Password=" + mycls.Password,
        "Disconnecting from POP server",
        "Disconnected from POP server",
    };
    if (State >= 0 && State < static_cast<int>(std::size(texts))) ports_.status.setStatusMSG(texts[State]);
}

SendOutcome Dispatcher::SendThrough(MailServer server, const Notification& notification) {
    const ServerKeys& keys = KeysOf(server);
    Notification mail = notification;  // SendEmail changes its arguments, and a second attempt needs the same message
    std::string strUser = Setting(keys.user);
    std::string strPass = Setting(keys.password);
    std::string strPopHost = Setting(keys.popHost);
    SendOutcome outcome;
    outcome.sent = SendEmail(mail.strTo1, mail.strTo2, mail.strFrom, mail.strSubject, mail.strBody, "", Setting(keys.server),
                             strUser, strPass, strPopHost, outcome.strError);
    return outcome;
}

SendOutcome Dispatcher::SendWithBackup(const Notification& notification,
                                       const std::function<void(const std::string& strError)>& primaryFailed) {
    const SendOutcome primary = SendThrough(MailServer::Primary, notification);
    if (primary.sent) return primary;
    if (primaryFailed) primaryFailed(primary.strError);
    if (Setting(kBackupKeys.server).size() <= kTooShortForBackup) return primary;
    return SendThrough(MailServer::Backup, notification);
}

std::string Dispatcher::Setting(const char* key) const {
    const std::string* value = ports_.settings.Find(key);
    return value == nullptr ? "" : *value;
}

std::string Dispatcher::Zone() const {
    return Trim(Setting("Zone"));
}

std::string Dispatcher::DatedSubject(const Message& message) const {
    return message.strSubject + " " + ports_.clock.Now().Text();
}

void Dispatcher::SetProgress(double percent) {
    ports_.person.SetProgress(static_cast<int>(RoundHalfEven(percent)), kProgressMax);
}

std::string GetSysInfoString(const SystemInfo& system, const std::string& version) {
    const SystemVersion machine = system.Version();
    return "Platform: " + machine.platform + " Version: " + machine.version + " Build: " + machine.build + "\r\nKorvane V" +
           version + " Notes: " + " 2004 v6x";
}

}  // namespace korvane
