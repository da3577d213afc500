#include "support/virtual_icmp_echo.h"

#include <arpa/inet.h>

#include <algorithm>

namespace korvane {

using std::chrono::milliseconds;

std::optional<Ipv4Address> VirtualIcmpEcho::InetAddr(std::string_view text) const {
    const Ipv4Address address = inet_addr(std::string(text).c_str());
    if (address == INADDR_NONE) return std::nullopt;
    return address;
}

bool VirtualIcmpEcho::IcmpCreateFile(std::string& whyNot) {
    whyNot = net_.EchoForbidden();
    if (!whyNot.empty()) return false;
    ++openHandles;
    return true;
}

EchoReply VirtualIcmpEcho::IcmpSendEcho(Ipv4Address address, std::string_view data, int timeToLive, milliseconds wait) {
    ++echoes;
    lastData = data;
    lastTimeToLive = timeToLive;
    lastWait = wait;
    if (!net_.NetworkThere()) return {};

    VirtualHost* host = net_.FindHost(inet_ntoa(in_addr{address}));
    const bool reachable = host != nullptr && !host->IsDown();
    const VirtualHost::EchoAnswer answer = reachable ? host->HowEchoed() : VirtualHost::EchoAnswer{false};
    const bool inTime = answer.comes && answer.after <= wait;
    net_.World().events.Sleep(inTime ? answer.after : wait);
    if (!inTime) return {};
    return {true, answer.status, answer.after, address};
}

}  // namespace korvane
