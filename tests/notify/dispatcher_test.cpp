// Notifications: who gets a mail through which server and mailer, and what the person at the desk hears of it.
#include "notify/dispatcher.h"

#include <gtest/gtest.h>

#include <optional>

#include "base/text.h"
#include "notify/mail_world.h"
#include "support/virtual_mail_server.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

struct DispatcherWorld : MailWorld {
    DispatcherWorld() {
        Set("Server", "mail.example");
        Set("Zone", " EST ");
    }

    void Set(const char* key, const char* value) { settings.setKvSettingsColValue(key, value); }

    Texts StatusWith(const char* part) {
        Texts found;
        for (const std::string& text : person.StatusTexts()) {
            if (Holds(text, part)) found.push_back(text);
        }
        return found;
    }

    VirtualMailServer primary{Smtp()};
    VirtualMailServer backup{net.Host("backup.example").Port(25)};
    int stops = 0;
    Dispatcher dispatcher{
        {socket, plainSocket, world.clock, world.events, person, files, guids, status, log, settings, [this] { ++stops; }},
        {.contactAddress = "contact@korvane.example"}};
};

Texts RecipientsOf(const VirtualMailServer& server) {
    Texts all;
    for (const auto& mail : server.mails)
        all.insert(all.end(), mail.recipients.begin(), mail.recipients.end());
    return all;
}

TEST(SendEmail, OneMailToEachRecipientAndTheRestIsLostWithTheFirstFailure) {
    struct Case {
        const char* to1;
        const char* to2;
        Texts mails;
        bool sent;
        Texts status;
    };
    const std::string kLong = "a@" + std::string(2000, 'x');
    const Case kCases[] = {
        {"a@x, b@y",
         "c@z",
         {"<a@x>", "<b@y>", "<c@z>"},
         true,
         {"a@x;b@y sent successfully.", "a@x;b@y sent successfully.", "a@x;b@y sent successfully."}},
        {"a@x,\r\nb@y;", "", {"<a@x>", "<b@y>"}, true, {"a@x;b@y; sent successfully.", "a@x;b@y; sent successfully."}},
        {"a@x bad@y c@z",
         "",
         {"<a@x>"},
         false,
         {"a@x;bad@y;c@z sent successfully.", "a@x;bad@y;c@z Email failed because Expected: 250 Recieved: 550 5.7.1 refused : "}},
        {"contact@korvane.example", "", {"<contact@korvane.example>"}, true, {}},
        {kLong.c_str(), "", {"<" + kLong + ">"}, true, {kLong + " sent successfully."}},
        {"", "b@y", {}, false, {}},
        {" ; ", "", {}, false, {}},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.to1);
        DispatcherWorld w;
        w.primary.refuse = [&](const std::string& line) {
            EXPECT_TRUE(line != "rcpt to:<c@z>" || w.person.progressValue == 67);
            return line == "rcpt to:<bad@y>";
        };
        EXPECT_EQ(w.dispatcher.SendThrough(MailServer::Primary, {c.to1, c.to2, "me@example.com", "Subject", "Body"}).sent,
                  c.sent);
        EXPECT_EQ(RecipientsOf(w.primary), c.mails);
        Texts said = w.StatusWith("sent successfully");
        for (const std::string& text : w.StatusWith("failed because"))
            said.push_back(text);
        EXPECT_EQ(said, c.status);
        EXPECT_EQ(w.person.progressValue, 0);
        EXPECT_FALSE(w.person.waitCursor);
    }
}

TEST(SendEmail, SenderNameAndSubjectHaveDefaults) {
    struct Case {
        const char* from;
        const char* subject;
        const char* headerFrom;
        const char* headerSubject;
    };
    const Case kCases[] = {
        {"me@x", "Hi", "From: \"me@x\" <me@x>\r\n", "Subject: Hi 11/21/2026 3:04:05 PM\r\n"},
        {"", "", "From: \" Korvane Notifier\" <a@x>\r\n", "Subject: Korvane Notify 11/21/2026 3:04:05 PM\r\n"},
        {"The monitor", "Two\r\nBcc: all@x", "From: \"The monitor\" <a@x>\r\n",
         "Subject: Two Bcc: all@x 11/21/2026 3:04:05 PM\r\n"},
    };
    for (const Case& c : kCases) {
        DispatcherWorld w;
        ASSERT_TRUE(w.dispatcher.SendThrough(MailServer::Primary, {"a@x", "b@y", c.from, c.subject, ""}).sent);
        for (const auto& mail : w.primary.mails) {
            EXPECT_TRUE(Holds(mail.text, c.headerFrom)) << mail.text;
            EXPECT_TRUE(Holds(mail.text, c.headerSubject)) << mail.text;
            EXPECT_TRUE(Holds(mail.text, "15:04:05 EST\r\n")) << mail.text;
        }
    }
}

TEST(SendEmail, ABodyCannotEndTheMail) {
    for (const char* user : {"", "tim"}) {
        DispatcherWorld w;
        w.Set("SMTPUser1", user);
        ASSERT_TRUE(w.dispatcher.SendThrough(MailServer::Primary, {"a@x", "", "me@x", "Hi", "a\n.\nb\x1B\r.\r\n.\r\nquit"}).sent);
        EXPECT_TRUE(w.primary.mails.at(0).text.ends_with("\r\n\r\na\r\n.\r\nb \r\n.\r\n.\r\nquit\r\n"))
            << w.primary.mails.at(0).text;
    }
}

TEST(SendEmail, ALoginNameChoosesTheMailerThatKnowsLogins) {
    DispatcherWorld w;
    w.Set("SMTPUser1", "tim");
    w.Set("SMTPPass1", "secret");
    EXPECT_TRUE(w.dispatcher.SendThrough(MailServer::Primary, {"a@x", "", "", "Hi\nthere", ".\r\nBody"}).sent);
    EXPECT_EQ(w.primary.logins, Texts{"AHRpbQBzZWNyZXQ="});
    EXPECT_EQ(
        w.primary.mails.at(0).text,
        "From: \"a@x\" <a@x>\r\nTo:<a@x>\r\nSubject: Hi there 11/21/2026 3:04:05 PM\r\nDate: Sat, 21 Nov 2026 15:04:05 EST\r\n"
        "Message-ID: <000000030A0B0C0D0102030405060708@monitor>\r\nX-Priority: 1\r\nX-Mailer: Brellix Automated Mailer\r\n\r\n"
        ".\r\nBody\r\n");
    EXPECT_EQ(w.person.StatusTexts(), (Texts{"Connecting to ESMTP Server mail.example", "Connected to ESMTP Server mail.example",
                                             "Authorizing ESMTP Server: User=tim Password=secret", "Sending Mail", "Mail Sent",
                                             "disconnecting from ESMTP Server", "a@x sent successfully."}));
    EXPECT_FALSE(w.person.waitCursor);

    w.primary.refuse = [](const std::string& line) { return line.starts_with("MAIL"); };
    const SendOutcome refused = w.dispatcher.SendThrough(MailServer::Primary, {"a@x", "", "", "Hi", ""});
    EXPECT_FALSE(refused.sent);
    EXPECT_TRUE(
        refused.strError.ends_with("Server replied: 550 5.7.1 refused Sent MAIL FROM... Expected 250. Didn't receive it."));
}

TEST(SendWithBackup, TheBackupIsForFailuresAndNeedsAName) {
    struct Case {
        const char* backupName;
        bool primaryWorks;
        bool sent;
        std::size_t throughBackup;
        int told;
    };
    const Case kCases[] = {{"backup.example", true, true, 0, 0},
                           {"backup.example", false, true, 2, 1},
                           {"mail1", false, false, 0, 1},
                           {"", false, false, 0, 1}};
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.backupName);
        DispatcherWorld w;
        w.Set("ServerBackup", c.backupName);
        w.primary.refuse = [&](const std::string& line) { return !c.primaryWorks && line == "rcpt to:<b@y>"; };
        int told = 0;
        const SendOutcome outcome =
            w.dispatcher.SendWithBackup({"a@x", "b@y", "The monitor", "Hi", "Body"}, [&](const std::string& error) {
                ++told;
                EXPECT_EQ(error, "Expected: 250 Recieved: 550 5.7.1 refused\r\n");
            });
        EXPECT_EQ(outcome.sent, c.sent);
        EXPECT_EQ(outcome.strError.empty(), c.sent);
        EXPECT_EQ(told, c.told);
        EXPECT_EQ(w.backup.mails.size(), c.throughBackup);
        for (const auto& mail : w.backup.mails)  // the same message, though the first attempt rewrote its own copy
            EXPECT_TRUE(Holds(mail.text, "From: \"The monitor\" <a@x>")) << mail.text;
    }
}

TEST(SendEmail, ASecondOneDuringTheFirstIsRefusedAndTheFirstGoesOn) {
    DispatcherWorld w;
    SendOutcome second{true, ""};
    w.primary.refuse = [&](const std::string& line) {
        if (line == "data") second = w.dispatcher.SendThrough(MailServer::Primary, {"late@x", "", "", "", ""});
        return false;
    };
    EXPECT_TRUE(w.dispatcher.SendThrough(MailServer::Primary, {"a@x", "", "", "", ""}).sent);
    EXPECT_FALSE(second.sent);
    EXPECT_EQ(second.strError, "Another message is still being sent.");
    EXPECT_EQ(RecipientsOf(w.primary), Texts{"<a@x>"});
}

TEST(TestEmail, AsksFirstAndSendsThroughBothServers) {
    struct Case {
        bool yes;
        const char* backupName;
        bool backupWorks;
        bool good;
        std::size_t mails;
        Texts boxes;
    };
    const char* const kGood = "Email Test SUCCEEDED! Sent to a@x, b@y using SMTP server mail.example.";
    const Case kCases[] = {
        {false, "", true, false, 0, {}},
        {true, "", true, true, 2, {kGood}},
        {true,
         "b1",
         false,
         false,
         2,
         {kGood,
          "Email Test Failed to a@x, b@y from me@x using SMTP server b1.\r\n\r\nError: SMTP service error, timed out while "
          "waiting for "
          "Email Server Response."}},
        {true,
         "backup.example",
         true,
         true,
         4,
         {kGood, "Email Test SUCCEEDED! Sent to a@x, b@y using SMTP server backup.example."}},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.backupName);
        DispatcherWorld w;
        w.Set("ServerBackup", c.backupName);
        w.person.answers = {c.yes};
        std::optional<bool> good;
        w.dispatcher.TestEmail("a@x", "b@y", false, "One", "SERVER FAILED", "web", "me@x", "", "",
                               [&](bool sent) { good = sent; });
        EXPECT_EQ(good, c.good);
        EXPECT_EQ(w.primary.mails.size() + w.backup.mails.size(), c.mails);
        EXPECT_EQ(w.stops, c.yes ? 1 : 0);
        Texts boxes;
        for (const auto& box : w.person.messages)
            boxes.push_back(box.text);
        EXPECT_EQ(boxes, c.boxes);
        const std::string& question = w.person.questions.at(0).text;
        EXPECT_TRUE(
            question.starts_with("You are about to test whether you can send email to 'a@x' and to 'b@y'\r\n\r\nThe Primary SMTP "
                                 "server is 'mail.example'.\r\n\r\n"));
        EXPECT_EQ(Holds(question, "You have not yet named a backup"), *c.backupName == '\0');
        for (const auto& mail : w.primary.mails) {
            EXPECT_TRUE(Holds(mail.text, "Subject: [TEST MSG] SERVER FAILED (web) "));
            EXPECT_TRUE(mail.text.ends_with(
                "\r\n\r\n[TEST ONLY:]One\r\nThis is just a test from Korvane.  Email success!\r\n\r\nSERVER FAILED\r\n"));
        }
    }
}

TEST(TestEmail, MayGoToSomebodyElseWithoutABody) {
    DispatcherWorld w;
    w.person.answers = {true};
    bool good = false;
    w.dispatcher.TestEmail("a@x", "b@y", true, "One", "T", "", "me@x", "c@z", "own@x", [&](bool sent) { good = sent; });
    EXPECT_TRUE(good);
    ASSERT_EQ(w.primary.mails.size(), 1u);
    EXPECT_EQ(w.primary.mails[0].recipients, Texts{"<c@z>"});
    EXPECT_EQ(w.primary.mails[0].from, "<own@x>");
    EXPECT_TRUE(Holds(w.primary.mails[0].text, "[TEST ONLY:] One\r\nNotification emails will contain no 'Body' part"));
}

}  // namespace
}  // namespace korvane
