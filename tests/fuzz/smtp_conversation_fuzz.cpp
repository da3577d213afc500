// A whole mail to an SMTP server that says anything, at any time and in any pieces.
#include <algorithm>
#include <string>

#include "base/text.h"
#include "fuzz/fuzz.h"
#include "fuzz/mail_world.h"

namespace korvane {
namespace {

bool SentSome(const TranscriptSocket& socket, std::string_view part) {
    return std::any_of(socket.Transcript().begin(), socket.Transcript().end(),
                       [part](const TranscriptSocket::Entry& entry) { return entry.sent && Holds(entry.bytes, part); });
}

void CheckOrder(const TranscriptSocket& socket) {
    const std::size_t sender = socket.BehindLine("MAIL FROM:<monitor@korvane.test>");
    const std::size_t recipient = socket.BehindLine("RCPT TO:<second@korvane.test>", sender);
    const std::size_t data = socket.BehindLine("DATA", recipient);
    if (sender > 0) Require(socket.TookReply("2", 0), "nobody is named to a server that said nothing good");
    if (data > 0) Require(sender > 0 && recipient > 0, "sender and recipients come before the message");
    const bool accepted = data > 0 && (socket.TookReply("354", data) || socket.TookReply("250", data));
    if (SentSome(socket, "Subject:")) Require(accepted, "the message goes only to a server that asked for it");
}

void CheckDelivered(const TranscriptSocket& socket) {
    const std::size_t data = socket.BehindLine("DATA");
    const std::size_t end = socket.BehindLine(".", data);
    Require(data > 0 && SentSome(socket, "web is DOWN") && end > 0, "a mail that counts as sent was sent to its end");
    Require(socket.TookReply("250", end), "and the server took it");
}

}  // namespace

void Fuzz(std::string_view input) {
    MailWorld mail(input);
    Prepare(mail.net.Host("10.0.0.1").Port(25), input);

    const bool sent = mail.mail.SendMail();

    Require(mail.world.Ticks() <= kLongestMail, "a mail ends in time");
    Require(mail.socket.State() == SocketState::Closed, "the connection is closed");
    CheckOrder(mail.socket);
    if (sent) CheckDelivered(mail.socket);
    if (!sent) Require(!TrimAll(mail.mail.ErrorLog).empty(), "a mail that was not sent has a reason");
}

}  // namespace korvane
