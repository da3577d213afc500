// The SMTP conversation with everything that can go wrong at each of its steps: what the report says, and how long it takes.
#include <gtest/gtest.h>

#include "base/text.h"
#include "notify/mail_world.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

/// A step: what the client sends, what a server that is content replies, which codes let the conversation go on, and what the
/// report says when it does not.
struct Step {
    const char* line;
    const char* reply;
    std::vector<int> goodCodes;
    const char* problem;
    const char* note;
};

const char* const kNotPositive = "SMTP server did not reply positively to client's command\r\n";
const char* const kRefused = "SMTP server refused to accept/relay email message\r\n";

const Step kSteps[] = {
    {"",
     "220 ready",
     {220},
     "Connected to mail.example but didn't receive the expected 220 response. Received '<first>'\r\n",
     ""},
    {"EHLO 10.0.0.100", "250 hello", {250}, kNotPositive, "Expected 250. Didn't receive it."},
    {"MAIL FROM:<me@example.com>", "250 sender", {250}, kNotPositive, "Sent MAIL FROM... Expected 250. Didn't receive it."},
    {"RCPT TO:<you@example.com>",
     "250 rcpt",
     {250, 251},
     kNotPositive,
     "TO User: Send RCPT TO:... Expected 250 or 251. Didn't receive it."},
    {"DATA", "354 go on", {354, 250}, kRefused, ""},
    {".", "250 queued", {250}, "EOM: SMTP server refused to accept/relay email message\r\n", ""},
    {"QUIT", "221 bye", {}, "", ""},
};
constexpr std::size_t kQuit = std::size(kSteps) - 1;

const char* const kUnreachable =
    "Couldn't connect to mail.example. Are you sure this is the correct name for your server?  Try to ping it\r\n";

/// Takes the line of a step; before the dot stands the message.
void Hear(VirtualServer& server, const Step& step) {
    if (step.line == std::string("."))
        server.ExpectUpTo(step.line);
    else if (*step.line != '\0')
        server.Expect(step.line);
}

/// A content server up to step `broken`, whose line it hears.
VirtualServer& ServerUpTo(MailWorld& w, std::size_t broken) {
    VirtualServer& server = w.Smtp();
    for (std::size_t i = 0; i < broken; ++i) {
        Hear(server, kSteps[i]);
        server.Speak(kSteps[i].reply + std::string("\r\n"), 2ms);
    }
    Hear(server, kSteps[broken]);
    return server;
}

void GoOnFrom(VirtualServer& server, std::size_t next) {
    for (std::size_t i = next; i < std::size(kSteps); ++i) {
        Hear(server, kSteps[i]);
        server.Speak(kSteps[i].reply + std::string("\r\n"), 2ms);
    }
}

/// The report after step `broken` ended with `lastReply` as the last that was taken.
std::string ReportOf(std::size_t broken, const std::string& problem, const std::string& lastReply) {
    std::string report = problem;
    if (!lastReply.empty()) {
        if (broken > 0) report += "\r\nClient sent: " + std::string(kSteps[broken].line) + "\r\n";
        report += "Server replied: " + lastReply;
    }
    return report + " " + kSteps[broken].note;
}

std::string ReplyBefore(std::size_t step) {
    return step == 0 ? "" : kSteps[step - 1].reply;
}

bool Has(const std::vector<int>& codes, int code) {
    return std::find(codes.begin(), codes.end(), code) != codes.end();
}

TEST(SendMail, EveryReplyCodeAtEveryStepEndsInItsReport) {
    constexpr int kCodes[] = {200, 211, 220, 221, 235, 250, 251, 299, 334, 354, 421, 432, 450, 451, 452, 454,
                              500, 501, 502, 503, 504, 530, 534, 535, 538, 550, 551, 552, 553, 554, 555, 999};
    constexpr int kNeverHeardOf[] = {200, 211, 299, 555, 999};
    for (std::size_t at = 0; at < std::size(kSteps); ++at) {
        for (const int code : kCodes) {
            if (at == 1 && (code == 500 || code == 502 || code == 554)) continue;  // HELO has its own test
            SCOPED_TRACE(std::string(kSteps[at].line) + " answered " + std::to_string(code));
            const bool known = std::find(std::begin(kNeverHeardOf), std::end(kNeverHeardOf), code) == std::end(kNeverHeardOf);
            const std::string reply = std::to_string(code) + " so be it";
            MailWorld w;
            GoOnFrom(ServerUpTo(w, at).Speak(reply + "\r\n", 2ms), at + 1);
            const auto mail = w.NewMail();
            const bool good = at == kQuit || Has(kSteps[at].goodCodes, code);
            ASSERT_EQ(mail->SendMail(), good);
            EXPECT_EQ(w.socket.State(), SocketState::Closed);
            EXPECT_LT(w.world.clock.GetTickCount(), 1s);
            const std::string problem = ReplaceAll(kSteps[at].problem, "<first>", std::to_string(code) + " ");
            EXPECT_EQ(mail->ErrorLog, good ? "" : ReportOf(at, problem, known ? reply : ReplyBefore(at)));
            EXPECT_EQ(w.states.back(), 5);
        }
    }
}

struct Trouble {
    const char* name;
    std::function<void(VirtualServer&)> server;
    bool connected;              ///< still, when the step gives up
    const char* strLastData;     ///< of the greeting; of later steps it does not show
    std::chrono::seconds waits;  ///< for the reply of the step
};

// None of it ends in a reply that could be taken.
const Trouble kTroubles[] = {
    {"silence", [](VirtualServer&) {}, true, "", 30s},
    {"closed", [](VirtualServer& s) { s.Close(5ms); }, false, "", 30s},
    {"reset", [](VirtualServer& s) { s.Reset(5ms); }, false, "", 0s},
    {"half a line", [](VirtualServer& s) { s.Speak("250 never ends", 5ms); }, true, "250 ", 29s},
    {"one byte first", [](VirtualServer& s) { s.Speak("2", 5ms).Speak("50 ok\r\n", 50ms); }, true, "2", 0s},
    {"a continuation line nobody expects", [](VirtualServer& s) { s.Speak("535-well\r\n535 no\r\n", 5ms); }, true, "535-", 0s},
    {"a word of POP", [](VirtualServer& s) { s.Speak("+OK fine\r\n", 5ms); }, true, "+OK ", 0s},
    {"megabytes without a line end",
     [](VirtualServer& s) {
         for (int i = 0; i < 31; ++i)
             s.Speak("250 " + std::string(30'000, 'x'), 5ms);
     },
     true, "250 ", 0s},
};

TEST(SendMail, TroubleAtEveryStepIsFoundByTheWaitForItsReply) {
    for (const Trouble& trouble : kTroubles) {
        for (std::size_t at = 0; at < std::size(kSteps); ++at) {
            SCOPED_TRACE(std::string(trouble.name) + " at " + kSteps[at].line);
            MailWorld w;
            trouble.server(ServerUpTo(w, at));
            const auto mail = w.NewMail();
            EXPECT_EQ(mail->SendMail(), at == kQuit);
            const std::string greeting =
                trouble.connected ? ReplaceAll(kSteps[0].problem, "<first>", trouble.strLastData) : kUnreachable;
            EXPECT_EQ(mail->ErrorLog, at == kQuit ? "" : ReportOf(at, at == 0 ? greeting : kSteps[at].problem, ReplyBefore(at)));
            EXPECT_GE(w.world.clock.GetTickCount(), trouble.waits);
            EXPECT_LT(w.world.clock.GetTickCount(), trouble.waits + 1s);
            EXPECT_EQ(w.socket.State(), SocketState::Closed);
        }
    }
}

TEST(SendMail, PiecesThatArriveTogetherAreOneReply) {
    MailWorld w;
    VirtualServer& server = w.Smtp();
    for (const Step& step : kSteps) {
        Hear(server, step);
        for (const char* at = step.reply; *at != '\0'; ++at)
            server.Speak(std::string(1, *at));
        server.Speak("\r").Speak("\n");
    }
    const auto mail = w.NewMail();
    EXPECT_TRUE(mail->SendMail());
    EXPECT_EQ(mail->ErrorLog, "");
    EXPECT_EQ(server.Mistake(), "");
    EXPECT_EQ(w.states, (std::vector<int>{0, 1, 3, 4, 5}));
}

TEST(SendMail, TheMessageOnTheWire) {
    MailWorld w;
    GoOnFrom(w.Smtp(), 0);
    const auto mail = w.NewMail();
    mail->emailFromAddress = " <me@example.com";
    mail->emailFromName = "\"\"";
    mail->emailTo = "Ann you@example.com";
    EXPECT_TRUE(mail->SendMail());
    EXPECT_EQ(w.Smtp().Lines(),
              (Texts{"EHLO 10.0.0.100", "MAIL FROM:<me@example.com>", "RCPT TO:<you@example.com>", "DATA",
                     "From: \"me@example.com\" <me@example.com>", "To:Ann <you@example.com>", "Subject: Hello",
                     "Date: Sat, 21 Nov 2026 20:04:05 -0000", "Message-ID: <000000030A0B0C0D0102030405060708@monitor>", "",
                     "How are you?", ".", "QUIT"}));
}

struct Transcript {
    const char* name;
    std::function<void(VirtualServer&)> server;
    const char* emailTo;
    bool sent;
    std::string ErrorLog;
    std::chrono::seconds takes;
};

void EndOfMail(VirtualServer& s) {
    s.ExpectUpTo("DATA").Speak("354 go on\r\n").ExpectUpTo(".").Speak("250 queued\r\n").OnLine("QUIT", "221 bye\r\n");
}

const Transcript kTranscripts[] = {
    {"EHLO unknown, HELO known",
     [](VirtualServer& s) {
         s.Speak("220 old\r\n").OnLine("EHLO 10.0.0.100", "502 what\r\n").OnLine("HELO 10.0.0.100", "250 hello\r\n");
         s.OnLine("MAIL FROM:<me@example.com>", "250 ok\r\n").OnLine("RCPT TO:<you@example.com>", "251 forwarded\r\n");
         EndOfMail(s);
     },
     "you@example.com", true, "", 0s},
    {"neither is known",
     [](VirtualServer& s) {
         s.Speak("220 odd\r\n").OnLine("EHLO 10.0.0.100", "554 no\r\n").OnLine("HELO 10.0.0.100", "500 no\r\n");
     },
     "you@example.com", false,
     "SMTP server did not reply positively to client's command\r\n\r\nClient sent: HELO 10.0.0.100\r\nServer replied: 500 no Got "
     "500,502, or 554 and expected 250. Didn't receive it.",
     0s},
    {"a greeting of several lines is seen, but waited for to its end",
     [](VirtualServer& s) {
         s.Speak("220-big\r\n220 ready\r\n").OnLine("EHLO 10.0.0.100", "250-mail\r\n250-SIZE\r\n250 OK\r\n");
         s.OnLine("MAIL FROM:<me@example.com>", "250 ok\r\n").OnLine("RCPT TO:<you@example.com>", "250 ok\r\n");
         EndOfMail(s);
     },
     "you@example.com", true, "", 29s},
    {"EHLO in pieces",
     [](VirtualServer& s) {
         s.Speak("220 big\r\n").OnLine("EHLO 10.0.0.100", "250-mail\r\n").Speak("250-SIZE\r\n", 700ms).Speak("250 OK\r\n", 700ms);
         s.OnLine("MAIL FROM:<me@example.com>", "250 ok\r\n").OnLine("RCPT TO:<you@example.com>", "250 ok\r\n");
         EndOfMail(s);
     },
     "you@example.com", true, "", 1s},
    {"refused and closed in one breath", [](VirtualServer& s) { s.Speak("554 go away\r\n").Close(); }, "you@example.com", false,
     std::string(kUnreachable) + "Server replied: 554 go away ", 0s},
    {"goodbye and closed in one breath",
     [](VirtualServer& s) {
         s.Speak("220 ok\r\n").OnLine("EHLO 10.0.0.100", "250 OK\r\n").OnLine("MAIL FROM:<me@example.com>", "250 ok\r\n");
         s.ExpectUpTo("DATA")
             .Speak("354 go on\r\n")
             .ExpectUpTo(".")
             .Speak("250 queued\r\n")
             .OnLine("QUIT", "221 bye\r\n", 0ms)
             .Close();
     },
     "nobody", true, "", 0s},
    {"the second recipient refused ends it without QUIT",
     [](VirtualServer& s) {
         s.Speak("220 ok\r\n").OnLine("EHLO 10.0.0.100", "250 OK\r\n").OnLine("MAIL FROM:<me@example.com>", "250 ok\r\n");
         s.OnLine("RCPT TO:<a@b>", "250 ok\r\n").OnLine("RCPT TO:<c@d>", "550 5.1.1 unknown\r\n");
     },
     "a@b;c@d", false,
     "SMTP server did not reply positively to client's command\r\n\r\nClient sent: RCPT TO:<c@d>\r\nServer replied: 550 5.1.1 "
     "unknown TO User: Send RCPT TO:... Expected 250 or 251. Didn't receive it.",
     0s},
    {"nobody to send to, and the server decides",
     [](VirtualServer& s) {
         s.Speak("220 ok\r\n").OnLine("EHLO 10.0.0.100", "250 OK\r\n").OnLine("MAIL FROM:<me@example.com>", "250 ok\r\n");
         s.OnLine("DATA", "503 no recipients\r\n");
     },
     "nobody", false,
     "SMTP server refused to accept/relay email message\r\n\r\nClient sent: DATA\r\nServer replied: 503 no recipients ", 0s},
};

TEST(SendMail, Transcripts) {
    for (const Transcript& transcript : kTranscripts) {
        SCOPED_TRACE(transcript.name);
        MailWorld w;
        transcript.server(w.Smtp());
        const auto mail = w.NewMail();
        mail->emailTo = transcript.emailTo;
        EXPECT_EQ(mail->SendMail(), transcript.sent);
        EXPECT_EQ(mail->ErrorLog, transcript.ErrorLog);
        EXPECT_EQ(w.Smtp().Mistake(), "");
        EXPECT_GE(w.world.clock.GetTickCount(), transcript.takes);
        EXPECT_LT(w.world.clock.GetTickCount(), transcript.takes + 1s);
    }
}

TEST(SendMail, ServersThatCannotBeReached) {
    struct Case {
        const char* name;
        std::function<void(MailWorld&)> arrange;
        std::chrono::seconds takes;
    };
    const Case kCases[] = {{"no such name", [](MailWorld&) {}, 0s},
                           {"refused", [](MailWorld& w) { w.Smtp().Refuse(); }, 0s},
                           {"no answer", [](MailWorld& w) { w.Smtp().Silent(); }, 30s},
                           {"no network", [](MailWorld& w) { w.net.SetNetworkThere(false); }, 0s}};
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        MailWorld w;
        c.arrange(w);
        const auto mail = w.NewMail();
        int number = 0;
        mail->SetHandlers({.WinsockError = [&](int error, const std::string&) { number = error; }});
        EXPECT_FALSE(mail->SendMail());
        EXPECT_EQ(mail->ErrorLog, std::string(kUnreachable) + " ");
        EXPECT_EQ(number != 0, c.name == std::string("no such name") || c.name == std::string("refused"));
        EXPECT_GE(w.world.clock.GetTickCount(), c.takes);
        EXPECT_LT(w.world.clock.GetTickCount(), c.takes + 1s);
    }
}

TEST(SendMail, ASocketThatDoesNotSend) {
    MailWorld refusing;
    GoOnFrom(refusing.Smtp(), 0);
    refusing.world.After(1ms, [&] { refusing.socket.RefuseToSend(1); });
    const auto refused = refusing.NewMail();
    EXPECT_FALSE(refused->SendMail());
    EXPECT_EQ(refused->ErrorLog, "Error sending data to remote host\r\nServer replied: 220 ready Couldn't send EHLO ");

    MailWorld stuck;  // each of the eleven pieces is given up after a minute, and the server has it all the same
    GoOnFrom(stuck.Smtp().TakeNothing(), 0);
    EXPECT_TRUE(stuck.NewMail()->SendMail());
    EXPECT_GE(stuck.world.clock.GetTickCount(), 10min);

    MailWorld slow;  // 50 bytes in 40 seconds: far too slow, but it goes on
    GoOnFrom(slow.Smtp().Take(40s, 50), 0);
    const auto large = slow.NewMail();
    large->plainMessage = std::string(500, 'x');
    EXPECT_TRUE(large->SendMail());
    EXPECT_GE(slow.world.clock.GetTickCount(), 400s);

    MailWorld broken;  // the socket's error does not end the wait for the send; the wait for the reply finds it
    ServerUpTo(broken, 4).TakeNothing().Speak("354 go\r\n").Reset(1s);
    const auto cut = broken.NewMail();
    EXPECT_FALSE(cut->SendMail());
    EXPECT_EQ(cut->ErrorLog, std::string(kRefused) + "\r\nClient sent: DATA\r\nServer replied: 250 rcpt ");
}

TEST(SendMail, MidnightEndsWaitsInsteadOfHangingThem) {
    MailWorld silent(DateTime::Of(2026, 11, 21, 23, 59, 50));
    silent.Smtp().Accept(1ms);
    EXPECT_FALSE(silent.NewMail()->SendMail());
    EXPECT_GE(silent.world.clock.GetTickCount(), 29s);
    EXPECT_LE(silent.world.clock.GetTickCount(), 31s);

    MailWorld stuck(DateTime::Of(2026, 11, 21, 23, 59, 50));  // the wait begins anew at midnight, once
    GoOnFrom(stuck.Smtp().TakeNothing(), 0);
    EXPECT_TRUE(stuck.NewMail()->SendMail());
    EXPECT_GE(stuck.world.clock.GetTickCount(), 11min + 9s);
    EXPECT_LE(stuck.world.clock.GetTickCount(), 11min + 12s);
}

TEST(SendMail, TimersRunMeanwhile) {
    MailWorld w;
    GoOnFrom(ServerUpTo(w, 3).Speak("250 slow\r\n", 20s), 4);
    int ticks = 0;
    const auto timer = w.world.timers.NewTimer("beside");
    timer->SetInterval(1000ms);
    timer->OnTick([&] { ++ticks; });
    timer->SetEnabled(true);
    EXPECT_TRUE(w.NewMail()->SendMail());
    EXPECT_EQ(ticks, 20);
}

TEST(Reset, EmptiesEverythingButWhatServersOffer) {
    MailWorld w;
    const auto mail = w.NewMail();
    mail->popPort = 1110;
    mail->AttachFiles = {"/a"};
    mail->htmlMessage = mail->UserID = mail->Password = "x";
    w.Smtp()
        .Speak("220 ok\r\n")
        .OnLine("EHLO 10.0.0.100", "250-mail\r\n250 AUTH PLAIN\r\n")
        .OnLine("AUTH PLAIN", "421 no\r\n")
        .Close();
    mail->smtpport = 25;
    EXPECT_FALSE(mail->SendMail());
    mail->smtpport = 2525;
    mail->Reset();
    EXPECT_EQ(mail->smtpport, 25);
    EXPECT_EQ(mail->popPort, 110);
    EXPECT_TRUE(mail->AttachFiles.empty());
    EXPECT_EQ(mail->SmtpHost + mail->emailTo + mail->plainMessage + mail->htmlMessage + mail->UserID + mail->Password +
                  mail->ErrorLog + mail->strLastData(),
              "");
    w.Smtp().Anew().Speak("220 ok\r\n").OnLine("EHLO 10.0.0.100", "250 OK\r\n").OnLine("AUTH PLAIN", "421 no\r\n").Close();
    mail->SmtpHost = "mail.example";
    mail->smtpport = 25;
    EXPECT_FALSE(mail->SendMail());
    EXPECT_EQ(w.Smtp().Lines().at(1), "AUTH PLAIN");  // learnt from the first server
}

}  // namespace
}  // namespace korvane
