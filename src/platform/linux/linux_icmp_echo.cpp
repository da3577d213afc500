#include "platform/linux/linux_icmp_echo.h"

#include <arpa/inet.h>
#include <errno.h>
#include <linux/errqueue.h>
#include <linux/icmp.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "base/text.h"
#include "platform/linux/icmp_packet.h"

namespace korvane {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using std::chrono::steady_clock;
using std::chrono::system_clock;

// Space for an IP header with options, and for router errors, which quote at most 576 bytes (RFC 1812, section 4.3.2.3).
constexpr std::size_t kHeaders = 128;
constexpr std::size_t kLargestError = 1024;
constexpr int kMostForgotten = 1000;  // packets; more than the kernel keeps for a socket

sockaddr_in SocketAddress(Ipv4Address address) {
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_addr.s_addr = address;
    return result;
}

template <class Value>
void SetOption(const Descriptor& socket, int level, int option, const Value& value) {
    ::setsockopt(socket.Number(), level, option, &value, sizeof value);
}

Descriptor OpenIcmp(int type) {
    return Descriptor(::socket(AF_INET, type | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_ICMP));
}

// A raw socket receives every ICMP packet of the machine; this filter lets the kernel drop all but those that can answer an echo.
void PassAnswersOnly(const Descriptor& socket) {
    const icmp_filter filter{
        ~(1U << ICMP_ECHOREPLY | 1U << ICMP_DEST_UNREACH | 1U << ICMP_TIME_EXCEEDED | 1U << ICMP_PARAMETERPROB)};
    SetOption(socket, SOL_RAW, ICMP_FILTER, filter);
}

// For a datagram socket the kernel sets the identifier: the socket's port.
std::uint16_t IdentifierOf(const Descriptor& socket) {
    sockaddr_in address = SocketAddress(INADDR_ANY);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    const bool known = ::bind(socket.Number(), generic, size) == 0 && ::getsockname(socket.Number(), generic, &size) == 0;
    return known ? ntohs(address.sin_port) : 0;
}

std::string ProgramPath() {
    std::error_code error;
    return Or(std::filesystem::read_symlink("/proc/self/exe", error).string(), "the program");
}

std::string WhyNot(int error) {
    const bool forbidden = error == EPERM || error == EACCES || error == EPROTONOSUPPORT;
    if (!forbidden) return std::string("No ICMP echo can be sent: ") + std::strerror(error) + ".";
    return std::string("The system does not let this user send ICMP echoes (") + std::strerror(error) +
           "). To allow it for every user: sysctl -w net.ipv4.ping_group_range=\"0 2147483647\". To allow it for this program: "
           "setcap cap_net_raw+ep " +
           ProgramPath() + ", or AmbientCapabilities=CAP_NET_RAW in the unit of its service.";
}

// A late error about the previous echo would fail the next one.
void ForgetLateErrors(const Descriptor& socket) {
    int error = 0;
    socklen_t size = sizeof error;
    ::getsockopt(socket.Number(), SOL_SOCKET, SO_ERROR, &error, &size);
}

// As long as such an error waits, the socket counts as readable.
void ForgetAllErrors(const Descriptor& socket) {
    char byte = 0;
    for (int i = 0; i < kMostForgotten && ::recv(socket.Number(), &byte, sizeof byte, MSG_ERRQUEUE) >= 0; ++i)
        continue;
    ForgetLateErrors(socket);
}

void ForgetPackets(const Descriptor& socket) {
    ForgetAllErrors(socket);
    char byte = 0;
    for (int i = 0; i < kMostForgotten && ::recv(socket.Number(), &byte, sizeof byte, 0) >= 0; ++i)
        continue;
}

struct Packet {
    std::string bytes;
    Ipv4Address from = 0;
    system_clock::time_point arrived;
};

// Returns nothing if there is no packet, or an error.
std::optional<Packet> ReadPacket(const Descriptor& socket, std::size_t room) {
    Packet packet{std::string(room, '\0'), 0, system_clock::now()};
    sockaddr_in from{};
    alignas(cmsghdr) std::array<char, 256> control{};
    iovec into{packet.bytes.data(), packet.bytes.size()};
    msghdr message{};
    message.msg_name = &from;
    message.msg_namelen = sizeof from;
    message.msg_iov = &into;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    const ssize_t received = ::recvmsg(socket.Number(), &message, 0);
    if (received < 0) return std::nullopt;
    packet.bytes.resize(static_cast<std::size_t>(received));
    packet.from = from.sin_addr.s_addr;
    for (cmsghdr* each = CMSG_FIRSTHDR(&message); each != nullptr; each = CMSG_NXTHDR(&message, each)) {
        if (each->cmsg_level != SOL_SOCKET || each->cmsg_type != SO_TIMESTAMPNS) continue;
        timespec at{};
        std::memcpy(&at, CMSG_DATA(each), sizeof at);
        packet.arrived = system_clock::time_point(std::chrono::seconds(at.tv_sec) + nanoseconds(at.tv_nsec));
    }
    return packet;
}

// Returns whether the socket becomes readable before the deadline.
bool WaitReadable(const Descriptor& socket, steady_clock::time_point deadline) {
    for (;;) {
        const nanoseconds left = deadline - steady_clock::now();
        if (left <= nanoseconds::zero()) return false;
        const auto whole = std::chrono::duration_cast<std::chrono::seconds>(left);
        const timespec limit{whole.count(), (left - whole).count()};
        pollfd readable{socket.Number(), POLLIN, 0};
        const int ready = ::ppoll(&readable, 1, &limit, nullptr);
        if (ready > 0) return true;
        if (ready < 0 && errno != EINTR) return false;
    }
}

}  // namespace

std::optional<Ipv4Address> LinuxIcmpEcho::InetAddr(std::string_view text) const {
    if (text.find('\0') != std::string_view::npos) return std::nullopt;
    const in_addr_t address = ::inet_addr(std::string(text).c_str());
    return address == INADDR_NONE ? std::nullopt : std::optional<Ipv4Address>(address);
}

bool LinuxIcmpEcho::IcmpCreateFile(std::string& whyNot) {
    whyNot.clear();
    raw_ = false;
    if ((socket_ = OpenIcmp(SOCK_DGRAM))) {
        SetOption(socket_, SOL_IP, IP_RECVERR, 1);
        identifier_ = IdentifierOf(socket_);
        return true;
    }
    raw_ = true;
    if ((socket_ = OpenIcmp(SOCK_RAW))) {
        PassAnswersOnly(socket_);
        identifier_ = static_cast<std::uint16_t>(::getpid());  // the sequence number distinguishes the echoes of one process
        return true;
    }
    whyNot = WhyNot(errno);
    return false;
}

EchoReply LinuxIcmpEcho::IcmpSendEcho(Ipv4Address address, std::string_view data, int timeToLive, milliseconds wait) {
    const std::string request = EchoRequest(identifier_, ++sequence_, data);
    const auto start = steady_clock::now();
    if (!Send(request, address, timeToLive)) return {};
    while (WaitReadable(socket_, start + wait)) {
        EchoReply reply = Receive(request);
        if (!reply.answered) continue;
        reply.roundTripTime = std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
        return reply;
    }
    return {};
}

bool LinuxIcmpEcho::Send(const std::string& request, Ipv4Address address, int timeToLive) const {
    ForgetLateErrors(socket_);
    SetOption(socket_, SOL_IP, IP_TTL, timeToLive);
    const sockaddr_in to = SocketAddress(address);
    for (;;) {
        const ssize_t sent =
            ::sendto(socket_.Number(), request.data(), request.size(), 0, reinterpret_cast<const sockaddr*>(&to), sizeof to);
        if (sent >= 0) return true;
        if (errno != EINTR) return false;
    }
}

// Reads one packet. It may be about something else; the result is then not answered.
EchoReply LinuxIcmpEcho::Receive(const std::string& request) const {
    const auto packet = ReadPacket(socket_, std::max(kLargestError, kHeaders + request.size()));
    if (!packet) return raw_ ? EchoReply{} : ReceiveError(request);
    const auto status = EchoStatus(raw_ ? IcmpMessageOf(packet->bytes) : packet->bytes, request);
    return status ? EchoReply{true, *status, milliseconds(0), packet->from} : EchoReply{};
}

// The kernel does not deliver ICMP errors to readers of a datagram socket, but queues them with the request that they concern.
EchoReply LinuxIcmpEcho::ReceiveError(const std::string& request) const {
    std::array<char, 64> about{};
    alignas(cmsghdr) std::array<char, 512> control{};
    iovec into{about.data(), about.size()};
    msghdr message{};
    message.msg_iov = &into;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    const ssize_t received = ::recvmsg(socket_.Number(), &message, MSG_ERRQUEUE);
    if (received < 0 || !SameEcho({about.data(), static_cast<std::size_t>(received)}, request)) return {};
    for (cmsghdr* each = CMSG_FIRSTHDR(&message); each != nullptr; each = CMSG_NXTHDR(&message, each)) {
        if (each->cmsg_level != SOL_IP || each->cmsg_type != IP_RECVERR) continue;
        struct {
            sock_extended_err error;
            sockaddr_in offender;
        } told{};
        std::memcpy(&told, CMSG_DATA(each), sizeof told);
        if (told.error.ee_origin != SO_EE_ORIGIN_ICMP) continue;
        return {true, told.error.ee_type * 256 + told.error.ee_code, milliseconds(0), told.offender.sin_addr.s_addr};
    }
    return {};
}

void LinuxIcmpEcho::SendEchoes(const std::vector<Ipv4Address>& to, std::string_view data, int timeToLive) {
    ForgetPackets(socket_);
    SetOption(socket_, SOL_SOCKET, SO_TIMESTAMPNS, 1);
    sent_.clear();
    sentAt_ = steady_clock::now();
    sentOn_ = system_clock::now();
    for (const Ipv4Address address : to) {
        std::string request = EchoRequest(identifier_, ++sequence_, data);
        if (Send(request, address, timeToLive)) sent_.push_back(std::move(request));
    }
}

bool LinuxIcmpEcho::EchoCameBack(milliseconds wait) {
    if (sent_.empty()) return false;
    const auto isAnswer = [&](const Packet& packet) {
        const std::string_view message = raw_ ? IcmpMessageOf(packet.bytes) : packet.bytes;
        return packet.arrived - sentOn_ <= wait && std::any_of(sent_.begin(), sent_.end(), [&](const std::string& request) {
                   return EchoStatus(message, request) == 0;
               });
    };
    do {
        ForgetAllErrors(socket_);
        while (const auto packet = ReadPacket(socket_, kLargestError))
            if (isAnswer(*packet)) return true;
    } while (WaitReadable(socket_, sentAt_ + wait));
    return false;
}

void LinuxIcmpEcho::IcmpCloseHandle() {
    socket_ = Descriptor();
}

}  // namespace korvane
