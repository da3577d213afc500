// Logging in: at the SMTP server with each mechanism, and at a POP server before.
#include <gtest/gtest.h>

#include "base/text.h"
#include "notify/mail_world.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using States = std::vector<int>;

/// What the client sends and what the server answers, in turns; a blank answer is none.
using Lines = std::vector<std::pair<const char*, const char*>>;

struct Login {
    const char* name;
    const char* offers;
    Lines lines;
    bool again = false;  ///< the handler gives "right" as the password
    bool sent = true;
    const char* ErrorLog = "";
    States states = {0, 1, 2, 3, 4, 5};
    std::chrono::seconds takes{0};
};

const char* const kRefusedReport =
    "SMTP server did not reply positively to client's command\r\n\r\nClient sent: MAIL FROM:<me@example.com>\r\n"
    "Server replied: 530 log in first Sent MAIL FROM... Expected 250. Didn't receive it.";
const char* const kFailed = "Authenticating user on SMTP server failed\r\n";

const Login kLogins[] = {
    // The example of RFC 2195.
    {"CRAM-MD5",
     "CRAM-MD5 LOGIN PLAIN",
     {{"AUTH CRAM-MD5", "334 PDE4OTYuNjk3MTcwOTUyQHBvc3RvZmZpY2UucmVzdG9uLm1jaS5uZXQ+"},
      {"dGltIGI5MTNhNjAyYzdlZGE3YTQ5NWI0ZTZlNzMzNGQzODkw", "235 welcome"}}},
    {"LOGIN",
     "LOGIN PLAIN",
     {{"AUTH LOGIN", "334 VXNlcm5hbWU6"}, {"dGlt", "334 UGFzc3dvcmQ6"}, {"dGFuc3RhYWZ0YW5zdGFhZg==", "235 welcome"}}},
    {"PLAIN", "PLAIN", {{"AUTH PLAIN", "334 "}, {"AHRpbQB0YW5zdGFhZnRhbnN0YWFm", "235 welcome"}}},
    {"nothing that we know", "GSSAPI", {}, false, true, "", {0, 1, 3, 4, 5}},
    {"one mechanism after the other, and the mail is taken all the same",
     "CRAM-MD5 LOGIN PLAIN",
     {{"AUTH CRAM-MD5", "535 no"},
      {"AUTH LOGIN", "334 VXNlcm5hbWU6"},
      {"dGlt", "535 no such user"},
      {"AUTH PLAIN", "334 "},
      {"AHRpbQB0YW5zdGFhZnRhbnN0YWFm", "535 no"}},
     false,
     true,
     "authenticating user on SMTP server failed\r\nAuthenticating user on SMTP server failed\r\nAuthenticating user on SMTP "
     "server failed\r\n",
     {0, 1, 2, 2, 2, 3, 4, 5}},
    {"a mechanism that is out of order",
     "CRAM-MD5 PLAIN",
     {{"AUTH CRAM-MD5", "454 later"}, {"AUTH PLAIN", "504 never"}},
     false,
     true,
     "",
     {0, 1, 2, 2, 3, 4, 5}},
    {"a challenge that nobody can read",
     "CRAM-MD5",
     {{"AUTH CRAM-MD5", "334 !!"}, {"dGltIGJhMDAxNjU5MWQ2MTI2NjIzNDhiMjBiY2Q3ZjQ0Mzlh", "501 no"}}},
    {"a question that LOGIN does not have is not answered",
     "LOGIN",
     {{"AUTH LOGIN", "334 dXNlcg=="}},
     false,
     true,
     "",
     {0, 1, 2, 3, 4, 5},
     30s},
    {"a wrong password, and the server wants one",
     "LOGIN",
     {{"AUTH LOGIN", "334 VXNlcm5hbWU6"},
      {"dGlt", "334 UGFzc3dvcmQ6"},
      {"dGFuc3RhYWZ0YW5zdGFhZg==", "535 wrong"},
      {"MAIL FROM:<me@example.com>", "530 log in first"}},
     false,
     false,
     kFailed,
     {0, 1, 2, 5}},
    {"a handler with a better password",
     "LOGIN",
     {{"AUTH LOGIN", "334 VXNlcm5hbWU6"},
      {"dGlt", "334 UGFzc3dvcmQ6"},
      {"dGFuc3RhYWZ0YW5zdGFhZg==", "535 wrong"},
      {"*", "501 cancelled"},
      {"AUTH LOGIN", "334 VXNlcm5hbWU6"},
      {"dGlt", "334 UGFzc3dvcmQ6"},
      {"cmlnaHQ=", "235 welcome"}},
     true,
     true,
     kFailed,
     {0, 1, 2, 2, 3, 4, 5}},
};

void Play(VirtualServer& server, const Lines& lines) {
    for (const auto& [line, answer] : lines)
        server.OnLine(line, answer + std::string("\r\n"));
}

TEST(Authentication, Transcripts) {
    for (const Login& login : kLogins) {
        SCOPED_TRACE(login.name);
        MailWorld w;
        VirtualServer& server = w.Smtp();
        server.Speak("220 ready\r\n").OnLine("EHLO 10.0.0.100", std::string("250-mail\r\n250 AUTH ") + login.offers + "\r\n");
        Play(server, login.lines);
        if (login.sent) {
            Play(server, {{"MAIL FROM:<me@example.com>", "250 ok"}, {"RCPT TO:<you@example.com>", "250 ok"}, {"DATA", "354 go"}});
            server.ExpectUpTo(".").Speak("250 queued\r\n");
            Play(server, {{"QUIT", "221 bye"}});
        }
        const auto mail = w.NewMail();
        mail->UserID = "tim";
        mail->Password = "tanstaaftanstaaf";
        clsEsmtp::Handlers handlers{.StateChange = [&](int state) { w.states.push_back(state); }};
        if (login.again) {
            handlers.RequestESMTPLogin = [](std::string&, std::string& Password, bool& Cancel) {
                EXPECT_TRUE(Cancel);
                Cancel = false;
                Password = "right";
            };
        }
        mail->SetHandlers(handlers);
        EXPECT_EQ(mail->SendMail(), login.sent);
        EXPECT_EQ(mail->ErrorLog, login.sent ? login.ErrorLog : std::string(login.ErrorLog) + kRefusedReport);
        EXPECT_EQ(server.Mistake(), "");
        EXPECT_EQ(w.states, login.states);
        EXPECT_GE(w.world.clock.GetTickCount(), login.takes);
        EXPECT_LT(w.world.clock.GetTickCount(), login.takes + 1s);
    }
}

TEST(Authentication, TheReportOfAHangUpShowsNoPassword) {
    MailWorld w;
    w.Smtp().Speak("220 ready\r\n").OnLine("EHLO 10.0.0.100", "250-mail\r\n250 AUTH PLAIN\r\n").OnLine("AUTH PLAIN", "334 \r\n");
    w.Smtp().OnLine("AHRpbQBwdw==", "535 no\r\n").Close();
    const auto mail = w.NewMail();
    mail->UserID = "tim";
    mail->Password = "pw";
    EXPECT_FALSE(mail->SendMail());
    EXPECT_TRUE(Holds(mail->ErrorLog, "\r\nClient sent: [not shown]\r\nServer replied: 535 no")) << mail->ErrorLog;
}

TEST(Authentication, TheOldFormWithAnEqualsSignOffersNothing) {
    MailWorld w;
    w.Smtp().Speak("220 ready\r\n").OnLine("EHLO 10.0.0.100", "250-mail\r\n250-AUTH=LOGIN PLAIN\r\n250 OK\r\n");
    Play(w.Smtp(), {{"MAIL FROM:<me@example.com>", "530 no"}});
    EXPECT_FALSE(w.NewMail()->SendMail());
    EXPECT_EQ(w.states, (States{0, 1, 5}));
}

TEST(Authentication, ACutInTheMiddleEndsIt) {
    MailWorld w;
    w.Smtp().Speak("220 ready\r\n").OnLine("EHLO 10.0.0.100", "250-mail\r\n250 AUTH CRAM-MD5 PLAIN\r\n");
    w.Smtp().Expect("AUTH CRAM-MD5").Reset();
    const auto mail = w.NewMail();
    EXPECT_FALSE(mail->SendMail());
    EXPECT_EQ(
        mail->ErrorLog,
        "Remote host disconnected\r\n\r\nClient sent: AUTH CRAM-MD5\r\nServer replied: 250-mail\r\n250 AUTH CRAM-MD5 PLAIN ");
}

struct PopLogin {
    const char* name;
    std::function<void(VirtualServer&)> server;
    const char* ErrorLog;
    States states;
    std::chrono::seconds takes;
};

const PopLogin kPopLogins[] = {
    {"good",
     [](VirtualServer& s) {
         s.Speak("+OK ready\r\n");
         Play(s, {{"USER tim", "+OK"}, {"PASS tanstaaf", "+OK in"}, {"STAT", "+OK 0 0"}, {"QUIT", "+OK bye"}});
     },
     "",
     {7, 8, 9, 10, 11},
     0s},
    {"not there", [](VirtualServer& s) { s.Refuse(); }, "Unable to connect to POP host for authorization\r\n", {7, 11}, 0s},
    {"silent", [](VirtualServer& s) { s.Accept(1ms); }, "Unable to connect to POP host for authorization\r\n", {7, 11}, 60s},
    {"an SMTP server in its place",
     [](VirtualServer& s) { s.Speak("220 smtp\r\n"); },
     "Unable to connect to POP host for authorization\r\n",
     {7, 11},
     0s},
    {"no such user",
     [](VirtualServer& s) {
         s.Speak("+OK ready\r\n");
         Play(s, {{"USER tim", "-ERR who"}, {"QUIT", "+OK bye"}});
     },
     "Unable to authorize POP server, server refused user\r\n",
     {7, 8, 9, 10, 11},
     0s},
    {"wrong password",
     [](VirtualServer& s) {
         s.Speak("+OK ready\r\n");
         Play(s, {{"USER tim", "+OK"}, {"PASS tanstaaf", "-ERR no"}, {"QUIT", "+OK bye"}});
     },
     "Unable to authorize POP server, server refused password\r\n",
     {7, 8, 9, 10, 11},
     0s},
};

TEST(PopBeforeSmtp, ItsFailureDoesNotStopTheMail) {
    for (const PopLogin& login : kPopLogins) {
        SCOPED_TRACE(login.name);
        MailWorld w;
        login.server(w.Pop());
        w.Smtp().Speak("220 ready\r\n").ExpectUpTo("EHLO 10.0.0.100").Speak("250 ok\r\n");
        Play(w.Smtp(), {{"MAIL FROM:<me@example.com>", "250 ok"}, {"RCPT TO:<you@example.com>", "250 ok"}, {"DATA", "354 go"}});
        w.Smtp().ExpectUpTo(".").Speak("250 queued\r\n").OnLine("QUIT", "221 bye\r\n");
        const auto mail = w.NewMail();
        mail->POPhost = "mail.example";
        mail->UserID = "tim";
        mail->Password = "tanstaaf";
        EXPECT_TRUE(mail->SendMail());
        EXPECT_EQ(mail->ErrorLog, login.ErrorLog);
        EXPECT_EQ(w.Pop().Mistake(), "");
        States expected = login.states;
        for (const int state : {0, 1, 3, 4, 5})
            expected.push_back(state);
        EXPECT_EQ(w.states, expected);
        EXPECT_GE(w.world.clock.GetTickCount(), login.takes);
        EXPECT_LT(w.world.clock.GetTickCount(), login.takes + 1s);
    }
}

}  // namespace
}  // namespace korvane
