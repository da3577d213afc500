// Sends one mail to one server over one connection: first an optional POP login, then SMTP (RFC 5321) with a login (RFC 4954) if
// the server offers one. With security, all of it but the greeting is under TLS, or the mail fails.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "notify/mail_message.h"
#include "notify/mail_wire.h"
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/files.h"
#include "platform/guid_source.h"
#include "platform/tcp_socket.h"

namespace korvane {

/// For a single SendMail: create it, fill it, call SendMail once, destroy it. Nothing is queued or tried again.
class clsEsmtp : public MailProperties {
public:
    struct Ports {
        Files& files;
        const Clock& clock;
        Events& events;
        GuidSource& guids;
        MailTrace* trace = nullptr;  ///< null: no trace
    };

    /// Numbers of StateChange.
    enum State {
        kConnecting = 0,
        kConnected = 1,
        kAuthorizing = 2,  ///< raised once for each mechanism tried
        kSendingMail = 3,
        kMailSent = 4,
        kDisconnecting = 5,
        kDisconnected = 6,  ///< never raised
        kPopConnecting = 7,
        kPopConnected = 8,
        kPopAuthorizing = 9,
        kPopDisconnecting = 10,
        kPopDisconnected = 11,
    };

    /// The server refused the login. Cancel is true; a handler that has corrected the texts clears it, and the login starts again.
    using RequestLogin = std::function<void(std::string& UserID, std::string& Password, bool& Cancel)>;

    /// Events for the owner, called from inside SendMail. Each may be empty.
    struct Handlers {
        MailMessage::ReadFileError ReadFileError = {};
        std::function<void(int State)> StateChange = {};
        RequestLogin RequestPOPLogin = {};
        RequestLogin RequestESMTPLogin = {};
        /// The socket's own error, with the number and text that the socket gave.
        std::function<void(int number, const std::string& Description)> WinsockError = {};
    };

    /// The caller owns `sckInternet`. Nothing else may use it while this object lives and receives its events.
    clsEsmtp(const Ports& ports, TcpSocket& sckInternet);

    void SetHandlers(Handlers handlers) { handlers_ = std::move(handlers); }

    /// Empties every text, sets the ports to 25 and 110. The known features of the server remain.
    void Reset();

    /// Returns true only when the server answered 250 to the end of the message. On false ErrorLog is the report; on true it may
    /// still report a login that failed on the way. Waits through the event pump: up to 30 seconds for each SMTP reply, 60 for
    /// each POP reply, and 60 for each piece that the socket cannot send. Throws nothing.
    bool SendMail();

    /// Only tries whether the server can be spoken to as `security` says: connects and says hello. On false ErrorLog has the
    /// reason. Waits as SendMail does, and throws nothing.
    bool TryConnection();

    /// Returns whether the server answered the greeting; and its answer to the end of the message, empty if it did not take it.
    bool Greeted() const { return greeted_; }
    const std::string& Receipt() const { return receipt_; }

    /// Returns the first four characters of the latest reply.
    const std::string& strLastData() const { return wire_.LastData(); }

private:
    // The conversation, step by step. A step returns whether the next one may follow.
    void Prepare();
    void LoginToPop();
    bool Connect();
    bool SayHello();
    bool SayPlainHello();
    bool StartTls();
    bool Encrypt(const std::string& host);
    std::string OwnAddress() const;
    bool Authenticate();
    bool NameSender();
    bool NameRecipients();
    bool BeginData();
    bool SendMessage();
    bool EndData();
    void Quit();
    void Hangup();
    void Report();

    // The steps of the POP login.
    bool ConnectToPop();
    void AuthorizePop();
    bool SendPopUser();
    bool SendPopPassword();
    bool ExpectOk(std::string_view problem);
    void LeavePop();

    /// The result of a login attempt, which decides how the loop over the mechanisms continues.
    enum class Attempt { NextMechanism, StartAgain, Over, CannotSend };
    Attempt TryMechanisms();
    Attempt TryCramMD5();
    Attempt TryLogin();
    Attempt TryPlain();
    Attempt AfterAnswer(int code, std::string_view problem);

    bool Send(std::string_view text, const std::string& shown);
    bool SendLine(const std::string& line) { return Send(line + "\r\n", line); }
    bool SendSecret(const std::string& line);
    int Ask(const std::string& line);

    /// Returns whether `code` is one of `good`; if not, ends the conversation with the problem and a note for the report.
    bool Expect(std::initializer_list<int> good, int code, std::string_view problem, std::string_view note = "");
    bool End(std::string_view note);
    void Complain(std::string_view problem);
    void Raise(State state);

    TcpSocket& sckInternet;
    Handlers handlers_;
    EsmtpWire wire_;
    MailMessage message_;
    std::vector<std::string> recipients_;  ///< each in angle brackets
    std::string note_;                     ///< reason for the end of the conversation, for the report
    bool greeted_ = false;
    std::string receipt_;
    std::string popUser_;
    std::string popPassword_;
};

}  // namespace korvane
