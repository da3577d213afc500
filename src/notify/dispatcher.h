// The one way in which this program notifies people: splits the recipients, picks a mailer for each, shows the progress and
// hands back the reason of a failure.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "notify/esmtp.h"
#include "notify/mail_trace.h"
#include "notify/plain_mailer.h"
#include "platform/operator.h"
#include "platform/system_info.h"
#include "store/log.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

/// What a notification says and to whom.
struct Notification {
    std::string strTo1;
    std::string strTo2;
    std::string strFrom;
    std::string strSubject;
    std::string strBody;
};

/// The two sets of settings that name a mail server.
enum class MailServer { Primary, Backup };

struct SendOutcome {
    bool sent = false;
    std::string strError;  ///< of the last attempt; blank after a success
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
        std::function<void()> stopMonitor;  ///< stops the monitor if it is running
        MailTrace* trace = nullptr;         ///< of the conversations with mail servers; null: nobody looks on
    };

    struct Options {
        std::int32_t smtpPort = 25;  ///< anything else is for tests
        std::int32_t popPort = 110;
        std::string contactAddress = {};  ///< the product's own mailbox, which gets no status line
    };

    Dispatcher(const Ports& ports, Options options);

    /// One message to everybody in `strTo1` and `strTo2`, one mail each. False with the reason in `strError` at the first
    /// recipient whose mail was refused; those after it get none. A login name in `strUser` chooses clsEsmtp, a blank one the
    /// plain mailer. `strTo1`, `strTo2`, `strFrom` and `strSubject` are left as they were used. A call from an event of a running
    /// one fails with a reason, at every server: whoever notifies from a timer of its own keeps the message and tries again.
    /// Waits as the mailers do. Throws nothing.
    bool SendEmail(std::string& strTo1, std::string& strTo2, std::string& strFrom, std::string& strSubject, std::string& strBody,
                   const std::string& reserved, std::string strServer, std::string& strUser, std::string& strPass,
                   std::string& strPopHost, std::string& strError);

    /// Whether a SendEmail is on the stack, so that another one would be refused.
    bool Sending() const { return sending_; }

    /// The same through the server that the settings name.
    SendOutcome SendThrough(MailServer server, const Notification& notification);

    /// How every notification goes: through the primary server, and when that failed through the backup, if a name longer than
    /// 5 characters is set for it.
    /// `primaryFailed` hears the reason before the second attempt.
    SendOutcome SendWithBackup(const Notification& notification,
                               const std::function<void(const std::string& strError)>& primaryFailed = {});

    /// The operator's test, asked for and answered in boxes: through the primary server and, where one is set, through the backup
    /// too. `done` gets true when every send that was tried succeeded, false when one failed or the operator said no.
    void TestEmail(std::string strTo1, std::string strTo2, bool bNoDefaultBody, const std::string& strBody1,
                   const std::string& strText, const std::string& strEmailDesc, const std::string& strFromDefault,
                   const std::string& strOverrideTo, const std::string& strFrom, std::function<void(bool sent)> done);

private:
    /// The message on its way to one recipient after the other; its sender may become the first of them.
    struct Message {
        std::string strFromName;
        std::string strFrom;
        std::string strSubject;
        std::string strBody;
    };
    struct Account {
        std::string strServer;
        std::string strUser;
        std::string strPass;
        std::string strPopHost;
    };

    bool SendToEach(const std::string& strTo1, const std::string& everybody, Message& message, const Account& account,
                    std::string& strError);
    bool SendToOne(const std::string& recipient, const Message& message, const Account& account, std::string& strError);
    bool SendThroughPlainMailer(const std::string& recipient, const Message& message, const Account& account,
                                std::string& strError);
    bool SendThroughEsmtp(const std::string& recipient, const Message& message, const Account& account, std::string& strError);
    void mycls_StateChange(const clsEsmtp& mycls, int State);
    bool RunTest(const Notification& test, const std::string& backup);
    bool TestThrough(MailServer server, const std::string& name, const Notification& test);

    std::string Setting(const char* key) const;
    std::string Zone() const;
    std::string DatedSubject(const Message& message) const;
    void SetProgress(double percent);

    Ports ports_;
    Options options_;
    PlainMailer plainMailer_;
    bool sending_ = false;
};

/// Two lines on the system and the program for the About box. `version` is "major.minor.revision".
std::string GetSysInfoString(const SystemInfo& system, const std::string& version);

}  // namespace korvane
