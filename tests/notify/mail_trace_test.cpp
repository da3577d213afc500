// What somebody sees who looks on while a mail is sent: every line, but no password and no message.
#include "notify/mail_trace.h"

#include <gtest/gtest.h>

#include "notify/dispatcher.h"
#include "notify/mail_world.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

struct RecordingTrace : MailTrace {
    explicit RecordingTrace(const RecordingOperator& looksOn) : person(looksOn) {}
    void setMsg(const std::string& sent) override { lines.push_back((person.waitCursor ? "> " : "end: ") + sent); }
    void setReceiveMsg(const std::string& received) override { lines.push_back("< " + received); }
    const RecordingOperator& person;
    Texts lines;
};

struct TraceWorld : MailWorld {
    std::unique_ptr<Dispatcher> NewDispatcher(MailTrace* looksOn) {
        return std::make_unique<Dispatcher>(Dispatcher::Ports{socket, plainSocket, world.clock, world.events, person, files,
                                                              guids, status, log, settings, [] {}, looksOn},
                                            Dispatcher::Options{});
    }

    /// A mail through mail.example, with a login where there is a user.
    bool Send(const std::string& user, const std::string& popHost, MailTrace* looksOn) {
        settings.setKvSettingsColValue("Server", "mail.example");
        settings.setKvSettingsColValue("Zone", "EST");
        settings.setKvSettingsColValue("SMTPUser1", user);
        settings.setKvSettingsColValue("SMTPPass1", "tanstaaftanstaaf");
        settings.setKvSettingsColValue("SMTPPopHost1", popHost);
        const Notification mail{"you@example.com", "", "me@example.com", "Hello", "The body is private."};
        return NewDispatcher(looksOn)->SendThrough(MailServer::Primary, mail).sent;
    }

    /// An SMTP server that offers `login` and plays its lines; any other command is fine with it.
    void Serve(const std::string& offers, const std::vector<std::pair<std::string, std::string>>& login) {
        Smtp().Speak("220 ready\r\n").OnLine("EHLO 10.0.0.100", "250-mail\r\n250 AUTH " + offers + "\r\n");
        for (const auto& [line, answer] : login)
            Smtp().OnLine(line, answer + "\r\n");
        Smtp().OnLine("MAIL FROM:<me@example.com>", "250 sender\r\n").OnLine("RCPT TO:<you@example.com>", "250 rcpt\r\n");
        Smtp().OnLine("DATA", "354 go on\r\n").ExpectUpTo(".").Speak("250 queued\r\n").OnLine("QUIT", "221 bye\r\n");
    }

    RecordingTrace trace{person};
};

/// The size of the message is the only thing of it that is told.
Texts WithoutSize(Texts lines) {
    for (std::string& line : lines) {
        if (line.starts_with("> (") && line.ends_with(" bytes of the message)")) line = "> (bytes)";
    }
    return lines;
}

TEST(MailTrace, ALoginAtBothServersWithoutTheNameAndThePassword) {
    TraceWorld w;
    w.Pop().Speak("+OK ready\r\n").OnLine("USER tim", "+OK\r\n").OnLine("PASS tanstaaftanstaaf", "+OK in\r\n");
    w.Pop().OnLine("STAT", "+OK 0 0\r\n").OnLine("QUIT", "+OK bye\r\n");
    w.Serve("LOGIN",
            {{"AUTH LOGIN", "334 VXNlcm5hbWU6"}, {"dGlt", "334 UGFzc3dvcmQ6"}, {"dGFuc3RhYWZ0YW5zdGFhZg==", "235 welcome"}});
    EXPECT_TRUE(w.Send("tim", "mail.example", &w.trace));
    EXPECT_EQ(WithoutSize(w.trace.lines), (Texts{"< +OK ready",
                                                 "> USER tim",
                                                 "< +OK",
                                                 "> [not shown]",
                                                 "< +OK in",
                                                 "> STAT",
                                                 "< +OK 0 0",
                                                 "> QUIT",
                                                 "< +OK bye",
                                                 "< 220 ready",
                                                 "> EHLO 10.0.0.100",
                                                 "< 250-mail\r\n250 AUTH LOGIN",
                                                 "> AUTH LOGIN",
                                                 "< 334 VXNlcm5hbWU6",
                                                 "> [not shown]",
                                                 "< 334 UGFzc3dvcmQ6",
                                                 "> [not shown]",
                                                 "< 235 welcome",
                                                 "> MAIL FROM:<me@example.com>",
                                                 "< 250 sender",
                                                 "> RCPT TO:<you@example.com>",
                                                 "< 250 rcpt",
                                                 "> DATA",
                                                 "< 354 go on",
                                                 "> (bytes)",
                                                 "> .",
                                                 "< 250 queued",
                                                 "> QUIT",
                                                 "< 221 bye"}));
}

TEST(MailTrace, TheOtherMechanismsShowNothingOfThePasswordEither) {
    TraceWorld w;
    w.Serve("CRAM-MD5 PLAIN", {{"AUTH CRAM-MD5", "334 PDE4OTYuNjk3MTcwOTUyQHBvc3RvZmZpY2UucmVzdG9uLm1jaS5uZXQ+"},
                               {"dGltIGI5MTNhNjAyYzdlZGE3YTQ5NWI0ZTZlNzMzNGQzODkw", "535 no"},
                               {"AUTH PLAIN", "334 "},
                               {"AHRpbQB0YW5zdGFhZnRhbnN0YWFm", "235 welcome"}});
    w.Send("tim", "", &w.trace);
    ASSERT_GE(w.trace.lines.size(), 11u);
    EXPECT_EQ(Texts(w.trace.lines.begin() + 3, w.trace.lines.begin() + 11),
              (Texts{"> AUTH CRAM-MD5", "< 334 PDE4OTYuNjk3MTcwOTUyQHBvc3RvZmZpY2UucmVzdG9uLm1jaS5uZXQ+", "> [not shown]",
                     "< 535 no", "> AUTH PLAIN", "< 334 ", "> [not shown]", "< 235 welcome"}));
}

TEST(MailTrace, ThePlainMailer) {
    TraceWorld w;
    w.Smtp()
        .Speak("220 ready\r\n")
        .OnLine("HELO monitor", "250 hello\r\n")
        .OnLine("mail from:<me@example.com>", "250 sender\r\n");
    w.Smtp().OnLine("rcpt to:<you@example.com>", "250 rcpt\r\n").OnLine("data", "354 go on\r\n");
    w.Smtp().ExpectUpTo(".").Speak("552 too much\r\n");
    EXPECT_FALSE(w.Send("", "", &w.trace));
    EXPECT_EQ(WithoutSize(w.trace.lines),
              (Texts{"< 220 ready", "> HELO monitor", "< 250 hello", "> mail from:<me@example.com>", "< 250 sender",
                     "> rcpt to:<you@example.com>", "< 250 rcpt", "> data", "< 354 go on", "> (bytes)", "> .", "< 552 too much",
                     "end: Expected: 250 Recieved: 552 too much\r\n"}));
}

TEST(MailTrace, WhatAServerSaysThatIsNoReplyIsShownTooAndNoMoreOfAFloodThanAPersonReads) {
    TraceWorld w;
    w.Smtp().Speak("HTTP/1.1 400 " + std::string(10'000, 'x') + "\r\n");
    EXPECT_FALSE(w.Send("tim", "", &w.trace));
    ASSERT_EQ(w.trace.lines.size(), 1u);
    EXPECT_TRUE(w.trace.lines[0].starts_with("< HTTP/1.1 400 xx"));
    EXPECT_EQ(w.trace.lines[0].size(), 2 + kMostOfAReply);
}

}  // namespace
}  // namespace korvane
