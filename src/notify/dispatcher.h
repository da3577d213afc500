// The only way in which this program sends notifications: splits the recipients, chooses a mailer for each, shows the progress
// and returns the reason of a failure.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "notify/esmtp.h"
#include "notify/hidden_passwords.h"
#include "notify/mail_security.h"
#include "notify/mail_trace.h"
#include "notify/plain_mailer.h"
#include "platform/operator.h"
#include "platform/system_info.h"
#include "store/alert_path.h"
#include "store/log.h"
#include "store/safeguards.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

/// The content and the recipients of a notification.
struct Notification {
    std::string strTo1;
    std::string strTo2;
    std::string strFrom;
    std::string strSubject;
    std::string strBody;
};

struct SendOutcome {
    bool sent = false;
    std::string strError;      ///< of the last attempt; empty after a success
    bool greeted = false;      ///< the server answered the greeting, so what failed concerns the mail
    std::string receipt = {};  ///< the server's answer to the end of the message
};

class Dispatcher {
public:
    struct Ports {
        TcpSocket& sckesmtp;     ///< of clsEsmtp
        TcpSocket& plainSocket;  ///< of the plain mailer
        const Clock& clock;
        Events& events;
        Operator& person;
        Files& files;
        GuidSource& guids;
        StatusLog& status;
        Log& log;
        const SettingsCollection& settings;
        Safeguards& safeguards;
        std::function<void()> stopMonitor;  ///< stops the monitor if it is running
        MailTrace* trace = nullptr;         ///< of the SMTP conversations; null: no trace
        AlertPath* alertPath = nullptr;     ///< learns the result of each test mail
    };

    struct Options {
        std::int32_t smtpPort = 25;  ///< of a server without security and port of its own; tests use other ports
        std::int32_t popPort = 110;
        std::string contactAddress = {};  ///< the product's own mailbox, which gets no status line
    };

    Dispatcher(const Ports& ports, Options options);

    /// Returns whether a message is being sent, so that another one would be refused.
    bool Sending() const { return sending_; }

    /// Sends one message to all recipients in `strTo1` and `strTo2`, one mail each, through the server in the settings: with
    /// clsEsmtp if it has a login name, with the plain mailer if not. Fails at the first recipient whose mail was refused; later
    /// recipients get none. A call from an event of a running call fails with a reason, at every server: a caller with its own
    /// timer must keep the message and try again. Waits as the mailers do. Throws nothing.
    SendOutcome SendThrough(MailServer server, const Notification& notification);

    /// Used for every notification: tries the primary server and, when that failed, the backup if a name longer than 5 characters
    /// is set for it. `primaryFailed` receives the reason before the second attempt.
    SendOutcome SendWithBackup(const Notification& notification,
                               const std::function<void(const std::string& strError)>& primaryFailed = {});

    /// Tries which encryption the server `host` offers, the best first, with a certificate that is good. Returns nothing if there
    /// is none. `tell` receives a sentence about each attempt. Waits through the event pump up to 30 seconds for each reply.
    std::optional<MailSecurity> FindSecurity(const std::string& host, const std::function<void(const std::string& text)>& tell);

    /// Sends a mail of the outbox to one recipient through one server; `strTo1` stands in for a missing sender. Subject and Message-ID are sent as they are, so that each
    /// try sends the same mail. It counts as sent from the server's receipt on.
    SendOutcome Deliver(MailServer server, const std::string& recipient, const Notification& mail, const std::string& messageId);

    /// Returns how the text of a mail, or its subject, goes out: without passwords.
    std::string AsSent(const std::string& text) const { return hidden_.InWords(text); }

    /// The operator's test mail, with a question before and the results in message boxes: sends through the primary server and,
    /// if set, also through the backup. `done` receives true when every attempted send succeeded, false when one failed or the
    /// operator declined.
    void TestEmail(std::string strTo1, std::string strTo2, bool bNoDefaultBody, const std::string& strBody1,
                   const std::string& strText, const std::string& strEmailDesc, const std::string& strFromDefault,
                   const std::string& strOverrideTo, const std::string& strFrom, std::function<void(bool sent)> done);

private:
    struct Account {
        std::string strServer;
        std::string strUser;
        std::string strPass;
        std::string strPopHost;
        MailServer server = MailServer::Primary;
    };
    /// The message while it goes to one recipient after the other; its sender may become the first of them.
    struct Message {
        std::string strFromName;
        std::string strFrom;
        std::string strSubject;
        std::string strBody;
        Account account;
        std::string messageId = {};  ///< empty: each mail gets its own, and the subject the time
    };

    Account AccountOf(MailServer server) const;
    SendOutcome SendEmail(Notification mail, const Account& account);
    SendOutcome SendToEach(const std::string& strTo1, const std::string& everybody, Message& message);
    SendOutcome SendToOne(const std::string& recipient, Message message);
    SendOutcome SendThroughPlainMailer(const std::string& recipient, const Message& message, const MailSecurity& security);
    SendOutcome SendThroughEsmtp(const std::string& recipient, const Message& message, const MailSecurity& security);
    void mycls_StateChange(const clsEsmtp& mycls, int State);
    bool RunTest(const Notification& test, const std::string& backup);
    bool TestThrough(MailServer server, const std::string& name, const Notification& test);

    std::string Setting(const char* key) const;
    std::string Zone() const;
    std::string DatedSubject(const Message& message) const;
    void SetProgress(double percent);

    Ports ports_;
    Options options_;
    HiddenPasswords hidden_;
    HidingTrace trace_;
    PlainMailer plainMailer_;
    bool sending_ = false;
};

/// Returns two lines about the system and the program for the About box. `version` is "major.minor.revision".
std::string GetSysInfoString(const SystemInfo& system, const std::string& version);

}  // namespace korvane
