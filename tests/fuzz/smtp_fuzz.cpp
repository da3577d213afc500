// A whole mail to an SMTP server that says anything, at any time and in any pieces. Where there is a line feed, the script of a POP
// server stands before it.
#include "fuzz/fuzz.h"
#include "fuzz/mail_world.h"

namespace korvane {
namespace {

/// What all waits of one mail together stay below: 30 or so replies of up to 60 seconds, and as many pieces that go out slowly.
constexpr std::chrono::hours kLongestSmtp(4);

void CheckOrder(const TranscriptSocket& socket) {
    const std::size_t sender = socket.After(">MAIL FROM:<me@example.com>\r\n");
    const std::size_t recipient = socket.After(">RCPT TO:<second@example.com>\r\n", sender);
    const std::size_t data = socket.After(">DATA\r\n", recipient);
    const std::size_t message = socket.After(">From: ");
    if (socket.After(">USER ") > 0) Require(socket.After("<+") > 0, "a POP server that did not greet hears no name");
    if (sender > 0) Require(socket.After("<2") > 0, "nobody is named to a server that said nothing good");
    if (data > 0) Require(sender > 0 && recipient > 0, "sender and recipients come before the message");
    const auto asked = [&](const char* code) { return socket.After(code, data) > data && socket.After(code, data) < message; };
    if (message > 0) Require(data > 0 && (asked("<354") || asked("<250")), "the message goes only to a server that asked for it");
}

void CheckTaken(const TranscriptSocket& socket) {
    const std::size_t end = socket.After(">.\r\n", socket.After(">Subject: Hello"));
    Require(end > 0, "a mail that counts as sent was sent to its end");
    Require(socket.After("<250", end) > 0, "and the server took it");
}

}  // namespace

void FuzzSmtp(std::string_view input) {
    MailWorld w(BeginningOf(input));
    const std::string_view pop = Holds(input, "\n") ? TakeUpTo('\n', input) : "";
    if (!pop.empty()) w.mail.POPhost = "mail.example";
    Play(w.pop, pop);
    Play(w.smtp, input);
    w.mail.emailTo += ";second@example.com";
    w.mail.plainMessage = "Down.\r\n.\r\nSince noon.\r\n";
    int refused = 0;
    const auto better = [&refused](std::string&, std::string& password, bool& cancel) {
        password += "2";
        cancel = ++refused > 2;
    };
    w.Listen({.RequestPOPLogin = better, .RequestESMTPLogin = better});

    const bool sent = w.mail.SendMail();

    Require(w.world.Ticks() <= kLongestSmtp, "a mail ends in time");
    Require(w.socket.State() == SocketState::Closed && w.smtp.Connections() == 1, "one connection, and it is closed");
    CheckOrder(w.socket);
    if (sent) CheckTaken(w.socket);
    if (!sent) Require(!TrimAll(w.mail.ErrorLog).empty(), "a mail that was not sent has a reason");
}

}  // namespace korvane
