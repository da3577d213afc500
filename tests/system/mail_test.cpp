// Mails of outages and recoveries through real mail servers, from the entry to what Python reads.
#include <regex>

#include "system/servers.h"

namespace korvane::test {
namespace {

const std::string kEntry =
    Due("TCP", "127.0.0.1", kNobody, "220",
        ", nTries = 1, strEmailList1 = 'person@elsewhere.example', strEmailFrom = 'monitor@korvane.example', "
        "strEmailText = 'DOWN', strEmailBody = '.' || char(13, 10) || '..dots' || char(13, 10) || 'Grüße'");
const std::string kHead = "|\"monitor@korvane.example\" <monitor@korvane.example>|<person@elsewhere.example>|";
const std::string kOutage =
    kHead +
    "DOWN (entry) <time>|.~..dots~Grüße~Time: <time>~~The Server 127.0.0.1 could not be reached ~1 times in "
    "a row.  ~Reason: Could Not Connect to 127.0.0.1 Double check for typos. ~~No commands will be executed "
    "(none are configured).~~DOWN~\n";
const std::string kRecovery =
    kHead + "SERVER BACK UP (DOWN) entry <time>|Time: <time>~~The Server 127.0.0.86 (entry) can be reached ";

std::string Arrived(const Server& server, const std::string& folder) {
    const std::string mails = Answer("/usr/bin/python3 " + kSystemTests + "read_mail.py " + server.folder.At(folder));
    return std::regex_replace(mails, std::regex("\\d+/\\d+/\\d+( \\d+:\\d+:\\d+ [AP]M)?"), "<time>");
}

TEST(Mail, OfAnOutageAndARecoveryArrivesAfterALogin) {
    KORVANE_NEEDS("postfix dovecot aiosmtpd");
    if (geteuid() != 0) GTEST_SKIP() << "Postfix starts only as root";
    const Server& postfix = Real("postfix", Dovecot().folder.Path(), 25, "127.0.0.12");
    const std::regex underTls("with ESMTPSA.*\n");  // of the other tests
    const auto arrived = [&] { return std::regex_replace(Arrived(postfix, "boxes/box/new"), underTls, ""); };
    Program program("Server=127.0.0.12\nSMTPUser1=operator\nSMTPPass1=open sesame\n" + kBegin, kEntry);
    program.Start();
    EXPECT_TRUE(Waited([&] { return arrived() == "with ESMTPA" + kOutage; })) << arrived() << program.Output();
    EXPECT_TRUE(program.Becomes("SELECT count(*) FROM Failures", "1\n")) << program.Output();
    program.Stop();
    // The server comes back while the program does not run.
    const Played back("127.0.0.86:" + std::to_string(kNobody) + "='mute 220 there'");
    program.Query("UPDATE Servers SET strAddress_IP = '127.0.0.86', dtNextCheck = '2026-01-01 00:00:00'");
    program.Start();
    EXPECT_TRUE(Waited([&] { return Holds(arrived(), "\nwith ESMTPA" + kRecovery); })) << arrived() << program.Output();
    program.Stop();
    EXPECT_EQ(Count(arrived(), "\n"), 2);
}

// Each program has a first server that must be refused for its reason, and one whose certificate is good.
TEST(Mail, GoesOnlyToServersWithAGoodCertificate) {
    KORVANE_NEEDS("postfix dovecot openssl");
    if (geteuid() != 0) GTEST_SKIP() << "Postfix starts only as root";
    const Server& postfix = Real("postfix", Dovecot().folder.Path(), 25, "127.0.0.12");
    const std::string authority = "SMTPAuthority=" + postfix.folder.At("authority.pem") + "\n";
    const auto arrived = [&] { return Count(Arrived(postfix, "boxes/box/new"), "with ESMTPSA" + kOutage); };
    struct Case {
        std::string first, second, reason;
        std::size_t mails;
    };
    const std::string tls = "SMTPSecurity1=tls\nSMTPPort1=", start = "SMTPSecurity1=starttls\nSMTPPort1=";
    const std::string selfSigned = "The certificate is self-signed, and untrusted";
    for (const Case& c : {
             Case{tls + "466\n" + authority, "SMTPSecurity2=tls\n", "The certificate has expired", 1},
             Case{start + "588\n" + authority, "SMTPSecurity2=starttls\n", "The certificate has expired", 2},
             Case{tls + "467\n" + authority, "SMTPSecurity2=starttls\nSMTPPort2=25\n", selfSigned, 3},
             Case{tls + "468\n" + authority, "SMTPSecurity2=ssl\n", "The host name did not match", 3},
             Case{tls + "465\n", "SMTPSecurity2=starttls\n", "The issuer certificate", 3},
             Case{start + std::to_string(kSmtp) + "\nServer=127.0.0.1\n" + authority, "SMTPSecurity2=tls\n",
                  "does not offer STARTTLS", 4},
         }) {
        const std::string login = "=operator\nSMTPPass1=open sesame\nSMTPPass2=open sesame\nSMTPUser1=operator\n";
        Program program(c.first + c.second + "Server=127.0.0.12\nServerBackup=127.0.0.12\nSMTPUser2" + login + kBegin, kEntry);
        program.Start();
        EXPECT_TRUE(program.Becomes("SELECT count(*) FROM Failures", "1\n")) << program.Output();
        EXPECT_TRUE(Holds(Answer("cat " + program.home.At("Logs") + "/*"), c.reason)) << c.first << program.Output();
        EXPECT_TRUE(Waited([&] { return arrived() == c.mails; })) << c.first << arrived() << program.Output();
        program.Stop();
    }
}

TEST(Mail, OfTheDailyProofIsReadBackUnderTlsAndDeleted) {
    KORVANE_NEEDS("postfix dovecot openssl");
    if (geteuid() != 0) GTEST_SKIP() << "Postfix starts only as root";
    const Server& postfix = Real("postfix", Dovecot().folder.Path(), 25, "127.0.0.12");
    const Server& mailbox = Real("mailbox", postfix.folder.Path(), 995, "127.0.0.12");
    const std::string before = Arrived(postfix, "boxes/box/cur") + Arrived(postfix, "boxes/box/new");
    Program program(
        "SMTPSecurity1=starttls\nServer=127.0.0.12\nSMTPUser1=operator\nSMTPPass1=open "
        "sesame\nProveMail=True\nProveMailTime=0:00\n"
        "ProveMailTo=person@elsewhere.example\nProveMailHost=127.0.0.12\nProveMailUser=operator\nProveMailPass=open sesame\n"
        "SMTPAuthority=" +
        postfix.folder.At("authority.pem") + "\n" + kBegin);
    program.Start();
    const auto log = [&] { return Answer("cat " + program.home.At("Logs") + "/* 2>&1"); };
    EXPECT_TRUE(Waited([&] { return Holds(log(), "ProveMail: the mail of the day came after 0 minutes."); }))
        << log() << mailbox.Output();
    program.Stop();
    EXPECT_EQ(Count(Arrived(postfix, "boxes/box/cur") + Arrived(postfix, "boxes/box/new"), "\n"), Count(before, "\n"));
}

TEST(Mail, GoesThroughTheBackupAfterARefusal) {
    KORVANE_NEEDS("aiosmtpd");
    const Played servers("127.0.0.22:25=login 127.0.0.23:25='452 4.3.1 Insufficient system storage'");
    const std::string refusing = "Server=127.0.0.23\nSMTPUser2=operator\nSMTPPass2=open sesame\n" + kBegin;
    Program takes("ServerBackup=127.0.0.22\n" + refusing, kEntry), refuses("ServerBackup=127.0.0.23\n" + refusing, kEntry);
    for (const auto& [program, action] : {std::pair{&takes, "successfully sent to: 'person@elsewhere.example '."},
                                          std::pair{&refuses, "Server replied: 452 4.3.1 Insufficient system storage"}}) {
        program->Start();
        EXPECT_TRUE(program->Becomes("SELECT count(*) FROM Failures", "1\n")) << program->Output();
        EXPECT_TRUE(Holds(program->Query("SELECT strAction FROM Failures"), action)) << program->Output();
        program->Stop();
    }
    EXPECT_EQ(Arrived(servers, "mails"), "by 127.0.0.22" + kOutage);
}

}  // namespace
}  // namespace korvane::test
