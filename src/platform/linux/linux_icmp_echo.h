// ICMP echoes through the kernel: a datagram ICMP socket where the system allows it to all users, else a raw socket.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/icmp_echo.h"
#include "platform/linux/descriptor.h"

namespace korvane {

class LinuxIcmpEcho : public IcmpEcho {
public:
    std::optional<Ipv4Address> InetAddr(std::string_view text) const override;
    bool IcmpCreateFile(std::string& whyNot) override;

    /// Returns "not answered" at once when no handle is open.
    EchoReply IcmpSendEcho(Ipv4Address address, std::string_view data, int timeToLive, std::chrono::milliseconds wait) override;
    void SendEchoes(const std::vector<Ipv4Address>& to, std::string_view data, int timeToLive) override;
    bool EchoCameBack(std::chrono::milliseconds wait) override;
    void IcmpCloseHandle() override;

private:
    bool Send(const std::string& request, Ipv4Address address, int timeToLive) const;
    EchoReply Receive(const std::string& request) const;
    EchoReply ReceiveError(const std::string& request) const;

    Descriptor socket_;
    bool raw_ = false;
    std::uint16_t identifier_ = 0;
    std::uint16_t sequence_ = 0;
    std::vector<std::string> sent_;  ///< by SendEchoes
    std::chrono::steady_clock::time_point sentAt_;
    std::chrono::system_clock::time_point sentOn_;  ///< by the clock that the kernel notes arrivals by
};

}  // namespace korvane
