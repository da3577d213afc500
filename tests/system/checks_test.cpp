// A table of entries that runs of the program check against real servers.
#include "platform/linux/linux_icmp_echo.h"
#include "system/servers.h"

namespace korvane::test::checks_test {

TEST(Checks, OfRealServers) {
    KORVANE_NEEDS("nginx dovecot aiosmtpd");
    Real("dovecot", kPop3, kSmtp);
    std::string whyNot;
    const bool pings = LinuxIcmpEcho().IcmpCreateFile(whyNot);
    // One name has two addresses, of which the first refuses.
    const Played twin("127.0.0.86:" + std::to_string(kNobody) + "='mute 220 there'");
    const std::string two = OwnMounts() ? "two.example" : "127.0.0.86";
    const Folder names;
    names.Write("hosts", "127.0.0.1 localhost\n127.0.0.1 two.example\n127.0.0.86 two.example\n");
    const std::string other = "127.0.0.1:" + std::to_string(kBase + 20000), welcome = "Welcome to Korvane";
    const struct {
        std::string type, address;
        int port;
        std::string expected;
        bool up;
        std::string says;  ///< part of the answer, or of the reason why there is none
        std::string more = "";
    } checks[] = {
        {"HTTP", "127.0.0.1/page", kBase, "Welcome", true, welcome},
        {"HTTP", other + "/page", 80, "Welcome", true, welcome},
        {"HTTP", "127.0.0.1/page", kBase, "welcome", false, welcome},
        {"HTTP", "127.0.0.1/private", kBase, "", true, "Hi, operator", ", strUserName = 'operator', strPassword = 'open sesame'"},
        {"HTTP", "127.0.0.1/private", kBase, "", true, "401 Authorization Required"},
        {"HTTP", "127.0.0.1/moved", kBase, "Welcome", true, welcome},
        {"HTTP", "127.0.0.1/empty", kBase, "", false, "No Response Returned."},
        {"HTTP", "127.0.0.1/late", kBase, "", false, "Reason '", ", nTimeout = 1"},
        {"HTTP", "127.0.0.1", kNobody, "", false, "onnect"},
        {"HTTPS", "localhost/page", kBase + 1, "Welcome", true, welcome},
        {"HTTPS", "127.0.0.1/page", kBase + 1, "Welcome", true, welcome},
        {"HTTPS", "localhost/page", kBase + 2, "", false, "certificate"},
        {"HTTPS", "localhost/page", kBase + 3, "", false, "certificate"},
        {"HTTPS", "localhost/page", kBase + 4, "", false, "certificate"},
        {"PING", "127.0.0.1", 0, "1000", pings, pings ? "Ping Success to 127.0.0.1. Took " : ""},
        {"PING", "localhost", 0, "1000", false, "localhost is not a valid IP address."},
        {"POP3", "localhost", kPop3, "+OK,QUIT,+OK", true, "+OK Logging out"},
        {"IMAP", "localhost", kImap, "OK,a LOGOUT,BYE", true, "BYE"},
        {"SMTP", "127.0.0.1", kSmtp, "+OK", false, "Expected +OK"},
        {"TCP", "127.0.0.1", kNobody, "220", false, "Could Not Connect to 127.0.0.1"},
        {"TCP", two, kNobody, "220", true, "220 there"},
        {"SMTP", "127.0.0.1", kSmtp, "220,QUIT,221", true, "221"},
    };
    // A program makes one check a second, so several share the table.
    const std::string words = "SSL_CERT_FILE=" + Real("nginx").folder.At("authority.pem") + " " +
                              (OwnMounts() ? Mounted("mount --bind " + names.At("hosts") + " /etc/hosts") : "");
    std::vector<Program> programs(8);
    for (std::size_t i = 0; i < std::size(checks); ++i)
        programs[i % 8].Query(Due(checks[i].type, checks[i].address, checks[i].port, checks[i].expected, checks[i].more));
    for (Program& program : programs)
        program.Start(words);
    for (std::size_t i = 0; i < std::size(checks); ++i) {
        const Program& program = programs[i % 8];
        const std::string id = std::to_string(i / 8 + 1), where = " FROM Servers WHERE ID = " + id;
        SCOPED_TRACE(checks[i].type + " " + checks[i].address + " " + checks[i].expected);
        EXPECT_TRUE(program.Becomes("SELECT nSuccess + nFail" + where, "1\n")) << program.Output();
        EXPECT_EQ(program.Query("SELECT nSuccess" + where), checks[i].up ? "1\n" : "0\n");
        const std::string says = program.Query("SELECT strLastResponse" + where) +
                                 program.Query("SELECT strReason FROM Failures WHERE IDParent = " + id);
        EXPECT_TRUE(Holds(says, checks[i].says)) << says;
    }
    for (const Program& program : programs)
        program.Stop(SIGINT);
}

}  // namespace korvane::test::checks_test
