// ICMP echoes in the virtual world: the hosts of a VirtualNet answer as they are scripted to. Time moves on during an echo and
// nothing is delivered.
#pragma once

#include <string>
#include <string_view>

#include "platform/icmp_echo.h"
#include "support/virtual_net.h"

namespace korvane {

class VirtualIcmpEcho : public IcmpEcho {
public:
    explicit VirtualIcmpEcho(VirtualNet& net) : net_(net) {}

    std::optional<Ipv4Address> InetAddr(std::string_view text) const override;
    bool IcmpCreateFile(std::string& whyNot) override;
    EchoReply IcmpSendEcho(Ipv4Address address, std::string_view data, int timeToLive, std::chrono::milliseconds wait) override;
    void IcmpCloseHandle() override { --openHandles; }

    // What the program did.
    int openHandles = 0;
    int echoes = 0;
    std::string lastData;
    int lastTimeToLive = 0;
    std::chrono::milliseconds lastWait{0};

private:
    VirtualNet& net_;
};

}  // namespace korvane
