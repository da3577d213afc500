#include "notify/plain_mailer.h"

#include <exception>
#include <utility>

#include "base/text.h"
#include "notify/mail_message.h"
#include "notify/mime_text.h"
#include "notify/smtp_reply.h"
#include "platform/wait.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kWaitStep = 250ms;

/// A reply is kept up to about this size; the rest is dropped.
constexpr std::size_t kMostKept = 65536;

constexpr auto kReplyLimit = 21s;
constexpr auto kSilence = 61s;  ///< limit for the socket while it sends

constexpr const char* kReplyTimedOut = "SMTP service error, timed out while waiting for Email Server Response.";
constexpr const char* kSendTimedOut = "SMTP service error, timed out while sending the message.";

}  // namespace

struct PlainMailer::Mail {
    std::string server;
    std::string from;
    std::string to;
    std::string headers;  ///< with their line ends
    std::string body;
};

PlainMailer::PlainMailer(const Ports& ports)
    : ports_(ports),
      wire_(ports.socket, ports.clock, ports.events, ports.trace,
            {
                .dataArrival =
                    [this] {
                        const std::string arrived = ports_.socket.GetData();
                        if (reply_.size() < kMostKept) reply_ += ToUtf8(arrived);
                    },
                .close = {},
                .error = {},
                .sendProgress = [this](std::size_t sent, std::size_t) { sentCount_ += sent; },
                .sendComplete = [this] { sendComplete_ = true; },
            }) {}

bool PlainMailer::SendPlainMail(const std::string& strToAddress, const std::string& strToName, const std::string& strFromName,
                                const std::string& strFromAddress, const std::string& strSubject, const std::string& strBody,
                                const std::string& strServer, const std::string& strZone, std::string& strError,
                                const std::string& /*strExtra*/, const std::string& strBoundary) {
    strError.clear();
    error_.clear();
    receipt_.clear();
    greeted_ = false;
    ports_.person.SetWaitCursor(true);
    const std::string from = WithoutLineEnds(strFromAddress);
    const std::string to = WithoutLineEnds(strToAddress);
    const auto mailbox = [&](const std::string& name, const std::string& address) {
        return security_.strict ? AsMailbox(WithoutLineEnds(name), address) : Mailbox(WithoutLineEnds(name), address);
    };
    const std::string subject = WithoutLineEnds(strSubject);
    std::string headers =
        "From: " + mailbox(strFromName, from) + "\r\n" + "Date: " + MailDate(ports_.clock.Now(), ports_.clock.UtcNow(), strZone) +
        "\r\n" + "X-Priority: 1\r\n" + "X-Sender: " + from + "\r\n" + "X-Mailer: Brellix Automated Mailer\r\n" +
        "To: " + mailbox(strToName, to) + "\r\n" + "Subject: " + (security_.strict ? AsHeaderText(subject) : subject) + "\r\n";
    if (!messageId_.empty()) headers += "Message-ID: " + messageId_ + "\r\n";
    std::string body = strBody;
    if (!strBoundary.empty()) {
        headers += "MIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary=\"" + strBoundary + "\"\r\n";
        body += "This is a multi-part message in MIME format.";
    }
    if (security_.strict && strBoundary.empty()) {
        MimeText mime = AsMimeText("text/plain", body);
        headers += "MIME-Version: 1.0\r\n" + mime.headers;
        body = std::move(mime.text);
    }
    const bool sent = Converse({strServer, from, to, headers, StuffDots(body)});
    if (!sent) ports_.socket.Close();
    ports_.person.SetWaitCursor(false);
    if (sent) return true;
    ports_.log.WriteLog(kLogOrdinary, kLogError, "SendPlainMail: " + error_);
    wire_.ShowSent(error_);
    strError = error_;
    return FailWithStatus(error_);
}

bool PlainMailer::Converse(const Mail& mail) {
    try {
        return Connect(mail) &&                                      //
               SayHello(mail) &&                                     //
               NameSender(mail) &&                                   //
               Command("rcpt to:<" + Trim(mail.to) + ">", "250") &&  //
               Command("data", "354") &&                             //
               SendMessage(mail) &&                                  //
               EndMessage() &&                                       //
               Quit();
    } catch (const std::exception& error) {
        return Fail(error.what());
    }
}

bool PlainMailer::Connect(const Mail& mail) {
    if (ports_.socket.State() != SocketState::Closed) return Fail("The connection of another message is still open.");
    reply_.clear();
    ports_.status.setStatusMSG("Connect to " + mail.server);
    wire_.Open(mail.server, security_.port);
    if (security_.encryption == Encryption::Tls && !Encrypt(mail)) return false;
    return WaitForReply("220");
}

bool PlainMailer::SayHello(const Mail& mail) {
    const std::string name = ports_.socket.LocalHostName();
    return security_.encryption == Encryption::StartTls ? StartTls(mail, "EHLO " + name) : Command("HELO " + name, "250");
}

// What the server said in clear no longer counts, so it is greeted again.
bool PlainMailer::StartTls(const Mail& mail, const std::string& hello) {
    if (!Command(hello, "250")) return false;
    if (!OffersStartTls(lastReply_)) return FailWithStatus(std::string(kNoStartTls));
    if (!Command("STARTTLS", "220")) return FailWithStatus(std::string(kRefusedStartTls) + ". " + error_);
    return Encrypt(mail) && Command(hello, "250");
}

bool PlainMailer::Encrypt(const Mail& mail) {
    const std::string problem = wire_.Encrypt(mail.server, security_.authorities);
    return problem.empty() || FailWithStatus(problem);
}

bool PlainMailer::EndMessage() {
    if (!Command(".", "250")) return false;
    receipt_ = TrimAll(lastReply_);
    return true;
}

bool PlainMailer::NameSender(const Mail& mail) {
    greeted_ = true;
    ports_.status.setStatusMSG("Connected...");
    SendLine("mail from:<" + Trim(mail.from) + ">");
    ports_.status.setStatusMSG("Sending from " + mail.from + " to " + mail.to);
    return WaitForReply("250");
}

bool PlainMailer::Command(const std::string& line, std::string_view expectedCode) {
    SendLine(line);
    return WaitForReply(expectedCode);
}

std::string PlainMailer::TakeReply() {
    lastReply_ = std::exchange(reply_, {});
    if (!lastReply_.empty()) wire_.ShowReceived(TrimAll(lastReply_));
    return lastReply_;
}

bool PlainMailer::SendMessage(const Mail& mail) {
    wire_.Send(mail.headers + "\r\n", "");
    sendComplete_ = false;
    sentCount_ = 0;
    wire_.Send(mail.body + "\r\n", BytesOfMessage(mail.headers.size() + mail.body.size() + 4));
    return WaitForSend();
}

// A mail counts as sent only when the server has answered QUIT.
bool PlainMailer::Quit() {
    SendLine("quit");
    ports_.status.setStatusMSG("Disconnecting...");
    if (!WaitForReply("221")) return false;
    ports_.socket.Close();
    ports_.status.setStatusMSG("Email send complete...");
    return true;
}

bool PlainMailer::HasReply() const {
    return security_.strict ? IsWholeReply(reply_) || reply_.size() >= kMostKept : !reply_.empty();
}

// Only the first three characters of the data since the last check count: the first line of a multi-line reply is accepted, and
// its later lines are taken as the reply to the next command.
bool PlainMailer::WaitForReply(std::string_view expectedCode) {
    const ReplyLimit limit(ports_.clock, kReplyLimit);
    while (!HasReply()) {
        if (security_.strict && !wire_.Failure().empty())
            return FailWithStatus("No connection to the mail server: " + wire_.Failure());
        if (limit.Over()) {
            ports_.status.setStatusMSG("Connection...");
            return Fail(kReplyTimedOut);
        }
        ports_.events.WaitForEvent(kWaitStep);
    }
    const std::string reply = TakeReply();
    if (reply.size() <= 2 || reply.starts_with(expectedCode)) return true;
    return FailWithStatus("Expected: " + std::string(expectedCode) + " Recieved: " + Left(reply, kMostOfAReply));
}

bool PlainMailer::WaitForSend() {
    ReplyLimit limit(ports_.clock, kSilence);
    std::size_t noted = sentCount_;
    while (!sendComplete_) {
        if (sentCount_ > noted) {
            noted = sentCount_;
            limit.Restart();
        }
        if (limit.Over()) {
            reply_.clear();
            return FailWithStatus(kSendTimedOut);
        }
        ports_.events.WaitForEvent(kWaitStep);
    }
    TakeReply();
    return true;
}

bool PlainMailer::Fail(const std::string& error) {
    error_ = error;
    return false;
}

bool PlainMailer::FailWithStatus(const std::string& error) {
    ports_.status.setStatusMSG(error);
    return Fail(error);
}

}  // namespace korvane
