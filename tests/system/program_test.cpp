// The whole program without a display against real servers: from a settings file to accounts in the database, and out again by a
// signal.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/linux_icmp_echo.h"
#include "support/loopback_server.h"
#include "system/real_servers.h"

namespace korvane::test {
namespace {

using namespace std::chrono_literals;

struct Entry {
    std::string name, type, port, mustHaveText;
    std::string address = "127.0.0.1";
    std::string more = "";
};

// A home with these entries, and the program that runs in it.
class Program {
public:
    explicit Program(const std::vector<Entry>& entries) { home_.Write("kvurlwatchn.ini", SettingsFile(entries)); }

    /// `authority`: a certificate to trust besides none.
    void Start(const std::string& authority = "") { process_ = std::make_unique<Process>(Command(authority), home_); }

    std::vector<std::string> Command(const std::string& authority = "") const {
        std::vector<std::string> words = {"env", "-u", "DISPLAY", "-u", "WAYLAND_DISPLAY", "KORVANE_HOME=" + home_.Path()};
        if (!authority.empty()) words.push_back("SSL_CERT_FILE=" + authority);
        words.push_back(std::string(KORVANE_DIST_DIR) + "/korvanecore");
        return words;
    }
    Process& Running() { return *process_; }

    /// Waits until the condition holds; false when it does not within the limit, or the program ends.
    template <class Condition>
    bool Waited(std::chrono::seconds limit, Condition condition) const {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        while (!condition()) {
            if (std::chrono::steady_clock::now() > deadline || process_->Ended(50ms)) return false;
        }
        return true;
    }

    std::string Query(const std::string& sql) const { return Rows(home_.Path("kvdata2.mdb"), sql); }

    /// What the accounts must be at any moment: a whole file, and for every failure counted its row.
    void ExpectWholeAccounts() const {
        EXPECT_EQ(Query("PRAGMA integrity_check"), "ok\n");
        EXPECT_EQ(Query("SELECT strDesc, nFail, nTriesCur FROM Servers WHERE nTriesCur > nFail OR nFail NOT IN "
                        "(SELECT count(*) FROM Failures WHERE idParent = Servers.id)"),
                  "");
    }

    std::string Output() const { return home_.Read("output"); }

private:
    static std::string SettingsFile(const std::vector<Entry>& entries) {
        std::string text = "[Settings]\nBegin=0\nNumURLs=" + std::to_string(entries.size()) + "\n";
        int number = 0;
        for (const Entry& entry : entries) {
            text += "[Settings" + std::to_string(++number) + "]\nURL=" + entry.address + "\nPRETTY=" + entry.name +
                    "\nType=" + entry.type + "\nServPort=" + entry.port + "\nMustHaveText=" + entry.mustHaveText +
                    "\nTries=3\nTimeout=10\n" + entry.more;
        }
        return text;
    }

    PrivateFolder home_;
    std::unique_ptr<Process> process_;
};

TEST(Program, ChecksRealServersAndKeepsTheirAccounts) {
    KORVANE_NEEDS("nginx");
    KORVANE_NEEDS("dovecot");
    KORVANE_NEEDS("vsftpd");
    const WebServer web;
    const MailServer mail;
    const FtpServer ftp;
    // Where the system allows no echo, the check fails and everything else goes on.
    std::string whyNot;
    const std::string ping = LinuxIcmpEcho().IcmpCreateFile(whyNot) ? "ping|UP|1|0\n" : "ping|Failing|0|1\n";
    const std::string http = std::to_string(web.http), https = std::to_string(web.https);
    Program program({
        {"page", "HTTP", http, "Welcome", "127.0.0.1/page"},
        {"wrong text", "HTTP", http, "welcome", "127.0.0.1/page"},
        {"private", "HTTP", http, "Welcome, operator", "127.0.0.1/private", "UserName=operator\nPassWord=open sesame\n"},
        {"picture", "HTTP", http, "", "127.0.0.1/picture"},
        {"trusted", "HTTPS", https, "Welcome", "localhost/page"},
        {"expired", "HTTPS", std::to_string(web.httpsExpired), "", "localhost/page"},
        {"ping", "PING", "ICMP", "1000"},
        {"no address", "PING", "ICMP", "1000", "localhost"},
        {"smtp", "SMTP", std::to_string(mail.smtp), "220,QUIT,221"},
        {"pop3", "POP3", std::to_string(mail.pop3), "+OK,QUIT,+OK"},
        {"imap", "IMAP", std::to_string(mail.imap), "OK,a LOGOUT,BYE"},
        {"ftp", "FTP", std::to_string(ftp.port), "220,QUIT,221"},
        {"refused", "TCP", std::to_string(RefusingPort()), ""},
    });
    program.Start(web.Authority());
    EXPECT_TRUE(program.Waited(60s, [&] {
        return program.Query("SELECT count(*) FROM Servers WHERE nSuccess + nFail > 0") == "13\n";
    })) << program.Output();
    EXPECT_EQ(program.Query("SELECT strDesc, strCurStatus, nSuccess, nFail FROM Servers ORDER BY ID"),
              "page|UP|1|0\n"
              "wrong text|Failing|0|1\n"
              "private|UP|1|0\n"
              "picture|UP|1|0\n"
              "trusted|UP|1|0\n"
              "expired|Failing|0|1\n" +
                  ping +
                  "no address|Failing|0|1\n"
                  "smtp|UP|1|0\n"
                  "pop3|UP|1|0\n"
                  "imap|UP|1|0\n"
                  "ftp|UP|1|0\n"
                  "refused|Failing|0|1\n");
    EXPECT_EQ(program.Query("SELECT strLastResponse FROM Servers WHERE strDesc = 'picture'"), "Binary Data Returned\n");
    program.ExpectWholeAccounts();

    // It goes on from there after a restart, without taking the entries in again.
    program.Running().Signal(SIGINT);
    ASSERT_TRUE(program.Running().Ended(5s));
    EXPECT_EQ(program.Running().ExitStatus(), 0) << program.Output();
    program.Query("UPDATE Servers SET dtNextCheck = '2026-01-01 00:00:00' WHERE strDesc = 'smtp'");
    program.Start(web.Authority());
    EXPECT_TRUE(
        program.Waited(30s, [&] { return program.Query("SELECT nSuccess FROM Servers WHERE strDesc = 'smtp'") == "2\n"; }));
    EXPECT_EQ(program.Query("SELECT count(*) FROM Servers"), "13\n");
}

TEST(Program, EndsInTheMiddleOfACheck) {
    const LoopbackServer silent([](LoopbackServer::Peer& peer) { peer.ReadToEnd(); });
    struct Case {
        int signal, status;
    };
    for (const auto& [signal, status] : {Case{SIGTERM, 0}, Case{SIGKILL, -SIGKILL}}) {
        SCOPED_TRACE(signal);
        // The first is accounted for when the second is being checked.
        Program program(
            {{"refused", "TCP", std::to_string(RefusingPort()), ""}, {"silent", "TCP", std::to_string(silent.Port()), "220"}});
        const int before = silent.Connections();
        program.Start();
        ASSERT_TRUE(program.Waited(30s, [&] { return silent.Connections() > before; })) << program.Output();
        program.Running().Signal(signal);
        ASSERT_TRUE(program.Running().Ended(5s));
        EXPECT_EQ(program.Running().ExitStatus(), status) << program.Output();
        program.ExpectWholeAccounts();
        EXPECT_EQ(program.Query("SELECT strDesc, nSuccess, nFail FROM Servers ORDER BY ID"), "refused|0|1\nsilent|0|0\n");
        program.Start();
        EXPECT_TRUE(program.Waited(30s, [&] { return silent.Connections() > before + 1; })) << program.Output();
    }
}

TEST(Program, SecondInstanceLeavesTheFirstAlone) {
    const LoopbackServer silent([](LoopbackServer::Peer& peer) { peer.ReadToEnd(); });
    Program program({{"silent", "TCP", std::to_string(silent.Port()), "220"}});
    program.Start();
    ASSERT_TRUE(program.Waited(30s, [&] { return silent.Connections() == 1; })) << program.Output();
    const PrivateFolder elsewhere;
    const Process second(program.Command(), elsewhere);
    ASSERT_TRUE(second.Ended(10s));
    EXPECT_EQ(second.ExitStatus(), 1);
    EXPECT_NE(elsewhere.Read("output").find("Korvane is already running."), std::string::npos);
    EXPECT_FALSE(program.Running().Ended(0s));
}

}  // namespace
}  // namespace korvane::test
