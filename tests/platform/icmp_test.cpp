// ICMP echoes: what counts as an answer among all that routers and strangers may send.
#include <gtest/gtest.h>
#include <netinet/in.h>

#include "platform/linux/icmp_packet.h"
#include "platform/linux/linux_icmp_echo.h"

namespace korvane::icmp_test {

using namespace std::chrono_literals;

const std::string kData(32, 'A');
const std::string kIpHeader = '\x45' + std::string(8, '\0') + char{IPPROTO_ICMP} + std::string(10, '\0');

/// The bytes of an ICMP message of any kind, with its checksum.
std::string Message(char type, char code, const std::string& rest) {
    std::string message = std::string{type, code, 0, 0} + rest;
    unsigned sum = 0;
    for (std::size_t i = 0; i + 1 < message.size(); i += 2)
        sum += static_cast<unsigned char>(message[i]) * 256U + static_cast<unsigned char>(message[i + 1]);
    sum = ~((sum & 0xFFFF) + (sum >> 16));
    message[2] = static_cast<char>(sum >> 8);
    message[3] = static_cast<char>(sum);
    return message;
}
std::string ReplyTo(const std::string& request) {
    return Message(0, 0, request.substr(4));
}
std::string ErrorAbout(const std::string& request, char type, char code) {
    return Message(type, code, std::string(4, '\0') + kIpHeader + request.substr(0, 8));
}

TEST(IcmpEcho, OnlyAnAnswerToThisVeryEchoCounts) {
    const std::string request = EchoRequest(0x1234, 7, kData), next = EchoRequest(0x1234, 8, kData);
    EXPECT_EQ(EchoStatus(ReplyTo(request), request), 0);
    EXPECT_EQ(EchoStatus(ErrorAbout(request, 3, 1), request), 3 * 256 + 1);
    EXPECT_EQ(EchoStatus(ErrorAbout(request, 11, 0), request), 11 * 256);
    std::string damaged = ErrorAbout(request, 3, 1);
    damaged[1] = 2;  // another reason, under the old checksum
    for (const std::string& message :
         {request, damaged, ReplyTo(next), ReplyTo(EchoRequest(0x1235, 7, kData)), ReplyTo(EchoRequest(0x1234, 7, "AAAA")),
          ReplyTo(EchoRequest(0x1234, 7, kData.substr(1) + "B")), ErrorAbout(request, 5, 0), ErrorAbout(next, 3, 1),
          ErrorAbout(ReplyTo(request), 3, 1), Message(3, 1, std::string(32, '\xFF')), Message(3, 1, "\x4F"), std::string()})
        EXPECT_FALSE(EchoStatus(message, request)) << testing::PrintToString(message);
    EXPECT_EQ(IcmpMessageOf(std::string("\x4F\0\0\0\0\0\0\0\0\1", 10) + std::string(20, 'x')), "");
    if (LinuxIcmpEcho echo; echo.IcmpCreateFile(damaged)) {
        const std::vector<Ipv4Address> here{htonl(INADDR_LOOPBACK)};
        const std::tuple<std::vector<Ipv4Address>, std::chrono::milliseconds, bool> sent[] = {
            {here, 1s, true}, {here, -1ms, false}, {{}, 1s, false}};
        for (const auto& [to, wait, back] : sent) {
            echo.SendEchoes(to, kData, 255);
            EXPECT_EQ(echo.EchoCameBack(wait), back) << wait.count();
        }
    }
    for (const char* text : {"255.255.255.255", "localhost", "", "127.0.0.256", "127.0.0.1.1", "::1", "http://127.0.0.1"})
        EXPECT_FALSE(LinuxIcmpEcho().InetAddr(text)) << text;
}

}  // namespace korvane::icmp_test
