// LinuxIcmpEcho against a network in which this test answers the echoes itself, with whatever a router or a stranger may send.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "base/text.h"
#include "platform/linux/icmp_packet.h"
#include "platform/linux/linux_icmp_echo.h"
#include "support/child_process.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kIpHeader = 20;
const std::string kData(32, 'A');

/// The bytes of an ICMP message of any kind: an echo request with another head, and its checksum mended.
std::string Message(char type, char code, const std::string& rest) {
    std::string message = EchoRequest(0, 0, rest.substr(4));
    message.replace(4, 4, rest.substr(0, 4));
    message[0] = type;
    message[1] = code;
    message[2] = message[3] = 0;
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

std::string ErrorAbout(const std::string& packet, char type, char code) {
    return Message(type, code, std::string(4, '\0') + packet.substr(0, kIpHeader + 8));
}

std::string PacketWith(const std::string& request) {
    std::string packet(kIpHeader, '\0');
    packet[0] = 0x45;
    packet[9] = IPPROTO_ICMP;
    return packet + request;
}

TEST(EchoStatus, OnlyAnAnswerToThisVeryEchoCounts) {
    const std::string request = EchoRequest(0x1234, 7, kData);
    const std::string other = EchoRequest(0x1234, 8, kData);
    std::string damaged = ReplyTo(request);
    damaged.back() = 'B';
    const struct {
        std::string message;
        std::optional<int> status;
    } cases[] = {
        {ReplyTo(request), 0},
        {request, std::nullopt},
        {ReplyTo(other), std::nullopt},
        {ReplyTo(EchoRequest(0x1235, 7, kData)), std::nullopt},
        {ReplyTo(EchoRequest(0x1234, 7, kData.substr(1) + "B")), std::nullopt},
        {ReplyTo(EchoRequest(0x1234, 7, "AAAA")), std::nullopt},
        {damaged, std::nullopt},
        {ErrorAbout(PacketWith(request), 3, 1), 3 * 256 + 1},
        {ErrorAbout(PacketWith(request), 11, 0), 11 * 256},
        {ErrorAbout(PacketWith(request), 5, 0), std::nullopt},
        {ErrorAbout(PacketWith(other), 3, 1), std::nullopt},
        {ErrorAbout(PacketWith(ReplyTo(request)), 3, 1), std::nullopt},
        {ErrorAbout(std::string(28, '\xFF'), 3, 1), std::nullopt},
        {ErrorAbout("\x4F", 3, 1), std::nullopt},
        {"", std::nullopt},
        {std::string(7, '\0'), std::nullopt},
    };
    for (const auto& each : cases)
        EXPECT_EQ(EchoStatus(each.message, request), each.status) << &each - cases;
    EXPECT_EQ(IcmpMessageOf(PacketWith(request)), request);
    EXPECT_EQ(IcmpMessageOf(std::string("\x4F\0\0\0\0\0\0\0\0\1", 10) + std::string(20, 'x')), "");
}

void SetSystemValue(const std::string& name, const std::string& value) {
    std::ofstream("/proc/sys/net/ipv4/" + name) << value << std::flush;
}

/// Answers `echoes` echo requests with what `answer` makes of their packets, from another thread.
class Router {
public:
    using Answer = std::function<std::vector<std::string>(const std::string& packet)>;

    Router(int echoes, const Answer& answer)
        : socket_(::socket(AF_INET, SOCK_RAW, IPPROTO_ICMP)), thread_([this, echoes, answer] { Play(echoes, answer); }) {}
    ~Router() {
        thread_.join();
        ::close(socket_);
    }

private:
    void Play(int echoes, const Answer& answer) const {
        for (int seen = 0; seen < echoes;) {
            std::array<char, 2048> bytes{};
            const ssize_t size = ::recv(socket_, bytes.data(), bytes.size(), 0);
            const std::string packet(bytes.data(), static_cast<std::size_t>(size));
            if (packet[kIpHeader] != 8) continue;
            ++seen;
            sockaddr_in loopback{};
            loopback.sin_family = AF_INET;
            loopback.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            for (const std::string& message : answer(packet))
                ::sendto(socket_, message.data(), message.size(), 0, reinterpret_cast<sockaddr*>(&loopback), sizeof loopback);
        }
    }

    const int socket_;
    std::thread thread_;
};

bool AnswersAreTold(const char* group) {
    EnterEmptyNetwork();
    RaiseLoopback();
    SetSystemValue("ping_group_range", group);
    LinuxIcmpEcho echo;
    std::string whyNot;
    if (!echo.IcmpCreateFile(whyNot)) return false;
    const Ipv4Address address = *echo.InetAddr("127.0.0.1");
    const auto send = [&](std::chrono::milliseconds wait = 5s) { return echo.IcmpSendEcho(address, kData, 255, wait); };

    EXPECT_EQ(send().status, 0);
    EXPECT_FALSE(echo.IcmpSendEcho(*echo.InetAddr("192.0.2.1"), kData, 255, 5s).answered);
    SetSystemValue("icmp_echo_ignore_all", "1");

    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(send(50ms).answered);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 50ms);

    int asked = 0;
    const Router router(2, [&](const std::string& packet) -> std::vector<std::string> {
        const std::string request = packet.substr(kIpHeader);
        const std::string other = EchoRequest(99, 99, kData);
        return {ReplyTo(other), ErrorAbout(PacketWith(other), 3, 3), ++asked == 1 ? ErrorAbout(packet, 11, 0) : ReplyTo(request)};
    });
    const EchoReply expired = send();
    EXPECT_TRUE(expired.answered);
    EXPECT_EQ(expired.status, 11 * 256);
    EXPECT_EQ(expired.address, address);
    const EchoReply answered = send();
    EXPECT_TRUE(answered.answered);
    EXPECT_EQ(answered.status, 0);
    return !testing::Test::HasFailure();
}

TEST(LinuxIcmpEchoTest, AnswersAndErrorsAreToldOnBothKindsOfSocket) {
    if (!PassesInChild(EnterEmptyNetwork)) GTEST_SKIP() << "this user cannot make a network of its own";
    EXPECT_TRUE(PassesInChild([] { return AnswersAreTold("0 0"); })) << "datagram";
    EXPECT_TRUE(PassesInChild([] { return AnswersAreTold("1 0"); })) << "raw";
}

TEST(LinuxIcmpEchoTest, ARefusalNamesWhatToAllow) {
    if (!PassesInChild(EnterEmptyNetwork)) GTEST_SKIP() << "this user cannot make a network of its own";
    EXPECT_TRUE(PassesInChild([] {
        EnterEmptyNetwork();
        SetSystemValue("ping_group_range", "1 0");
        GiveUpPrivileges();
        std::string whyNot;
        LinuxIcmpEcho echo;
        const bool refused = !echo.IcmpCreateFile(whyNot);
        const bool silent = !echo.IcmpSendEcho(*echo.InetAddr("127.0.0.1"), kData, 255, 2s).answered;
        return refused && silent && Holds(whyNot, "net.ipv4.ping_group_range") && Holds(whyNot, "cap_net_raw+ep /");
    }));
}

}  // namespace
}  // namespace korvane
