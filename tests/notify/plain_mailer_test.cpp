// The plain mailer's conversation with what can go wrong at each of its steps.
#include "notify/plain_mailer.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "notify/mail_world.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

struct Step {
    const char* line;
    const char* reply;
    const char* code;
};

const Step kSteps[] = {{"", "220 ready", "220"},
                       {"HELO monitor", "250 hello", "250"},
                       {"mail from:<me@example.com>", "250 sender", "250"},
                       {"rcpt to:<you@example.com>", "250 rcpt", "250"},
                       {"data", "354 go on", "354"},
                       {".", "250 queued", "250"},
                       {"quit", "221 bye", "221"}};

const char* const kTimedOut = "SMTP service error, timed out while waiting for Email Server Response.";

struct PlainWorld : MailWorld {
    using MailWorld::MailWorld;

    bool Send(const std::string& body = "How are you?", const std::string& subject = "Hello") {
        return mailer.SendPlainMail("you@example.com", "you@example.com", "Me", "me@example.com", subject, body, "mail.example",
                                    "", strError, "", "");
    }

    VirtualServer& ServerUpTo(std::size_t broken) {
        for (std::size_t i = 0; i <= broken; ++i) {
            if (kSteps[i].line == std::string("."))
                Smtp().ExpectUpTo(kSteps[i].line);
            else if (*kSteps[i].line != '\0')
                Smtp().Expect(kSteps[i].line);
            if (i < broken) Smtp().Speak(kSteps[i].reply + std::string("\r\n"), 2ms);
        }
        return Smtp();
    }

    void ContentServer() { ServerUpTo(std::size(kSteps) - 1).Speak("221 bye\r\n"); }

    PlainMailer mailer{{plainSocket, world.clock, world.events, person, status, log}};
    std::string strError = "old";
};

TEST(SendPlainMail, TheConversationAndItsStatusLines) {
    PlainWorld w;
    w.ContentServer();
    EXPECT_TRUE(w.Send("Dots\r\n.\r\n.end", "Two\r\nlines\nand\rmore"));
    EXPECT_EQ(w.strError, "");
    EXPECT_EQ(w.Smtp().Mistake(), "");
    EXPECT_EQ(w.Smtp().Lines(), (Texts{"HELO monitor", "mail from:<me@example.com>", "rcpt to:<you@example.com>", "data",
                                       "From: \"Me\" <me@example.com>", "Date: Sat, 21 Nov 2026 20:04:05 -0000", "X-Priority: 1",
                                       "X-Sender: me@example.com", "X-Mailer: Brellix Automated Mailer",
                                       "To: \"you@example.com\" <you@example.com>", "Subject: Two lines and more", "", "Dots",
                                       "..", "..end", ".", "quit"}));
    EXPECT_EQ(w.person.StatusTexts(),
              (Texts{"Connect to mail.example", "Connected...", "Sending from me@example.com to you@example.com",
                     "Disconnecting...", "Email send complete..."}));
    EXPECT_FALSE(w.person.waitCursor);
    EXPECT_EQ(w.plainSocket.State(), SocketState::Closed);
}

struct Trouble {
    const char* name;
    std::function<void(VirtualServer&)> server;
    const char* error;  ///< <code> is the one of the step
    std::chrono::seconds waits;
};

const Trouble kTroubles[] = {
    {"another code", [](VirtualServer& s) { s.Speak("550 5.7.1 no\r\n", 5ms); }, "Expected: <code> Recieved: 550 5.7.1 no\r\n",
     0s},
    {"silence", [](VirtualServer&) {}, kTimedOut, 21s},
    {"closed", [](VirtualServer& s) { s.Close(5ms); }, kTimedOut, 21s},
    {"reset", [](VirtualServer& s) { s.Reset(5ms); }, kTimedOut, 21s},
    {"three bytes of something else", [](VirtualServer& s) { s.Speak("oh!", 5ms); }, "Expected: <code> Recieved: oh!", 0s},
    {"megabytes", [](VirtualServer& s) { s.Speak(std::string(10'000'000, 'x'), 5ms); }, "Expected: <code> Recieved: xxx", 0s},
};

TEST(SendPlainMail, TroubleAtEveryStep) {
    for (const Trouble& trouble : kTroubles) {
        for (std::size_t at = 0; at < std::size(kSteps); ++at) {
            SCOPED_TRACE(std::string(trouble.name) + " at " + kSteps[at].line);
            PlainWorld w;
            trouble.server(w.ServerUpTo(at));
            EXPECT_FALSE(w.Send());
            const std::string expected = ReplaceAll(trouble.error, "<code>", kSteps[at].code);
            EXPECT_EQ(w.strError.substr(0, expected.size()), expected);
            EXPECT_TRUE(w.person.SaidPart(ReplaceAll(expected, "\r\n", " : ")));
            EXPECT_GE(w.world.clock.GetTickCount(), trouble.waits - 500ms);
            EXPECT_LT(w.world.clock.GetTickCount(), trouble.waits + 1s);
            EXPECT_FALSE(w.person.waitCursor);
            EXPECT_EQ(w.plainSocket.State(), SocketState::Closed);
        }
    }
}

TEST(SendPlainMail, TheLinesBehindTheFirstStandAsTheNextReply) {
    PlainWorld passing;  // in one piece only the first line counts; in two the second answers HELO
    passing.Smtp()
        .Speak("220-big\r\n")
        .Speak("250 is how it goes on\r\n", 1ms)
        .Expect("HELO monitor")
        .ExpectUpTo("mail from:<me@example.com>");
    passing.Smtp().Speak("250 ok\r\n").OnLine("rcpt to:<you@example.com>", "250 ok\r\n").OnLine("data", "354 go\r\n");
    passing.Smtp().ExpectUpTo(".").Speak("250 ok\r\n").OnLine("quit", "221 bye\r\n");
    EXPECT_TRUE(passing.Send()) << passing.strError;

    PlainWorld failing;
    failing.Smtp().Speak("220-big\r\n").Speak("220 ready\r\n", 1ms);
    EXPECT_FALSE(failing.Send());
    EXPECT_EQ(failing.strError, "Expected: 250 Recieved: 220 ready\r\n");
}

TEST(SendPlainMail, ABodyThatDoesNotGetAway) {
    PlainWorld stuck;
    stuck.ContentServer();
    stuck.Smtp().TakeNothing();
    EXPECT_FALSE(stuck.Send());
    EXPECT_EQ(stuck.strError, "SMTP service error, timed out while sending the message.");
    EXPECT_LE(stuck.world.clock.GetTickCount(), 62s);

    PlainWorld slow;
    slow.ContentServer();
    slow.Smtp().Take(50s, 500);
    EXPECT_TRUE(slow.Send(std::string(5000, 'x')));
    EXPECT_GE(slow.world.clock.GetTickCount(), 500s);
}

TEST(SendPlainMail, WaitsAcrossMidnightEnd) {
    PlainWorld w(DateTime::Of(2026, 11, 21, 23, 59, 50));
    w.Smtp().Accept(1ms);
    EXPECT_FALSE(w.Send());
    EXPECT_EQ(w.strError, kTimedOut);
    EXPECT_GE(w.world.clock.GetTickCount(), 21s);
    EXPECT_LE(w.world.clock.GetTickCount(), 15min + 1s);
}

TEST(SendPlainMail, ServersThatCannotBeReached) {
    PlainWorld without;
    without.net.SetNetworkThere(false);
    EXPECT_FALSE(without.Send());
    EXPECT_EQ(without.strError, "No network is available");
    EXPECT_EQ(without.plainSocket.State(), SocketState::Closed);

    PlainWorld refused;
    refused.Smtp().Refuse();
    EXPECT_FALSE(refused.Send());
    EXPECT_EQ(refused.strError, kTimedOut);
}

}  // namespace
}  // namespace korvane
