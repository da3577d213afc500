// ICMP echoes in the virtual world: the hosts of a VirtualNet answer as they are scripted to. Time moves on during an echo and
// nothing is delivered.
#pragma once

#include <arpa/inet.h>

#include <string>
#include <string_view>

#include "platform/icmp_echo.h"
#include "support/virtual_net.h"

namespace korvane {

class VirtualIcmpEcho : public IcmpEcho {
public:
    explicit VirtualIcmpEcho(VirtualNet& net) : net_(net) {}

    std::optional<Ipv4Address> InetAddr(std::string_view text) const override {
        const Ipv4Address address = inet_addr(std::string(text).c_str());
        return address == INADDR_NONE ? std::nullopt : std::optional(address);
    }
    bool IcmpCreateFile(std::string& whyNot) override {
        whyNot = net_.EchoForbidden();
        return whyNot.empty();
    }
    EchoReply IcmpSendEcho(Ipv4Address address, std::string_view, int, std::chrono::milliseconds wait) override {
        if (!net_.NetworkThere()) return {};
        const VirtualHost* const host = net_.FindHost(inet_ntoa(in_addr{address}));
        const bool reachable = host != nullptr && !host->IsDown();
        const VirtualHost::EchoAnswer answer = reachable ? host->HowEchoed() : VirtualHost::EchoAnswer{false};
        const bool inTime = answer.comes && answer.after <= wait;
        net_.World().events.Sleep(inTime ? answer.after : wait);
        return inTime ? EchoReply{true, answer.status, answer.after, address} : EchoReply{};
    }
    void IcmpCloseHandle() override {}

private:
    VirtualNet& net_;
};

}  // namespace korvane
