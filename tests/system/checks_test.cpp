// Tables of entries that runs of the program check against real servers, directly and through a proxy.
#include "platform/linux/linux_icmp_echo.h"
#include "system/servers.h"

namespace korvane::test {
namespace {

struct Check {
    std::string type, address;
    int port;
    std::string expected;
    bool up;
    std::string says;  ///< part of the answer, or of the reason why there is none
    std::string more = "";
};

/// A program makes one check a second, so several share a table.
class Checking {
public:
    Checking(std::size_t programs, std::vector<Check> checks, const std::string& settings, const std::string& words = "")
        : checks_(std::move(checks)) {
        std::vector<std::string> entries(programs);
        for (std::size_t i = 0; i < checks_.size(); ++i)
            entries[i % programs] +=
                Due(checks_[i].type, checks_[i].address, checks_[i].port, checks_[i].expected, checks_[i].more);
        for (const std::string& sql : entries) {
            programs_.push_back(std::make_unique<Program>(settings, sql));
            programs_.back()->Start("SSL_CERT_FILE=" + Real("nginx").folder.At("authority.pem") + " " + words);
        }
    }
    void Expect() const {
        for (std::size_t i = 0; i < checks_.size(); ++i) {
            const Program& program = *programs_[i % programs_.size()];
            const std::string id = std::to_string(i / programs_.size() + 1), where = " FROM Servers WHERE ID = " + id;
            SCOPED_TRACE(checks_[i].type + " " + checks_[i].address + " " + checks_[i].expected);
            EXPECT_TRUE(program.Becomes("SELECT nSuccess + nFail" + where, "1\n")) << program.Output();
            EXPECT_EQ(program.Query("SELECT nSuccess" + where), checks_[i].up ? "1\n" : "0\n");
            const std::string says = program.Query("SELECT strLastResponse" + where) +
                                     program.Query("SELECT strReason FROM Failures WHERE IDParent = " + id);
            EXPECT_TRUE(Holds(says, checks_[i].says)) << says;
        }
        for (const auto& program : programs_)
            program->Stop(SIGINT);
    }

private:
    std::vector<Check> checks_;
    std::vector<std::unique_ptr<Program>> programs_;
};

TEST(Checks, OfRealServersDirectlyAndThroughAProxy) {
    KORVANE_NEEDS("nginx dovecot vsftpd squid aiosmtpd");
    Dovecot();
    Real("vsftpd", std::to_string(kFtp), kFtp);
    const Server& proxy = Real("squid", std::to_string(kProxy), kProxy);
    Answer("rm /dev/shm/korvane" + std::to_string(kProxy) + "-*");  // which it shares with nobody
    std::string whyNot;
    const bool pings = LinuxIcmpEcho().IcmpCreateFile(whyNot);
    // One name has two addresses, of which the first refuses.
    const Played twin("127.0.0.86:" + std::to_string(kNobody) + "='mute 220 there'");
    const std::string two = OwnMounts() ? "two.example" : "127.0.0.86";
    proxy.folder.Write("hosts", "127.0.0.1 localhost\n127.0.0.1 two.example\n127.0.0.86 two.example\n");
    const auto at = [](int port) { return "127.0.0.1:" + std::to_string(port); };
    const std::string welcome = "Welcome to Korvane";
    const Checking direct(8,
                          {
                              {"HTTP", "127.0.0.1/page", kBase, "Welcome", true, welcome},
                              {"HTTP", at(kBase + 20000) + "/page", 80, "Welcome", true, welcome},
                              {"HTTP", "127.0.0.1/page", kBase, "welcome", false, welcome},
                              {"HTTP", "127.0.0.1/no-such-page", kBase, "", true, "404 Not Found"},
                              {"HTTP", "127.0.0.1/private", kBase, "", true, "Hi, operator",
                               ", strUserName = 'operator', strPassword = 'open sesame'"},
                              {"HTTP", "127.0.0.1/private", kBase, "", true, "401 Authorization Required"},
                              {"HTTP", "127.0.0.1/moved", kBase, "Welcome", true, welcome},
                              {"HTTP", "127.0.0.1/loop", kBase, "", false, "redirect"},
                              {"HTTP", "127.0.0.1/cookie", kBase, "", true, "Welcome back"},
                              {"HTTP", "127.0.0.1/picture", kBase, "", true, "Binary Data Returned"},
                              {"HTTP", "127.0.0.1/empty", kBase, "", false, "No Response Returned."},
                              {"HTTP", "127.0.0.1/late", kBase, "", false, "Reason '", ", nTimeout = 1"},
                              {"HTTP", "127.0.0.1/big", kBase, "end", true, "aaa", ", nTimeout = 30"},
                              {"HTTP", "127.0.0.1/too-big", kBase, "", false, "Reason '", ", nTimeout = 30"},
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
                              {"FTP", "127.0.0.1", kFtp, "220,HELP,530,QUIT,221", true, "221"},
                              {"SMTP", "127.0.0.1", kSmtp, "+OK", false, "Expected +OK"},
                              {"TCP", "127.0.0.1", kNobody, "220", false, "Could Not Connect to 127.0.0.1"},
                              {"TCP", two, kNobody, "220", true, "220 there"},
                              {"SMTP", "127.0.0.1", kSmtp, "220,QUIT,221", true, "221"},
                          },
                          kBegin, OwnMounts() ? Mounted("mount --bind " + proxy.folder.At("hosts") + " /etc/hosts") : "");
    const Checking proxied(1,
                           {{"HTTP", at(kBase) + "/page", 80, "Welcome", true, welcome},
                            {"HTTPS", at(kBase + 1) + "/page", 443, "Welcome", true, welcome},
                            {"HTTPS", at(kBase + 2) + "/page", 443, "", false, "certificate"}},
                           kBegin + "ProxyName=127.0.0.1\nProxyPort=" + std::to_string(kProxy) + "\n");
    direct.Expect();
    proxied.Expect();
    const std::string went = proxy.folder.Read("answers");
    EXPECT_TRUE(Holds(went, "GET http://" + at(kBase) + "/page") && Holds(went, "CONNECT " + at(kBase + 1))) << went;
}

}  // namespace
}  // namespace korvane::test
