// Sends one mail to one server over one connection: first an optional POP login, then SMTP (RFC 5321) with a login (RFC 4954) if
// the server offers one.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "notify/mail_message.h"
#include "notify/mail_trace.h"
#include "notify/smtp_reply.h"
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

    /// Events for the owner, called from inside SendMail. Each may be empty.
    struct Handlers {
        MailMessage::ReadFileError ReadFileError = {};
        std::function<void(int State)> StateChange = {};
        /// The server refused the login. Cancel is true; a handler that has corrected the texts clears it, and the login starts
        /// again.
        std::function<void(std::string& UserID, std::string& Password, bool& Cancel)> RequestPOPLogin = {};
        std::function<void(std::string& UserID, std::string& Password, bool& Cancel)> RequestESMTPLogin = {};
        /// The socket's own error, with the number and text that the socket gave.
        std::function<void(int number, const std::string& Description)> WinsockError = {};
    };

    /// The caller owns `sckInternet`. Nothing else may use it while this object lives and receives its events.
    clsEsmtp(const Ports& ports, TcpSocket& sckInternet);
    ~clsEsmtp();
    clsEsmtp(const clsEsmtp&) = delete;
    clsEsmtp& operator=(const clsEsmtp&) = delete;

    void SetHandlers(Handlers handlers) { handlers_ = std::move(handlers); }

    /// Empties every text, sets the ports to 25 and 110. The known features of the server remain.
    void Reset();

    /// Returns true only when the server answered 250 to the end of the message. On false ErrorLog is the report; on true it may
    /// still report a login that failed on the way. Waits through the event pump: up to 30 seconds for each SMTP reply, 60 for
    /// each POP reply, and 60 for each piece that the socket cannot send. Throws nothing.
    bool SendMail();

    /// Returns the first four characters of the latest reply.
    const std::string& strLastData() const { return strLastData_; }

private:
    enum class Phase { Closed = 0, Smtp = 1, Pop = 2 };
    static constexpr std::chrono::seconds kSilence{60};  ///< limit for the socket while it sends
    static constexpr int kSmtpTries = 30;                ///< one second each
    static constexpr int kPopTries = 60;

    enum SendFlag { kSendPending = 0, kSendComplete = 1, kSendProgress = 3, kSendError = -1 };
    enum ReplyFlag { kNoReply = 0, kSmtpReply = 16, kPopReply = 17, kReplyError = -1 };

    // The conversation, step by step. A step returns whether the next one may follow.
    void Prepare();
    void LoginToPop();
    bool Connect();
    bool SayHello();
    bool SayPlainHello();
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
    bool HasBetterPopLogin();
    void LeavePop();

    /// The result of a login attempt, which decides how the loop over the mechanisms continues.
    enum class Attempt { NextMechanism, StartAgain, Over, CannotSend };
    Attempt TryMechanisms();
    Attempt TryCramMD5();
    Attempt TryLogin();
    Attempt TryPlain();
    bool HasBetterLogin(std::string_view problem);

    // Sending and receiving.
    void ListenToSocket();
    void OpenConnection(const std::string& host, std::int32_t port);
    enum class Shown { Whole, Not };  ///< how the trace shows a line
    bool SendPiece(const std::string& piece);
    bool SendLine(const std::string& line, Shown shown = Shown::Whole);
    bool SendCommand(std::string_view text, const std::string& shown);
    void WaitUntilSent(std::chrono::seconds timeout);
    int Ask(const std::string& line, Shown shown = Shown::Whole);
    bool AskPop(const std::string& line, Shown shown = Shown::Whole);
    void TraceSent(const std::string& shown);
    void TraceReceived(const std::string& reply);
    int GetSmtpReply(int tries, bool sent);
    bool GetPopReply(int tries, bool sent);
    enum class Look { Taken, NotYet, Vain };
    Look LookForReply(ReplyFlag expected, bool sent);
    struct Waited {
        int flag = kNoReply;
        bool expected = false;
    };
    Waited WaitForReply(ReplyFlag expected, std::chrono::seconds limit);
    bool TakeReply();
    std::optional<int> ReadSmtpReply(bool& multiLine, int& code);
    void DataArrival();
    void SocketClosed();

    void Raise(State state);
    void Complain(std::string_view problem);
    /// Ends the conversation with a note for the report.
    bool End(std::string note);

    Ports ports_;
    TcpSocket& sckInternet;
    Handlers handlers_;
    MailMessage message_;
    std::vector<std::string> recipients_;  ///< each in angle brackets
    AuthMechanisms mechanisms_;
    Phase phase_ = Phase::Closed;
    int sendFlag_ = kSendPending;
    int replyFlag_ = kNoReply;
    bool delivered_ = false;
    std::size_t messageBytes_ = 0;
    std::string strLastData_;
    std::string taken_;        ///< the last reply with its line ends
    std::string lastReply_;    ///< without the last line end
    std::string lastCommand_;  ///< its first line
    std::string challenge_;    ///< of the last 334 reply
    std::string note_;         ///< reason for the end of the conversation, for the report
    std::string popUser_;
    std::string popPassword_;
};

}  // namespace korvane
