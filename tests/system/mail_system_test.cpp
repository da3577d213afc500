// Mails with nothing replaced but the operator, through real servers: who is let in, what is refused in which words, what
// arrives.
#include <gtest/gtest.h>
#include <unistd.h>

#include <QCoreApplication>
#include <chrono>
#include <ctime>
#include <functional>
#include <memory>
#include <regex>
#include <string>
#include <vector>

#include "notify/dispatcher.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/linux_guid_source.h"
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_tcp_socket.h"
#include "support/recording_operator.h"
#include "system/mail_servers.h"

namespace korvane::test {
namespace {

constexpr const char* kOwn = "operator@korvane.example";
constexpr const char* kElsewhere = "person@elsewhere.example";

/// No server here is that slow, and no wait of the conversation gives up before.
constexpr std::chrono::seconds kNoWaitRanOut{20};

constexpr const char* kNotPositive = "SMTP server did not reply positively to client's command\r\n";
constexpr const char* kNobodyThere =
    "Couldn't connect to 127.0.0.10. Are you sure this is the correct name for your server?  Try to ping it\r\n ";
constexpr const char* kCramFailed = "authenticating user on SMTP server failed\r\n";
constexpr const char* kLoginFailed = "Authenticating user on SMTP server failed\r\n";
constexpr const char* kRelayDenied =
    "SMTP server did not reply positively to client's command\r\n"
    "\r\nClient sent: RCPT TO:<person@elsewhere.example>\r\n"
    "Server replied: 554 5.7.1 <person@elsewhere.example>: Relay access denied"
    " TO User: Send RCPT TO:... Expected 250 or 251. Didn't receive it.";

std::string Masked(std::string headers) {
    for (const char* varying : {"Date: (.*)", "Message-ID: <([0-9A-F]{32}@[^>]+)>", "boundary=\"----=_([0-9A-F]{32}(_2)?)\""}) {
        if (std::smatch match; std::regex_search(headers, match, std::regex(varying)))
            headers.replace(static_cast<std::size_t>(match.position(1)), static_cast<std::size_t>(match.length(1)), "*");
    }
    return headers;
}

std::string EveryByte(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t random = 1;
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i < 256 ? i : (random = random * 1664525 + 1013904223) >> 24);
    return bytes;
}

/// How far this place is from UTC, in the form of a Date header.
std::string LocalZone() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    char zone[8];
    strftime(zone, sizeof zone, "%z", localtime_r(&now, &local));
    return zone;
}

using TakeMails = std::function<std::vector<ArrivedMail>()>;

struct Attempt {
    const char* what;
    std::string host;
    std::string to;
    const char* password;
    std::string POPhost;
    std::size_t arrived;
    std::string states;  ///< of StateChange
    std::string errorLog;
};

struct Account {
    std::string server;
    std::string user = "";
    std::string password = "";
};

struct BackupCase {
    const char* what;
    Account primary, backup;
    std::string to;
    std::size_t arrived;
    std::string trace;  ///< part of that of each mail
    std::string primaryError, finalError;
};

class MailSystem : public testing::Test {
protected:
    struct Result {
        bool sent;
        std::string states;
        std::string errorLog;
    };
    Result Send(const MailProperties& properties) {
        clsEsmtp mail({files_, clock_, events_, guids_}, esmtpSocket_);
        static_cast<MailProperties&>(mail) = properties;
        std::string states;
        mail.SetHandlers({.StateChange = [&](int state) { states += (states.empty() ? "" : " ") + std::to_string(state); }});
        const auto begun = clock_.GetTickCount();
        const bool sent = mail.SendMail();
        EXPECT_LT(clock_.GetTickCount() - begun, kNoWaitRanOut);
        return {sent, states, mail.ErrorLog};
    }

    void RunAttempts(const std::vector<Attempt>& attempts, int smtpPort, int popPort, const TakeMails& take,
                     const std::function<void()>& before) {
        for (const Attempt& attempt : attempts) {
            SCOPED_TRACE(attempt.what);
            before();
            MailProperties mail;
            mail.SmtpHost = attempt.host;
            mail.smtpport = smtpPort;
            mail.POPhost = attempt.POPhost;
            mail.popPort = popPort;
            mail.UserID = kUser;
            mail.Password = attempt.password;
            mail.emailFromAddress = "monitor@korvane.example";
            mail.emailTo = attempt.to;
            mail.plainMessage = attempt.what;
            const Result result = Send(mail);
            EXPECT_EQ(result.sent, attempt.arrived > 0);
            EXPECT_EQ(result.states, attempt.states);
            EXPECT_EQ(result.errorLog, attempt.errorLog);
            const std::vector<ArrivedMail> mails = take();
            EXPECT_EQ(mails.size(), attempt.arrived);
            for (const ArrivedMail& arrived : mails)
                EXPECT_EQ(arrived.parts.at(0).payload, attempt.what + std::string("\n"));
        }
    }

    /// `headDefect`: what the reader says of headers that no empty line ends.
    void ExpectContentsToArrive(const std::string& host, int port, const TakeMails& take, const std::string& headDefect);
    void RunBackupCases(const std::vector<BackupCase>& cases, int smtpPort, int popPort, const TakeMails& take);

    int argc_ = 1;
    char name_[5] = "test";
    char* argv_[2] = {name_, nullptr};
    QCoreApplication application_{argc_, argv_};
    PrivateFolder folder_;
    SystemClock clock_;
    QtEvents events_;
    LinuxFiles files_;
    LinuxGuidSource guids_;
    RecordingOperator person_;
    StatusLog status_{person_, clock_};
    Log log_{files_, clock_, folder_.Path(), "1.0.0"};
    QtTcpSocket esmtpSocket_;
    QtTcpSocket plainSocket_;
};

void MailSystem::ExpectContentsToArrive(const std::string& host, int port, const TakeMails& take, const std::string& headDefect) {
    MailProperties base;
    base.SmtpHost = host;
    base.smtpport = port;
    base.emailFromAddress = "monitor@korvane.example";
    base.emailTo = kOwn;
    const std::string ordinary =
        "From: \"monitor@korvane.example\" <monitor@korvane.example>\nTo: <operator@korvane.example>\nSubject: \nDate: *\n"
        "Message-ID: <*>";
    const auto multipart = [&](const std::string& kind) {
        return ordinary + "\nMIME-Version: 1.0\nContent-Type: multipart/" + kind + ";\n\tboundary=\"----=_*\"";
    };
    struct Content {
        const char* what;
        std::function<void(MailProperties&)> fill;
        std::string headers;
        std::vector<MailPart> parts;
        std::string unclosed = "";  ///< what the reader says of multiparts, none of which is closed
    };
    const std::string one = "CloseBoundaryNotFoundDefect";
    std::vector<Content> contents = {
        {"nothing", [](MailProperties&) {}, ordinary, {{"text/plain", "", "\n"}}},
        {"dots",
         [](MailProperties& mail) { mail.plainMessage = ".\r\n..\r\n.a\r\n\r\n.\r\nGr\u00fc\u00dfe."; },
         ordinary,
         {{"text/plain", "", ".\n..\n.a\n\n.\nGr\u00fc\u00dfe.\n"}}},
        {"every header",
         [](MailProperties& mail) {
             mail.emailFromName = " \"Korvane\" at \"Home\" ";
             mail.emailReplyTo = "desk@korvane.example, <night@korvane.example>";
             mail.emailCC = "chief@korvane.example";
             mail.subject = "Server \"Mail\" is DOWN: 100%";
             mail.emailXPriority = "1";
             mail.emailXSender = "monitor@korvane.example";
             mail.emailXMailer = "Brellix Automated Mailer";
             mail.emailTimeZoneAdjust = LocalZone();
             mail.plainMessage = "x\r\n";
         },
         "From: \"Korvane at Home\" <monitor@korvane.example>\nTo: <operator@korvane.example>\n"
         "Reply-To: <desk@korvane.example>, <night@korvane.example>\nCc: chief@korvane.example\n"
         "Subject: Server \"Mail\" is DOWN: 100%\nDate: *\nMessage-ID: <*>\nX-Priority: 1\n"
         "X-Sender: monitor@korvane.example\nX-Mailer: Brellix Automated Mailer",
         {{"text/plain", "", "x\n\n"}}},
        {"HTML",
         [](MailProperties& mail) {
             mail.plainMessage = ".text";
             mail.htmlMessage = "<b>text</b>\r\n.";
         },
         multipart("alternative"),
         {{"text/plain", "", ".text\n"}, {"text/html", "", "<b>text</b>\n.\n"}, {"text/plain", "", ""}},
         one},
    };
    Content attached{"attachments", {}, multipart("mixed"), {{"text/plain", "", "see files\n"}}, one};
    std::vector<std::string> paths;
    for (const std::size_t size : {0, 1, 2, 3, 4, 5, 53, 54, 55, 256, 1'000'001}) {
        const std::string name = "report " + std::to_string(size) + ".bin";
        attached.parts.push_back({"application/octet-stream", name, EveryByte(size)});
        folder_.Write(name, attached.parts.back().payload);
        paths.push_back(folder_.Path(name));
    }
    attached.fill = [&](MailProperties& mail) {
        mail.plainMessage = "see files";
        mail.AttachFiles = paths;
    };
    contents.push_back(attached);
    contents.push_back({"HTML with an attachment",
                        [&](MailProperties& mail) {
                            mail.plainMessage = "text";
                            mail.htmlMessage = "<i>";
                            mail.AttachFiles = {paths[5]};
                        },
                        multipart("mixed"),
                        {{"text/plain", "", "text\n"},
                         {"text/html", "", "<i>\n"},
                         {"text/plain", "", ""},
                         {"application/octet-stream", "report 5.bin", EveryByte(5)}},
                        one + " " + one});

    for (const Content& content : contents) {
        SCOPED_TRACE(content.what);
        MailProperties mail = base;
        content.fill(mail);
        const Result result = Send(mail);
        EXPECT_TRUE(result.sent) << result.errorLog;
        const std::vector<ArrivedMail> mails = take();
        ASSERT_EQ(mails.size(), 1U);
        const ArrivedMail& arrived = mails[0];
        EXPECT_EQ(Masked(arrived.headers), content.headers);
        EXPECT_EQ(arrived.senderAddress, "monitor@korvane.example");
        EXPECT_NEAR(static_cast<double>(arrived.date), static_cast<double>(std::time(nullptr)), 60);
        ASSERT_EQ(arrived.parts.size(), content.parts.size());
        for (std::size_t i = 0; i < arrived.parts.size(); ++i) {
            EXPECT_EQ(arrived.parts[i].type + " " + arrived.parts[i].filename,
                      content.parts[i].type + " " + content.parts[i].filename);
            EXPECT_TRUE(arrived.parts[i].payload == content.parts[i].payload) << arrived.parts[i].payload.substr(0, 200);
        }
        EXPECT_EQ(arrived.defects, content.unclosed.empty() ? "" : headDefect + content.unclosed);
    }
}

void MailSystem::RunBackupCases(const std::vector<BackupCase>& cases, int smtpPort, int popPort, const TakeMails& take) {
    SettingsCollection settings;
    Dispatcher dispatcher({esmtpSocket_, plainSocket_, clock_, events_, person_, files_, guids_, status_, log_, settings, [] {}},
                          {.smtpPort = smtpPort, .popPort = popPort});
    for (const BackupCase& each : cases) {
        SCOPED_TRACE(each.what);
        settings.setKvSettingsColValue("Server", each.primary.server);
        settings.setKvSettingsColValue("SMTPUser1", each.primary.user);
        settings.setKvSettingsColValue("SMTPPass1", each.primary.password);
        settings.setKvSettingsColValue("ServerBackup", each.backup.server);
        settings.setKvSettingsColValue("SMTPUser2", each.backup.user);
        settings.setKvSettingsColValue("SMTPPass2", each.backup.password);
        std::string primaryError;
        const SendOutcome outcome =
            dispatcher.SendWithBackup({each.to, "", "monitor@korvane.example", "Mail is DOWN", ".\r\nIt is down.\r\n"},
                                      [&](const std::string& strError) { primaryError = strError; });
        EXPECT_EQ(outcome.sent, each.finalError.empty());
        EXPECT_EQ(primaryError, each.primaryError);
        EXPECT_EQ(outcome.strError, each.finalError);
        const std::vector<ArrivedMail> mails = take();
        EXPECT_EQ(mails.size(), each.arrived);
        for (const ArrivedMail& mail : mails) {
            EXPECT_NE(mail.trace.find(each.trace), std::string::npos) << mail.trace;
            EXPECT_NE(mail.headers.find("\nSubject: Mail is DOWN " + clock_.Now().DateText()), std::string::npos) << mail.headers;
            EXPECT_EQ(mail.senderAddress, "monitor@korvane.example");
            EXPECT_EQ(mail.parts.at(0).payload, ".\nIt is down.\n\n");
        }
    }
}

// The servers are started by the first test that runs, and stay for the others.
class PostfixSystem : public MailSystem {
protected:
    struct Servers {
        LoginServer logins{1};
        Postfix postfix{logins};
    };
    void SetUp() override {
        KORVANE_NEEDS("postfix");
        KORVANE_NEEDS("python3");
        KORVANE_NEEDS("dovecot");
        if (geteuid() != 0) GTEST_SKIP() << "Postfix starts only as root";
        if (!servers) servers = std::make_unique<Servers>();
    }
    static void TearDownTestSuite() { servers.reset(); }
    static std::vector<ArrivedMail> Take() { return servers->postfix.TakeMails(); }
    inline static std::unique_ptr<Servers> servers;
};

TEST_F(PostfixSystem, LoginsAndRefusals) {
    const std::string secondRefused =
        std::string(kNotPositive) +
        "\r\nClient sent: RCPT TO:<nobody@korvane.example>\r\n"
        "Server replied: 550 5.1.1 <nobody@korvane.example>: Recipient address rejected: User unknown in "
        "virtual mailbox table TO User: Send RCPT TO:... Expected 250 or 251. Didn't receive it.";
    RunAttempts(
        {
            {"CRAM-MD5 alone", Postfix::kCramMD5, kElsewhere, kPassword, "", 1, "0 1 2 3 4 5", ""},
            {"LOGIN alone", Postfix::kLogin, kElsewhere, kPassword, "", 1, "0 1 2 3 4 5", ""},
            {"PLAIN alone", Postfix::kPlain, kElsewhere, kPassword, "", 1, "0 1 2 3 4 5", ""},
            {"the best of all", Postfix::kAllLogins, kElsewhere, kPassword, "", 1, "0 1 2 3 4 5", ""},
            {"wrong password with all", Postfix::kAllLogins, kElsewhere, "wrong", "", 0, "0 1 2 2 2 5",
             std::string(kCramFailed) + kLoginFailed + kLoginFailed + kRelayDenied},
            {"wrong password, but the mail is for this server", Postfix::kLogin, kOwn, "wrong", "", 1, "0 1 2 3 4 5",
             kLoginFailed},
            {"no login and no relaying", Postfix::kNoRelay, kElsewhere, kPassword, "", 0, "0 1 5", kRelayDenied},
            {"two recipients", Postfix::kNoRelay, "operator@korvane.example;second@korvane.example", kPassword, "", 2,
             "0 1 3 4 5", ""},
            {"the second of them unknown", Postfix::kTrusting, "person@elsewhere.example, nobody@korvane.example", kPassword, "",
             0, "0 1 5", secondRefused},
            {"no POP login before", Postfix::kAfterPop, kElsewhere, kPassword, "", 0, "0 1 5", kRelayDenied},
            {"POP login before", Postfix::kAfterPop, kElsewhere, kPassword, "127.0.0.1", 1, "7 8 9 10 11 0 1 3 4 5", ""},
            {"wrong password at POP", Postfix::kAfterPop, kElsewhere, "wrong", "127.0.0.1", 0, "7 8 9 10 11 0 1 5",
             std::string("Unable to authorize POP server, server refused password\r\n") + kRelayDenied},
            {"no POP server, but a login", Postfix::kAllLogins, kElsewhere, kPassword, kClosed, 1, "7 11 0 1 2 3 4 5",
             "Unable to connect to POP host for authorization\r\n"},
            {"nobody there", kClosed, kElsewhere, kPassword, "", 0, "0 5", kNobodyThere},
        },
        servers->postfix.port, servers->logins.pop3, Take, [] { servers->logins.Forget(); });
}

TEST_F(PostfixSystem, WhatIsSentArrives) {
    ExpectContentsToArrive(Postfix::kTrusting, servers->postfix.port, Take, "");  // it puts the empty line there
}

TEST_F(PostfixSystem, BackupAfterRefusal) {
    const std::string relayDenied = "Expected: 250 Recieved: 554 5.7.1 <person@elsewhere.example>: Relay access denied\r\n";
    const std::string wrongPassword = std::string(kLoginFailed) + kRelayDenied;
    const Account trusting{Postfix::kTrusting}, noRelay{Postfix::kNoRelay};
    const Account login{Postfix::kAllLogins, kUser, kPassword}, wrong{Postfix::kLogin, kUser, "wrong"};
    const std::string plain = "(Postfix) with SMTP id", esmtp = "(Postfix) with ESMTPA id";
    const std::string both = "operator@korvane.example person@elsewhere.example";
    RunBackupCases(
        {
            {"no login needed", trusting, login, kElsewhere, 1, plain, "", ""},
            {"relay refused, then a login", noRelay, login, kElsewhere, 1, esmtp, relayDenied, ""},
            {"login refused, then none", wrong, trusting, kElsewhere, 1, plain, wrongPassword, ""},
            {"both refuse", wrong, noRelay, kElsewhere, 0, "", wrongPassword, relayDenied},
            {"who came before the refused one gets a second mail", noRelay, trusting, both, 3, plain, relayDenied, ""},
        },
        servers->postfix.port, servers->logins.pop3, Take);
}

class AiosmtpdSystem : public MailSystem {
protected:
    void SetUp() override {
        KORVANE_NEEDS("aiosmtpd");
        if (!server) server = std::make_unique<Aiosmtpd>();
    }
    static void TearDownTestSuite() { server.reset(); }
    static std::vector<ArrivedMail> Take() { return server->TakeMails(); }
    static std::string Refused(const std::string& command, const std::string& reply, const std::string& note) {
        return kNotPositive + ("\r\nClient sent: " + command + "\r\nServer replied: " + reply + " " + note);
    }
    inline static std::unique_ptr<Aiosmtpd> server;
};

TEST_F(AiosmtpdSystem, LoginsAndRefusals) {
    const std::string senderNote = "Sent MAIL FROM... Expected 250. Didn't receive it.";
    const std::string recipientNote = "TO User: Send RCPT TO:... Expected 250 or 251. Didn't receive it.";
    const std::string sender = "MAIL FROM:<monitor@korvane.example>";
    RunAttempts(
        {
            {"no login", Aiosmtpd::kOpen, kElsewhere, kPassword, "", 1, "0 1 3 4 5", ""},
            {"LOGIN first", Aiosmtpd::kLogins, kElsewhere, kPassword, "", 1, "0 1 2 3 4 5", ""},
            {"LOGIN alone", Aiosmtpd::kLogin, kElsewhere, kPassword, "", 1, "0 1 2 3 4 5", ""},
            {"PLAIN alone", Aiosmtpd::kPlain, kElsewhere, kPassword, "", 1, "0 1 2 3 4 5", ""},
            {"wrong password", Aiosmtpd::kLogins, kElsewhere, "wrong", "", 0, "0 1 2 2 5",
             std::string(kLoginFailed) + kLoginFailed + Refused(sender, "530 5.7.0 Authentication required", senderNote)},
            {"sender refused", Aiosmtpd::kClosing, kElsewhere, kPassword, "", 0, "0 1 5",
             Refused(sender, "421 4.3.2 System not accepting network messages", senderNote)},
            {"recipient refused", Aiosmtpd::kFull, kElsewhere, kPassword, "", 0, "0 1 5",
             Refused("RCPT TO:<person@elsewhere.example>", "452 4.3.1 Insufficient system storage", recipientNote)},
            {"message refused", Aiosmtpd::kCritical, kElsewhere, kPassword, "", 0, "0 1 3 5",
             "EOM: SMTP server refused to accept/relay email message\r\n\r\nClient sent: .\r\n"
             "Server replied: 554 5.6.0 This is not welcome "},
            {"no recipient", Aiosmtpd::kOpen, "operator", kPassword, "", 0, "0 1 5",
             "SMTP server refused to accept/relay email message\r\n\r\nClient sent: DATA\r\n"
             "Server replied: 503 Error: need RCPT command "},
        },
        server->port, 1, Take, [] {});
}

TEST_F(AiosmtpdSystem, WhatIsSentArrives) {
    ExpectContentsToArrive(Aiosmtpd::kOpen, server->port, Take, "MissingHeaderBodySeparatorDefect ");
}

TEST_F(AiosmtpdSystem, BackupAfterRefusal) {
    const std::string full = "Expected: 250 Recieved: 452 4.3.1 Insufficient system storage\r\n";
    const Account open{Aiosmtpd::kOpen}, login{Aiosmtpd::kLogins, kUser, kPassword};
    const Account gone{kClosed, kUser, kPassword}, noRoom{Aiosmtpd::kFull};
    RunBackupCases(
        {
            {"no backup needed", open, login, kOwn, 1, Aiosmtpd::kOpen, "", ""},
            {"nobody there", gone, open, kOwn, 1, Aiosmtpd::kOpen, kNobodyThere, ""},
            {"disk full", noRoom, login, kOwn, 1, Aiosmtpd::kLogins, full, ""},
            {"both refuse", gone, noRoom, kOwn, 0, "", kNobodyThere, full},
            {"no backup set", noRoom, {"none"}, kOwn, 0, "", full, full},
        },
        server->port, 1, Take);
}

TEST_F(AiosmtpdSystem, ThroughDovecot) {
    KORVANE_NEEDS("dovecot");
    const LoginServer dovecot(server->port);
    RunAttempts(
        {
            {"all mechanisms", "127.0.0.1", kElsewhere, kPassword, "", 1, "0 1 2 3 4 5", ""},
            {"after a POP login", "127.0.0.1", kElsewhere, kPassword, "127.0.0.1", 1, "7 8 9 10 11 0 1 2 3 4 5", ""},
            {"wrong password", "127.0.0.1", kElsewhere, "wrong", "", 0, "0 1 2 2 2 5",
             std::string(kCramFailed) + kLoginFailed + kLoginFailed +
                 Refused("MAIL FROM:<monitor@korvane.example>", "530 5.7.0 Authentication required.",
                         "Sent MAIL FROM... Expected 250. Didn't receive it.")},
        },
        dovecot.submission, dovecot.pop3, Take, [] {});
}

}  // namespace
}  // namespace korvane::test
