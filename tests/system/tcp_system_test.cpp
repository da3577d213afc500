// Scripted conversations and pings with nothing replaced but the operator, against real mail and FTP servers and the machine
// itself.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "engine/ping_checker.h"
#include "engine/tcp_checker.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/linux_icmp_echo.h"
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_tcp_socket.h"
#include "support/loopback_server.h"
#include "support/recording_operator.h"
#include "system/real_servers.h"

namespace korvane::test {
namespace {

using namespace std::chrono_literals;

class TcpSystem : public testing::Test {
protected:
    int argc_ = 1;
    char name_[5] = "test";
    char* argv_[2] = {name_, nullptr};
    QCoreApplication application_{argc_, argv_};
    SystemClock clock_;
    QtEvents events_;
    RecordingOperator person_;
    StatusLog status_{person_, clock_};
    NoConversationWindow conversation_;
    QtTcpSocket socket_;
    TcpChecker tcp_{{socket_, events_, clock_, person_, status_, conversation_}};
};

TEST_F(TcpSystem, GreetingsOfRealServers) {
    KORVANE_NEEDS("dovecot");
    KORVANE_NEEDS("vsftpd");
    const MailServer mail;
    const FtpServer ftp;
    struct Case {
        int port;
        std::string expected, response, reason;  ///< parts of what comes back
    };
    const std::vector<Case> cases = {
        {mail.smtp, "220,QUIT,221", "221", ""},
        {mail.pop3, "+OK,QUIT,+OK", "+OK Logging out", ""},
        {mail.imap, "OK,a LOGOUT,BYE", "BYE", ""},
        {ftp.port, "220,QUIT,221", "221", ""},
        {ftp.port, "220,HELP,530,QUIT,221", "221", ""},
        {mail.smtp, "+OK", "220", "Expected +OK"},
        {RefusingPort(), "220", "", "Could Not Connect to localhost Double check for typos. "},
        {mail.smtp, "220,QUIT,221", "221", ""},  // after a refused connection the next check finds the socket closed
    };
    for (const auto& [port, expected, response, reason] : cases) {
        SCOPED_TRACE(expected + " on " + std::to_string(port));
        const CheckResult result = tcp_.DoTCPRequest("localhost", expected, 10s, std::to_string(port));
        EXPECT_EQ(result.strReason.empty(), reason.empty()) << result.strReason;
        EXPECT_NE(result.strReason.find(reason), std::string::npos) << result.strReason;
        EXPECT_NE((result.response + result.strReason).find(response), std::string::npos) << result.response;
    }
}

TEST_F(TcpSystem, PingsOfThisMachine) {
    LinuxFiles files;
    const PrivateFolder folder;
    Log log(files, clock_, folder.Path(), "1.0.0");
    LinuxIcmpEcho echo;
    if (std::string whyNot; !echo.IcmpCreateFile(whyNot)) GTEST_SKIP() << whyNot;
    echo.IcmpCloseHandle();
    PingChecker ping({echo, clock_, person_, status_, log});
    const CheckResult here = ping.DoPingRequest("127.0.0.1", 1000);
    EXPECT_EQ(here.strReason, "");
    EXPECT_TRUE(here.response.starts_with("Ping Success to 127.0.0.1. Took ")) << here.response;
    EXPECT_EQ(ping.DoPingRequest("localhost", 1000).strReason,
              "Ping Failure to localhost.   localhost is not a valid IP address.");
}

}  // namespace
}  // namespace korvane::test
