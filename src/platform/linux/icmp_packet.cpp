#include "platform/linux/icmp_packet.h"

#include <linux/icmp.h>
#include <netinet/in.h>

#include <cstddef>

namespace korvane {
namespace {

constexpr std::size_t kHeader = 8;
constexpr std::size_t kIpHeader = 20;
constexpr std::size_t kIpProtocolAt = 9;

std::uint8_t ByteAt(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint8_t>(bytes[at]);
}

void Put16(std::string& bytes, std::size_t at, unsigned number) {
    bytes[at] = static_cast<char>(number >> 8);
    bytes[at + 1] = static_cast<char>(number & 0xFF);
}

// The one's complement sum of RFC 1071; 0 over a message with a valid checksum.
unsigned Checksum(std::string_view bytes) {
    std::uint32_t sum = 0;
    for (std::size_t at = 0; at < bytes.size(); ++at)
        sum += static_cast<std::uint32_t>(ByteAt(bytes, at)) << (at % 2 == 0 ? 8 : 0);
    while (sum >> 16 != 0)
        sum = (sum & 0xFFFF) + (sum >> 16);
    return ~sum & 0xFFFF;
}

}  // namespace

std::string EchoRequest(std::uint16_t identifier, std::uint16_t sequence, std::string_view data) {
    std::string message(kHeader, '\0');
    message[0] = ICMP_ECHO;
    Put16(message, 4, identifier);
    Put16(message, 6, sequence);
    message += data;
    Put16(message, 2, Checksum(message));
    return message;
}

std::string_view IcmpMessageOf(std::string_view packet) {
    if (packet.size() < kIpHeader || ByteAt(packet, 0) >> 4 != 4 || ByteAt(packet, kIpProtocolAt) != IPPROTO_ICMP) return {};
    const std::size_t header = std::size_t{4} * (ByteAt(packet, 0) & 0x0FU);
    return header < kIpHeader || header > packet.size() ? std::string_view() : packet.substr(header);
}

bool SameEcho(std::string_view message, std::string_view request) {
    return message.size() >= kHeader && message.substr(4, 4) == request.substr(4, 4);
}

std::optional<int> EchoStatus(std::string_view message, std::string_view request) {
    if (message.size() < kHeader || Checksum(message) != 0) return std::nullopt;
    switch (const std::uint8_t type = ByteAt(message, 0)) {
        case ICMP_ECHOREPLY:
            if (message.substr(4) == request.substr(4)) return 0;
            return std::nullopt;
        case ICMP_DEST_UNREACH:
        case ICMP_TIME_EXCEEDED:
        case ICMP_PARAMETERPROB: {
            const std::string_view about = IcmpMessageOf(message.substr(kHeader));
            if (!SameEcho(about, request) || ByteAt(about, 0) != ICMP_ECHO) return std::nullopt;
            return type * 256 + ByteAt(message, 1);
        }
        default:
            return std::nullopt;
    }
}

}  // namespace korvane
