// The older mailer: SMTP (RFC 5321) without a login, one reply for each command. It serves every server that has no login name,
// which is the usual case. It has its own header order, case of commands and limits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "notify/mail_security.h"
#include "notify/mail_wire.h"
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/operator.h"
#include "platform/tcp_socket.h"
#include "store/log.h"
#include "store/status_log.h"

namespace korvane {

class PlainMailer {
public:
    struct Ports {
        TcpSocket& socket;  ///< used by this mailer alone, which receives its events
        const Clock& clock;
        Events& events;
        Operator& person;
        StatusLog& status;
        Log& log;
        MailTrace* trace = nullptr;  ///< null: no trace
    };

    explicit PlainMailer(const Ports& ports);

    /// Counts for the mails that follow. Without it they go out in clear on port 25.
    void SetSecurity(MailSecurity security) { security_ = std::move(security); }

    /// Returns whether the server accepted the mail; if not, `strError` has the reason. Line ends in addresses, names and subject
    /// become spaces. If `strBoundary` is not empty, the headers of a multipart are added and its sentence follows the body.
    /// Waits through the event pump, up to 21 seconds for each reply and 61 for each piece of the body. Only one mail at a time.
    bool SendPlainMail(const std::string& strToAddress, const std::string& strToName, const std::string& strFromName,
                       const std::string& strFromAddress, const std::string& strSubject, const std::string& strBody,
                       const std::string& strServer, const std::string& strZone, std::string& strError,
                       const std::string& strExtra, const std::string& strBoundary);

    /// Counts for the mails that follow: the text of a Message-ID header; empty: none.
    void SetMessageId(std::string messageId) { messageId_ = std::move(messageId); }

    /// Of the latest mail: whether the server answered the greeting; and its answer to the end of the message, empty if it did not
    /// take it.
    bool Greeted() const { return greeted_; }
    const std::string& Receipt() const { return receipt_; }

private:
    struct Mail;

    // The conversation, step by step. A step returns whether the next one may follow.
    bool Converse(const Mail& mail);
    bool Connect(const Mail& mail);
    bool SayHello(const Mail& mail);
    bool StartTls(const Mail& mail, const std::string& hello);
    bool Encrypt(const Mail& mail);
    bool NameSender(const Mail& mail);
    bool SendMessage(const Mail& mail);
    bool EndMessage();
    bool Quit();

    bool Command(const std::string& line, std::string_view expectedCode);
    void SendLine(const std::string& line) { wire_.Send(line + "\r\n", line); }
    std::string TakeReply();
    bool HasReply() const;
    bool WaitForReply(std::string_view expectedCode);
    bool WaitForSend();
    bool Fail(const std::string& error);
    bool FailWithStatus(const std::string& error);

    Ports ports_;
    MailSecurity security_;
    MailWire wire_;
    std::string reply_;      ///< what arrived since the last check
    std::string lastReply_;  ///< what was checked last
    std::string error_;
    std::string messageId_;
    std::string receipt_;
    bool greeted_ = false;
    bool sendComplete_ = false;
    std::size_t sentCount_ = 0;
};

}  // namespace korvane
