// Mails of outages and recoveries through a mail server, from the entry to what Python reads.
#include <regex>

#include "system/servers.h"

namespace korvane::test::mail_test {

const std::string kEntry =
    Due("TCP", "127.0.0.1", kNobody, "220",
        ", nTries = 1, strEmailList1 = 'person@elsewhere.example', strEmailFrom = 'monitor@korvane.example', "
        "strEmailText = 'DOWN', strEmailBody = '.' || char(13, 10) || '..dots' || char(13, 10) || 'Grüße'");
const std::string kHead = "\"monitor@korvane.example\" <monitor@korvane.example>|<person@elsewhere.example>|";
const std::string kOutage =
    kHead +
    "DOWN (entry) <time>|.~..dots~Grüße~Time: <time>~~The Server 127.0.0.1 could not be reached ~1 times in "
    "a row.  ~Reason: Could Not Connect to 127.0.0.1 Double check for typos. ~~No commands will be executed "
    "(none are configured).~~DOWN~\n";
const std::string kRecovery =
    kHead + "SERVER BACK UP (DOWN) entry <time>|Time: <time>~~The Server 127.0.0.86 (entry) can be reached ";

std::string Arrived(const Server& server) {
    const std::string mails = Answer("/usr/bin/python3 " + kSystemTests + "read_mail.py " + server.folder.At("mails"));
    return std::regex_replace(mails, std::regex("\\d+/\\d+/\\d+( \\d+:\\d+:\\d+ [AP]M)?"), "<time>");
}

TEST(Mail, OfAnOutageAndARecoveryArrivesAfterALogin) {
    KORVANE_NEEDS("aiosmtpd");
    const Played server("127.0.0.22:25=login");
    const auto arrived = [&] { return Arrived(server); };
    Program program("Server=127.0.0.22\nSMTPUser1=operator\nSMTPPass1=open sesame\n" + kBegin, kEntry);
    program.Start();
    EXPECT_TRUE(Waited([&] { return arrived() == kOutage; })) << arrived() << program.Output();
    EXPECT_TRUE(program.Becomes("SELECT count(*) FROM Failures", "1\n")) << program.Output();
    program.Stop();
    // The server comes back while the program does not run.
    const Played back("127.0.0.86:" + std::to_string(kNobody) + "='mute 220 there'");
    program.Query("UPDATE Servers SET strAddress_IP = '127.0.0.86', dtNextCheck = '2026-01-01 00:00:00'");
    program.Start();
    EXPECT_TRUE(Waited([&] { return Holds(arrived(), "\n" + kRecovery); })) << arrived() << program.Output();
    program.Stop();
    EXPECT_EQ(Count(arrived(), "\n"), 2);
}

}  // namespace korvane::test::mail_test
