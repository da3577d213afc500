// A login at a POP server that says anything. Whatever comes of it, the mail goes to the SMTP server, which is a good one.
#include "base/text.h"
#include "fuzz/fuzz.h"
#include "fuzz/mail_world.h"

namespace korvane {
namespace {

constexpr std::string_view kGoodServer =
    "> 220 mail.test ESMTP\n<\n> 250 mail.test\n<\n> 250 ok\n<\n> 250 ok\n<\n> 250 ok\n<\n> 354 go on\n<.\n> 250 taken\n<\n> 221 "
    "bye";

}  // namespace

void Fuzz(std::string_view input) {
    MailWorld mail(input);
    mail.mail.POPhost = "10.0.0.2";
    Prepare(mail.net.Host("10.0.0.2").Port(110), input);
    Prepare(mail.net.Host("10.0.0.1").Port(25), kGoodServer);

    Require(mail.mail.SendMail(), "a POP login that fails does not stop a mail");

    Require(mail.world.Ticks() <= kLongestMail, "a login ends in time");
    Require(mail.socket.State() == SocketState::Closed, "the connection is closed");
    Require(mail.net.Host("10.0.0.1").Port(25).Connections() == 1, "one mail is sent once");
    const bool greeted = mail.socket.TookReply("+", 0);
    if (mail.socket.BehindLine("USER monitor") > 0) Require(greeted, "only a server that greeted hears the name");
    if (!greeted) Require(!mail.mail.ErrorLog.empty(), "a login that failed is told");
}

}  // namespace korvane
