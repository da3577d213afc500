// The connection of a mailer to its server, below the conversation: connects, sends, waits for replies, and shows both sides to
// the trace.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "notify/mail_trace.h"
#include "notify/smtp_reply.h"
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/tcp_socket.h"

namespace korvane {

/// What both mailers share.
class MailWire {
public:
    /// `trace` is null for no trace. Nothing else may use the socket and receive its events while this object lives.
    MailWire(TcpSocket& socket, const Clock& clock, Events& events, MailTrace* trace, TcpSocket::Handlers handlers);
    ~MailWire() { socket_.SetHandlers({}); }
    MailWire(const MailWire&) = delete;
    MailWire& operator=(const MailWire&) = delete;

    /// Begins to connect. Throws Error, as TcpSocket::Connect does.
    void Open(const std::string& host, std::int32_t port);

    /// Begins TLS on the connection to `host`, as soon as it is there, and waits for it up to 30 seconds. Returns why the
    /// connection is not encrypted; an empty text if it is.
    std::string Encrypt(const std::string& host, const std::string& authorities);
    /// Returns the reason if the connection or the attempt to connect has failed; otherwise an empty text.
    const std::string& Failure() const { return failure_; }

    /// Queues the bytes and shows them as `shown`, if that is not empty. Throws Error, as TcpSocket::SendData does.
    void Send(std::string_view bytes, const std::string& shown);

    void ShowSent(const std::string& shown);
    void ShowReceived(std::string_view reply);

protected:
    TcpSocket& socket_;
    const Clock& clock_;
    Events& events_;

private:
    void StartEncryption();

    MailTrace* trace_;
    TcpSocket::Handlers handlers_;
    bool encryptWhenConnected_ = false;
    bool encrypted_ = false;
    std::string host_;
    std::string authorities_;
    std::string failure_;
};

/// The wire of clsEsmtp: a text is sent completely before the next one, and replies are whole lines. The socket's events set two
/// flags, for which the waits look.
class EsmtpWire : public MailWire {
public:
    using SocketError = std::function<void(int number, const std::string& description)>;

    EsmtpWire(TcpSocket& socket, const Clock& clock, Events& events, MailTrace* trace, SocketError socketError);

    /// Connects to a server of this kind. If the connection cannot even be attempted, the wait for the greeting ends at once.
    void Open(const std::string& host, std::int32_t port, ReplyKind kind);
    /// As MailWire does. What the server said before counts no longer: anybody could have said it.
    std::string Encrypt(const std::string& host, const std::string& authorities);

    /// Sends the text and waits while there is progress at least every 60 seconds. Returns the problem if the socket does not
    /// take the text; otherwise an empty text, even if it could not send everything: the wait for the reply then detects that.
    std::string_view Send(std::string_view text, const std::string& shown);

    /// Waits up to 30 seconds for the complete reply of an SMTP server and returns its code, 0 if none came in time.
    int SmtpReply();
    /// Waits up to 60 seconds for the reply of a POP server and returns whether it is positive.
    bool PopReply();

    const AuthMechanisms& Mechanisms() const { return mechanisms_; }
    bool OffersStartTls() const { return offersStartTls_; }
    /// Returns the text of the latest 334 reply.
    const std::string& Challenge() const { return challenge_; }
    /// Returns the latest reply without its last line end.
    const std::string& LastReply() const { return lastReply_; }
    /// Returns the first line of the latest text that the socket took, as the report may show it.
    const std::string& LastCommand() const { return lastCommand_; }
    /// Returns the first four characters of the latest data, which ForgetLastData empties.
    const std::string& LastData() const { return lastData_; }
    void ForgetLastData() { lastData_.clear(); }

private:
    enum class Sent { Nothing, Part, All };
    enum class Arrived { Nothing, Reply, Other };

    void WaitUntilSent();
    bool TakeReply(int& tries);
    Arrived WaitForArrival();
    bool TakeWholeLines();
    std::optional<int> CodeOfReply(bool& multiLine, int& greeting);
    void ReadOffers();
    void DataArrival();
    void SocketClosed();

    ReplyKind kind_ = ReplyKind::Unknown;  ///< what the server is; unknown after it closed the connection
    Sent sent_ = Sent::Nothing;
    Arrived arrived_ = Arrived::Nothing;
    AuthMechanisms mechanisms_;
    bool offersStartTls_ = false;
    std::string lastData_;
    std::string taken_;  ///< the latest reply with its line ends, as bytes
    std::string lastReply_;
    std::string lastCommand_;
    std::string challenge_;
};

}  // namespace korvane
