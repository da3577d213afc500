// Port: ICMP echoes over IPv4 (RFC 792).
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane {

/// An IPv4 address in network byte order, like the result of inet_addr.
using Ipv4Address = std::uint32_t;

struct EchoReply {
    bool answered = false;  ///< an answer arrived in time
    int status = 0;         ///< 0: the echo itself came back; otherwise ICMP type and code of the error, as type * 256 + code
    std::chrono::milliseconds roundTripTime{0};
    Ipv4Address address = 0;  ///< the sender of the answer
};

class IcmpEcho {
public:
    virtual ~IcmpEcho() = default;

    /// Reads a dotted address like inet_addr(3); returns nothing when it is not one (or is 255.255.255.255). Names are never
    /// looked up.
    virtual std::optional<Ipv4Address> InetAddr(std::string_view text) const = 0;

    /// Returns whether echoes can be sent. If the system refuses, `whyNot` says why and what to allow.
    virtual bool IcmpCreateFile(std::string& whyNot) = 0;

    /// Sends one echo and blocks until the answer arrives or `wait` has passed; no events are delivered meanwhile. An echo that
    /// cannot be sent (no route) counts as not answered.
    virtual EchoReply IcmpSendEcho(Ipv4Address address, std::string_view data, int timeToLive,
                                   std::chrono::milliseconds wait) = 0;

    /// Sends an echo to each address and returns at once. What comes back for earlier ones is forgotten. An echo that cannot be
    /// sent is skipped.
    virtual void SendEchoes(const std::vector<Ipv4Address>& to, std::string_view data, int timeToLive) = 0;

    /// Returns whether one of the echoes of the last SendEchoes came back within `wait` after it was sent, whenever this is
    /// called. Blocks until one is there or that time is over; no events are delivered meanwhile. Called once for each SendEchoes.
    virtual bool EchoCameBack(std::chrono::milliseconds wait) = 0;

    virtual void IcmpCloseHandle() = 0;
};

}  // namespace korvane
