#include "notify/dispatcher.h"

#include <exception>
#include <utility>

#include "base/numbers.h"
#include "base/raised_flag.h"
#include "base/text.h"

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

constexpr const char* kNoBackupYet =
    "You have not yet named a backup SMTP server.  It's not necessary for this test, but you may want to consider it later.  "
    "Choose the 'Settings' menu to set the backup SMTP server value.";

std::string Question(const std::string& strTo1, const std::string& strTo2, const std::string& primary,
                     const std::string& backup) {
    std::string text = "You are about to test whether you can send email to '" + strTo1 + "'";
    if (!strTo2.empty()) text += " and to '" + strTo2 + "'";
    text += "\r\n\r\nThe Primary SMTP server is '" + primary + "'.\r\n\r\n";
    text += backup.empty() ? kNoBackupYet : "A Duplicate email will also be sent using the backup SMTP server '" + backup + "'.";
    return text + "\r\n\r\nClick YES to test, NO to cancel.";
}

std::string BodyOf(bool bNoDefaultBody, const std::string& strBody1, const std::string& strText) {
    if (!bNoDefaultBody) {
        return "[TEST ONLY:]" + strBody1 + "\r\nThis is just a test from Korvane.  Email success!\r\n\r\n" + strText;
    }
    return "[TEST ONLY:] " + strBody1 +
           "\r\nNotification emails will contain no 'Body' part of the message except what you typed into the 'Body (Line 1)' "
           "field.  In other words, in an actual email notification, the body of the email would be completely blank (except for "
           "'" +
           strBody1 +
           "'). This is to save space if your email is forwarded to your pager. You've checked the \"Do not use the default "
           "Korvane Email Body Text. Use only what's on  'Body (Line 1) below:\" option.";
}

std::string SubjectOf(const std::string& strText, const std::string& strEmailDesc) {
    return "[TEST MSG] " + (strEmailDesc.empty() ? strText : strText + " (" + strEmailDesc + ")");
}

}  // namespace

Dispatcher::Dispatcher(const Ports& ports, Options options)
    : ports_(ports),
      options_(std::move(options)),
      hidden_(ports.safeguards, ports.settings),
      trace_(ports.trace, hidden_),
      plainMailer_({ports.plainSocket, ports.clock, ports.events, ports.person, ports.status, ports.log, &trace_}) {}

SendOutcome Dispatcher::SendEmail(Notification mail, const Account& account) {
    if (mail.strTo1.empty()) return {};
    if (sending_) return {false, "Another message is still being sent."};
    const RaisedFlag guard(sending_);
    // A line end in one of these would add a header line or a command.
    for (std::string* text : {&mail.strTo1, &mail.strTo2, &mail.strFrom, &mail.strSubject})
        *text = WithoutLineEnds(*text);
    const std::string strTo1 = NormaliseRecipients(mail.strTo1);
    const std::string strTo2 = NormaliseRecipients(mail.strTo2);
    Message message{Or(mail.strFrom, kOwnName), mail.strFrom, Or(mail.strSubject, kOwnSubject),
                    WithMailLineEnds(WithoutControls(mail.strBody)), account};
    const SendOutcome outcome = SendToEach(strTo1, strTo2.empty() ? strTo1 : strTo1 + ";" + strTo2, message);
    SetProgress(0);
    return outcome;
}

SendOutcome Dispatcher::SendToEach(const std::string& strTo1, const std::string& everybody, Message& message) {
    std::vector<std::string> recipients = Split(everybody, ';');
    std::erase_if(recipients, [](const std::string& recipient) { return Trim(recipient).empty(); });
    SetProgress(0);
    if (recipients.empty()) return {false, "There is no recipient."};
    for (std::size_t i = 0; i < recipients.size(); ++i) {
        const std::string recipient = Trim(recipients[i]);
        if (!Holds(message.strFrom, "@")) message.strFrom = recipient;
        const SendOutcome outcome = SendToOne(recipient, message);
        if (!outcome.sent) {
            ports_.status.setStatusMSG(strTo1 + " Email failed because " + outcome.strError);
            return outcome;
        }
        if (recipient != options_.contactAddress) ports_.status.setStatusMSG(strTo1 + " sent successfully.");
        SetProgress(kProgressMax * static_cast<double>(i + 1) / static_cast<double>(recipients.size()));
    }
    return {true, ""};
}

SendOutcome Dispatcher::Deliver(MailServer server, const std::string& recipient, const Notification& mail,
                                const std::string& messageId) {
    if (sending_) return {false, "Another message is still being sent."};
    const RaisedFlag guard(sending_);
    SendOutcome outcome =
        SendToOne(WithoutLineEnds(recipient), {WithoutLineEnds(Or(mail.strFrom, kOwnName)),
                                               WithoutLineEnds(Holds(mail.strFrom, "@") ? mail.strFrom : mail.strTo1),
                                               WithoutLineEnds(Or(mail.strSubject, kOwnSubject)),
                                               WithMailLineEnds(WithoutControls(mail.strBody)), AccountOf(server), messageId});
    outcome.sent = !outcome.receipt.empty();
    return outcome;
}

// Only clsEsmtp can log in; a server without a login always uses the plain mailer.
SendOutcome Dispatcher::SendToOne(const std::string& recipient, Message message) {
    SendOutcome outcome;
    message.strSubject = AsSent(message.strSubject);
    message.strBody = AsSent(message.strBody);
    try {
        const MailSecurity security = SecurityOf(ports_.safeguards, message.account.server, options_.smtpPort);
        outcome = message.account.strUser.empty() ? SendThroughPlainMailer(recipient, message, security)
                                                  : SendThroughEsmtp(recipient, message, security);
    } catch (const std::exception& error) {
        outcome.strError = error.what();
    }
    outcome.strError = hidden_.In(WithoutControls(outcome.strError));  // it contains the server's words
    return outcome;
}

SendOutcome Dispatcher::SendThroughPlainMailer(const std::string& recipient, const Message& message,
                                               const MailSecurity& security) {
    SendOutcome outcome;
    plainMailer_.SetSecurity(security);
    plainMailer_.SetMessageId(message.messageId);
    outcome.sent = plainMailer_.SendPlainMail(recipient, recipient, message.strFromName, message.strFrom, DatedSubject(message),
                                              message.strBody, message.account.strServer, Zone(), outcome.strError, "", "");
    outcome.greeted = plainMailer_.Greeted();
    outcome.receipt = plainMailer_.Receipt();
    return outcome;
}

SendOutcome Dispatcher::SendThroughEsmtp(const std::string& recipient, const Message& message, const MailSecurity& security) {
    clsEsmtp mycls({ports_.files, ports_.clock, ports_.events, ports_.guids, &trace_}, ports_.sckesmtp);
    mycls.SetHandlers({.StateChange = [&](int State) { mycls_StateChange(mycls, State); }});
    mycls.SmtpHost = message.account.strServer;
    mycls.smtpport = security.port;
    mycls.security = security;
    mycls.POPhost = message.account.strPopHost;
    mycls.popPort = options_.popPort;
    mycls.UserID = message.account.strUser;
    mycls.Password = message.account.strPass;
    mycls.emailTo = recipient;
    mycls.emailFromAddress = message.strFrom;
    mycls.emailFromName = message.strFrom;
    mycls.subject = DatedSubject(message);
    mycls.plainMessage = message.strBody;
    mycls.emailXMailer = kMailer;
    mycls.emailXPriority = kHighPriority;
    mycls.emailTimeZoneAdjust = Zone();
    mycls.messageId = message.messageId;

    const WaitCursor cursor(ports_.person);
    const bool sent = mycls.SendMail();
    return {sent, sent ? "" : mycls.ErrorLog, mycls.Greeted(), mycls.Receipt()};
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

Dispatcher::Account Dispatcher::AccountOf(MailServer server) const {
    const ServerKeys& keys = server == MailServer::Primary ? kPrimaryKeys : kBackupKeys;
    return {Setting(keys.server), Setting(keys.user), Setting(keys.password), Setting(keys.popHost), server};
}

SendOutcome Dispatcher::SendThrough(MailServer server, const Notification& notification) {
    return SendEmail(notification, AccountOf(server));
}

SendOutcome Dispatcher::SendWithBackup(const Notification& notification,
                                       const std::function<void(const std::string& strError)>& primaryFailed) {
    const SendOutcome primary = SendThrough(MailServer::Primary, notification);
    if (primary.sent) return primary;
    if (primaryFailed) primaryFailed(primary.strError);
    if (Setting(kBackupKeys.server).size() <= kTooShortForBackup) return primary;
    return SendThrough(MailServer::Backup, notification);
}

std::optional<MailSecurity> Dispatcher::FindSecurity(const std::string& host,
                                                     const std::function<void(const std::string& text)>& tell) {
    if (sending_) {
        tell("A mail is being sent. Try again when it is done.");
        return std::nullopt;
    }
    const RaisedFlag guard(sending_);
    for (const MailSecurity& offer : kUsualOffers) {
        const std::string what = host + ", port " + std::to_string(offer.port) + ", " + std::string(NameOf(offer.encryption));
        tell("Trying " + what + "...");
        clsEsmtp attempt({ports_.files, ports_.clock, ports_.events, ports_.guids, &trace_}, ports_.sckesmtp);
        attempt.SmtpHost = host;
        attempt.smtpport = offer.port;
        attempt.security = offer;
        attempt.security.authorities = ports_.safeguards.Text("SMTPAuthority");
        if (attempt.TryConnection()) {
            tell(what + ": the server offers it, and its certificate is good.");
            return offer;
        }
        tell(what + ": " + TrimAll(WithoutControls(attempt.ErrorLog)));
    }
    return std::nullopt;
}

void Dispatcher::TestEmail(std::string strTo1, std::string strTo2, bool bNoDefaultBody, const std::string& strBody1,
                           const std::string& strText, const std::string& strEmailDesc, const std::string& strFromDefault,
                           const std::string& strOverrideTo, const std::string& strFrom, std::function<void(bool sent)> done) {
    if (!strOverrideTo.empty()) {
        strTo1 = strOverrideTo;
        strTo2.clear();
    }
    const std::string backup = Setting("ServerBackup");
    const Notification test{strTo1, strTo2, strFrom.empty() ? strFromDefault : strFrom, SubjectOf(strText, strEmailDesc),
                            BodyOf(bNoDefaultBody, strBody1, strText)};
    ports_.person.Ask(
        kMessageTitle, Question(strTo1, strTo2, Setting("Server"), backup), [=, this] { done(RunTest(test, backup)); },
        [=] { done(false); });
}

bool Dispatcher::RunTest(const Notification& test, const std::string& backup) {
    if (ports_.stopMonitor) ports_.stopMonitor();
    ports_.status.setStatusMSG("Testing Email... Please wait.");
    if (test.strTo1.empty()) return true;  // nothing was tried
    const bool primarySent = TestThrough(MailServer::Primary, Setting("Server"), test);
    const bool backupSent = Trim(backup).empty() || TestThrough(MailServer::Backup, backup, test);
    if (ports_.alertPath != nullptr) ports_.alertPath->TestMail(primarySent && backupSent);
    return primarySent && backupSent;
}

bool Dispatcher::TestThrough(MailServer server, const std::string& name, const Notification& test) {
    const SendOutcome outcome = SendThrough(server, test);
    const std::string to = test.strTo1 + ", " + test.strTo2;
    if (outcome.sent) {
        ports_.person.ShowMessage(kMessageTitle, "Email Test SUCCEEDED! Sent to " + to + " using SMTP server " + name + ".");
    } else {
        ports_.log.WriteLog(kLogFatal, kLogError,
                            "TestEmail: Email Test Failed to " + to + " using " + name + ". " + outcome.strError);
        ports_.person.ShowLoggedError(kMessageTitle, "Email Test Failed to " + to + " from " + test.strFrom +
                                                         " using SMTP server " + name + ".\r\n\r\nError: " + outcome.strError);
    }
    return outcome.sent;
}

std::string Dispatcher::Setting(const char* key) const {
    const std::string* value = ports_.settings.Find(key);
    return value == nullptr ? "" : *value;
}

std::string Dispatcher::Zone() const {
    return Trim(Setting("Zone"));
}

std::string Dispatcher::DatedSubject(const Message& message) const {
    return message.messageId.empty() ? message.strSubject + " " + ports_.clock.Now().Text() : message.strSubject;
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
