// Mail under TLS: what is said before and after the handshake, what goes out when it fails, and the form of a mail that every server
// takes. And no password where people see it.
#include <gtest/gtest.h>

#include <array>

#include "fuzz/script.h"
#include "notify/encodings.h"
#include "notify/mime_text.h"
#include "support/world.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using Lines = std::vector<std::string>;

/// A server that takes mail under TLS, offers `offers` before it, and answers STARTTLS with `answer`.
struct SecureWorld : World {
    SecureWorld(const std::string& settings, int port, bool first, const std::string& problem = "",
                const std::string& offers = "STARTTLS", const std::string& answer = "220 go on")
        : World({.settings = settings + "\nHidePasswords=True\nSMTPPass1=tanstaaf\nSMTPPopHost1=pop.example"}),
          port_(Port(port)) {
        port_.Anew().Speak("220 ready\r\n").Tls(first, problem).Answer([=, this](const std::string& line) {
            return Answer(line, first, offers, answer);
        });
        net.Host("pop.example").Port(110).Speak("+OK\r\n");
        net.Host("pop.example").Port(995).Tls(true, problem).Speak("+OK\r\n").Answer([](auto&) { return "+OK\r\n"; });
        Start();
        outcome = run.TheDesk().mail.SendThrough(MailServer::Primary,
                                                 {"you@x", "", "me@x", "Grüße", "Käse\n.\n" + std::string(2000, 'x')});
    }
    VirtualServer& Port(int port) { return net.Host("mail.example").Port(port); }
    std::string Answer(const std::string& line, bool first, const std::string& offers, const std::string& answer) {
        const Lines& lines = port_.Lines();
        const bool secured = std::find(lines.begin(), lines.end(), "[TLS]") != lines.end();
        if (line == "STARTTLS") return answer + "\r\n250 injected\r\n";
        if (line.starts_with("EHLO")) return "250-hi\r\n250 " + (secured || first ? "AUTH PLAIN" : offers) + "\r\n";
        if (line == "AUTH PLAIN") return "334 \r\n";
        if (line.starts_with("AHRpbQ")) return "235 tanstaaf is right\r\n";
        return ContentAnswer(reading_, line);
    }
    std::string Said() const {
        std::string all;
        for (const std::string& line : port_.Lines())
            all += line.substr(0, 10) + "|";
        return all;
    }
    bool LeakedBeforeTls() const {
        for (const std::string& line : port_.Lines()) {
            if (line == "[TLS]") return false;
            if (!line.starts_with("EHLO") && line != "STARTTLS") return true;
        }
        return false;
    }

    VirtualServer& port_;
    bool reading_ = false;
    SendOutcome outcome;
};

TEST(MailSecurity, NothingButTheGreetingIsSaidBeforeTheHandshakeAndNothingWithoutIt) {
    struct Case {
        std::string settings;
        int port;
        bool first;
        std::string problem, offers, answer, reason;  ///< no reason: the mail is sent
    };
    const std::string kStart = "SMTPSecurity1=starttls", kTls = "SMTPSecurity1=tls";
    const std::string kExpired = "the certificate has expired";
    const Case cases[] = {
        {kStart, 587, false, "", "STARTTLS", "220 go", ""},
        {kStart + "\nSMTPPort1=25", 25, false, "", "STARTTLS", "220 go", ""},
        {kTls, 465, true, "", "", "", ""},
        {kTls + "\nSMTPPort1=2465", 2465, true, "", "", "", ""},
        {kStart, 587, false, kExpired, "STARTTLS", "220 go", kExpired},
        {kTls, 465, true, kExpired, "", "", kExpired},
        {kStart, 587, false, "", "AUTH PLAIN", "220 go", "does not offer STARTTLS"},
        {kStart, 587, false, "", "STARTTLS", "454 not now", "refused STARTTLS"},
        {kTls, 1465, true, "", "", "", "onnect"},
        {"SMTPSecurity1=ssl", 25, false, "", "", "", "SMTPSecurity1: 'ssl' is not"},
        {kTls + "\nSMTPPort1=70000", 465, true, "", "", "", "SMTPPort1: '70000' is not"},
    };
    for (const Case& c : cases) {
        for (const std::string user : {"", "tim"}) {
            SCOPED_TRACE(c.settings + c.problem + c.offers + c.answer + " " + user);
            SecureWorld w(c.settings + "\nSMTPUser1=" + user, c.port, c.first, c.problem, c.offers, c.answer);
            EXPECT_EQ(w.outcome.sent, c.reason.empty()) << w.outcome.strError << w.Said();
            EXPECT_TRUE(c.reason.empty() || Holds(w.outcome.strError, c.reason)) << w.outcome.strError;
            EXPECT_FALSE(w.LeakedBeforeTls()) << w.Said();
            EXPECT_EQ(w.net.Host("pop.example").Port(110).Connections(), 0);
            EXPECT_EQ(Holds(w.Said(), "AHRpbQB0YW|"), c.reason.empty() && !user.empty()) << w.Said();
            EXPECT_EQ(Holds(w.Said(), "MIME-Versi|") && Holds(w.Said(), "Subject: =|"), c.reason.empty()) << w.Said();
            EXPECT_LT(w.world.Ticks(), std::chrono::seconds(3)) << "a refused connection is not waited for";
            for (const auto& line : w.port_.Lines())
                EXPECT_LE(line.size(), 998u);
            for (const std::string& text : w.person.StatusTexts())
                EXPECT_FALSE(Holds(text, "tanstaaf")) << text;
        }
    }
}

TEST(MailText, FitsEveryServerAndComesBackWhole) {
    for (const auto& [text, encoding, coded] : std::initializer_list<std::array<std::string, 3>>{
             {"plain\r\n.", "7bit", "plain\r\n."},
             {"a=b ü \nc ", "quoted-printable", "a=3Db =C3=BC=20\r\nc=20"},
             {std::string(999, 'x'), "quoted-printable", std::string(75, 'x') + "=\r\n"},
             {"\xFF", "quoted-printable", "=C3=BF"}}) {
        const MimeText mime = AsMimeText("text/plain", text);
        EXPECT_TRUE(Holds(mime.headers, "charset=UTF-8\r\n") && Holds(mime.headers, ": " + encoding + "\r\n")) << mime.headers;
        EXPECT_TRUE(mime.text.starts_with(coded)) << mime.text;
        for (const std::string& line : Split(mime.text, '\n'))
            EXPECT_LE(line.size(), encoding == "7bit" ? 998u : 77u);
    }
    EXPECT_EQ(AsHeaderText("DOWN (web) 1/2/2026"), "DOWN (web) 1/2/2026");
    EXPECT_EQ(AsHeaderText("Grüße"), "=?UTF-8?B?R3LDvMOfZQ==?=");
    EXPECT_EQ(AsMailbox("a\"b", "c@d"), "\"a\\\"b\" <c@d>");
    std::string decoded;
    for (const std::string& word : Split(AsHeaderText(std::string(44, 'x') + "üü" + std::string(999, 'y')), '\n')) {
        const std::string trimmed = TrimAll(word);
        EXPECT_LE(trimmed.size(), 75u);
        decoded += Base64Decode(trimmed.substr(10, trimmed.size() - 12));
    }
    EXPECT_EQ(decoded, std::string(44, 'x') + "üü" + std::string(999, 'y'));
}

TEST(HidePasswords, TakesThemOutOfEveryTextThatPeopleSee) {
    World world({.settings = "HidePasswords=True\nSMTPPass1=s3cret\nProveMailPass=abc"});
    world.Start();
    const Desk desk = world.run.TheDesk();
    for (const auto& [text, shown] : std::initializer_list<std::pair<std::string, std::string>>{
             {"Authorizing: User=tim Password=a b", "Authorizing: User=tim Password=[not shown]"},
             {"535 s3cret is wrong; czNjcmV0", "535 [not shown] is wrong; [not shown]"},
             {"Requesting 'PASS my word'", "Requesting 'PASS [not shown]'"},
             {"steps '+OK,USER x,pass it's,+OK' worked", "steps '+OK,USER x,pass [not shown],+OK' worked"},
             {"'+OK,AUTH LOGIN,334,dXNl,334,cGFz,235' and 'auth plain,334,cGFz'",
              "'+OK,AUTH LOGIN,334,[not shown],334,[not shown],235' and 'auth plain,334,[not shown]'"},
             {"'a1 LOGIN bob word'", "'a1 LOGIN [not shown]'"},
             {"getting 'http://u:p@w@h:80/x@y'", "getting 'http://u:[not shown]@h:80/x@y'"},
             {"getting 'u:p@h'; RCPT TO:a@b", "getting 'u:[not shown]@h'; RCPT TO:a@b"},
             {"it will pass abc to http://h:80/ at 5:00", "it will pass abc to http://h:80/ at 5:00"}}) {
        desk.status.setStatusMSG(text);
        desk.log.Info(text);
        EXPECT_EQ(world.person.StatusTexts().back(), shown);
        EXPECT_EQ(world.LogTexts().back(), shown);
    }
    EXPECT_EQ(desk.safeguards.Counts().at("HidePasswords"), 16u);
    world.net.Host("10.0.0.9").Port(25).Speak("220\r\n").Answer([](auto&) { return "334 235\r\n"; });
    EXPECT_EQ(desk.tcp.DoTCPRequest("10.0.0.9", "220,AUTH LOGIN,334,dXNl,334,cGFz,235,QUIT,3", 20s, "25").strReason, "");
    EXPECT_EQ(world.person.StatusTexts().end()[-3], "Requesting 'QUIT'");
    for (const std::string& text : world.person.StatusTexts())
        EXPECT_FALSE(Holds(text, "dXNl") || Holds(text, "cGFz")) << text;
    world.Set("HidePasswords", "");
    desk.status.setStatusMSG("PASS s3cret");
    EXPECT_EQ(world.person.StatusTexts().back(), "PASS s3cret");
}

/// A mailbox that the mail server of the world fills while `delivers`, and the proof of each day at 15:10.
struct ProofWorld : World {
    explicit ProofWorld(const World* before = nullptr, DateTime start = DateTime::Of(2026, 11, 21, 15, 0, 0))
        : World({.start = start,
                 .settings =
                     "ProveMail=True\nProveMailTime=15:10\nProveMailTo=me@x\nProveMailHost=box.example\nProveMailUser=me\n"
                     "ProveMailPass=word\nServerBackup=backup.example\nRedAlertWav=red.wav\nbRedAlert=True"}) {
        for (const char* file : {"kvproof.dat", "kvalertpath.dat"})
            if (before != nullptr) Write(file, before->Text(file));
        net.Host("box.example").Port(995).Tls(true).Speak("+OK hi\r\n").Answer([this](auto& line) { return Answer(line); });
        Start();
    }
    std::string Answer(const std::string& line) {
        if (line == "STAT") return "+OK " + std::to_string(mail.mails.size() - deleted.size()) + " 99\r\n";
        if (line.starts_with("TOP")) return "-ERR unknown\r\n";
        if (line.starts_with("RETR"))
            return (delivers ? "+OK\r\n" : "+OK\r\nSubject: Returned\r\n\r\n") + mail.mails.back().text + ".\r\n";
        if (line.starts_with("DELE")) deleted.push_back(line);
        if (line == "QUIT" && diesAfterDeleting && !deleted.empty()) return "";
        return line == "PASS word" || !line.starts_with("PASS") ? "+OK\r\n" : "-ERR\r\n";
    }
    bool delivers = true;  ///< or it is returned
    bool diesAfterDeleting = true;
    Lines deleted;
    VirtualMailServer backup{net.Host("backup.example").Port(25)};
};

TEST(MailProof, OnceADayAMailComesBackAndIsDeletedOrEverythingTells) {
    ProofWorld w;
    w.RunFor(9min);
    EXPECT_TRUE(w.mail.mails.empty());
    w.RunFor(4min);
    EXPECT_TRUE(w.Logged("ProveMail: the mail of the day was sent to me@x."));
    EXPECT_TRUE(w.Logged("came after 1 minutes. The mailbox did not confirm that it was deleted."));
    w.RunFor(23h - 4min);
    EXPECT_EQ(w.mail.mails.size(), 1u);
    EXPECT_EQ(w.deleted, Lines{"DELE 1"});
    EXPECT_TRUE(w.run.TheDesk().alertPath.ProvenText().starts_with("Alert path last proven 11/21/2026 3:1"));
    w.delivers = w.diesAfterDeleting = false;
    w.RunFor(1h + 20min);
    EXPECT_EQ(w.mail.mails.size(), 2u);
    EXPECT_TRUE(w.backup.mails.empty());
    w.RunFor(1h);
    const std::string alarm = "ProveMail: the mail of the day has not come back, so alerts may not arrive.";
    ASSERT_EQ(w.backup.mails.size(), 1u);
    EXPECT_TRUE(Holds(w.backup.mails[0].text, alarm) && Holds(w.backup.mails[0].text, "It is not in the mailbox."));
    EXPECT_TRUE(w.Logged("# " + alarm));
    EXPECT_EQ(w.sound.played, Lines{"red.wav"});
    EXPECT_EQ(w.run.TheDesk().alertPath.Problem(), "mail proof overdue");

    // A restart neither sends the mail of the day again nor forgets that it is missing, or that a test mail failed.
    w.run.TheDesk().alertPath.TestMail(false);
    ProofWorld restarted(&w, DateTime::Of(2026, 11, 22, 18, 0, 0));
    restarted.mail.mails = w.mail.mails;
    EXPECT_TRUE(restarted.run.TheDesk().alertPath.ProvenText().starts_with("Alert path last proven 11/21/2026 3:1"));
    restarted.RunFor(30min);
    EXPECT_EQ(restarted.deleted, Lines{"DELE 2"});
    EXPECT_EQ(restarted.mail.mails.size(), 2u);
    EXPECT_TRUE(restarted.Logged("ProveMail: the mail of the day came late, after "));
    EXPECT_TRUE(restarted.backup.mails.empty());
    EXPECT_EQ(restarted.run.TheDesk().alertPath.Problem(), "test mail failed");
}

}  // namespace
}  // namespace korvane
