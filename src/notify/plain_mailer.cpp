#include "notify/plain_mailer.h"

#include <exception>
#include <utility>

#include "base/text.h"
#include "notify/mail_message.h"
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

PlainMailer::PlainMailer(const Ports& ports, std::int32_t port)
    : ports_(ports),
      port_(port),
      wire_(ports.socket, ports.trace,
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
    std::string headers = "From: " + Mailbox(WithoutLineEnds(strFromName), from) + "\r\n" +
                          "Date: " + MailDate(ports_.clock.Now(), ports_.clock.UtcNow(), strZone) + "\r\n" + "X-Priority: 1\r\n" +
                          "X-Sender: " + from + "\r\n" + "X-Mailer: Brellix Automated Mailer\r\n" +
                          "To: " + Mailbox(WithoutLineEnds(strToName), to) + "\r\n" + "Subject: " + WithoutLineEnds(strSubject) +
                          "\r\n";
    if (!messageId_.empty()) headers += "Message-ID: " + messageId_ + "\r\n";
    std::string body = strBody;
    if (!strBoundary.empty()) {
        headers += "MIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary=\"" + strBoundary + "\"\r\n";
        body += "This is a multi-part message in MIME format.";
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
        return Connect(mail) &&                                            //
               Command("HELO " + ports_.socket.LocalHostName(), "250") &&  //
               NameSender(mail) &&                                         //
               Command("rcpt to:<" + Trim(mail.to) + ">", "250") &&        //
               Command("data", "354") &&                                   //
               SendMessage(mail) &&                                        //
               EndMessage() &&                                             //
               Quit();
    } catch (const std::exception& error) {
        return Fail(error.what());
    }
}

bool PlainMailer::Connect(const Mail& mail) {
    if (ports_.socket.State() != SocketState::Closed) return Fail("The connection of another message is still open.");
    reply_.clear();
    ports_.status.setStatusMSG("Connect to " + mail.server);
    wire_.Open(mail.server, port_);
    return WaitForReply("220");
}

bool PlainMailer::EndMessage() {
    if (!Command(".", "250")) return false;
    receipt_ = TrimAll(latest_);
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
    const std::string reply = std::exchange(reply_, {});
    if (!reply.empty()) wire_.ShowReceived(TrimAll(reply));
    return reply;
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

// Only the first three characters of the data since the last check count: the first line of a multi-line reply is accepted, and
// its later lines are taken as the reply to the next command.
bool PlainMailer::WaitForReply(std::string_view expectedCode) {
    const ReplyLimit limit(ports_.clock, kReplyLimit);
    while (reply_.empty()) {
        if (limit.Over()) {
            ports_.status.setStatusMSG("Connection...");
            return Fail(kReplyTimedOut);
        }
        ports_.events.WaitForEvent(kWaitStep);
    }
    const std::string reply = TakeReply();
    latest_ = reply;
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
