// The network of the virtual world: hosts by name or address, their TCP servers, their echoes, and web pages by URL.
// VirtualTcpSocket, VirtualInet and VirtualIcmpEcho talk to it. It can be changed at any time, so that a server fails and
// recovers by a scheduled action:
//
//     VirtualNet net(world);
//     net.Host("10.0.0.1").Echo(12ms).Port(25).Speak("220 ready\r\n", 30ms).OnLine("QUIT", "221 bye\r\n");
//     world.After(1h, [&] { net.Host("10.0.0.1").Port(25).Refuse(); });
//     world.After(2h, [&] { net.Host("10.0.0.1").Port(25).Accept(3ms); });
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "support/virtual_page.h"
#include "support/virtual_server.h"
#include "support/virtual_world.h"

namespace korvane {

/// A machine. By default its name is found after 1 ms (an address is never looked up), echoes come back after 1 ms, and ports
/// that nobody mentioned refuse after 1 ms.
class VirtualHost {
    using Milliseconds = std::chrono::milliseconds;

public:
    struct Lookup {
        enum class Outcome { Found, Unknown, Never };
        Outcome outcome = Outcome::Found;
        Milliseconds after{1};
    };
    struct EchoAnswer {
        bool comes = true;
        int status = 0;  ///< 0, or ICMP type * 256 + code
        Milliseconds after{1};
    };

    VirtualHost& ResolveAfter(Milliseconds after) { return Set(lookup_, {Lookup::Outcome::Found, after}); }
    VirtualHost& NeverResolves() { return Set(lookup_, {Lookup::Outcome::Never, {}}); }
    /// The name server answers that there is no such host.
    VirtualHost& Unknown(Milliseconds after = Milliseconds(1)) { return Set(lookup_, {Lookup::Outcome::Unknown, after}); }

    VirtualHost& Echo(Milliseconds after) { return Echo(EchoAnswer{true, 0, after}); }
    VirtualHost& EchoSilent() { return Echo(EchoAnswer{false, 0, {}}); }
    /// An ICMP error comes back instead, as type * 256 + code (3 * 256 + 1: host unreachable).
    VirtualHost& EchoStatus(int status, Milliseconds after = Milliseconds(1)) { return Echo(EchoAnswer{true, status, after}); }
    VirtualHost& Echo(EchoAnswer answer) {
        return DecideEcho([answer] { return answer; });
    }
    /// What becomes of an echo is decided when it is sent.
    VirtualHost& DecideEcho(std::function<EchoAnswer()> answer) { return Set(echo_, std::move(answer)); }

    /// Down: as if the plug was pulled. Nothing answers, echoes and pages included, until Up; the scripts stay.
    VirtualHost& Down() { return Set(down_, true); }
    VirtualHost& Up() { return Set(down_, false); }

    VirtualServer& Port(int port) { return ports_[port]; }

    // For the parts of this world.
    const Lookup& HowFound() const { return lookup_; }
    EchoAnswer HowEchoed() const { return echo_ ? echo_() : EchoAnswer{}; }
    bool IsDown() const { return down_; }
    /// Null when nobody ever mentioned the port.
    VirtualServer* FindPort(int port) { return ports_.contains(port) ? &ports_[port] : nullptr; }

private:
    template <class Part>
    VirtualHost& Set(Part& part, std::type_identity_t<Part> value) {
        part = std::move(value);
        return *this;
    }

    Lookup lookup_;
    std::function<EchoAnswer()> echo_;
    bool down_ = false;
    std::map<int, VirtualServer> ports_;
};

class VirtualNet {
public:
    explicit VirtualNet(VirtualWorld& world) : world_(world) {}
    VirtualNet(const VirtualNet&) = delete;

    /// A name (in any case) or a dotted address; made when first mentioned. Names that were never mentioned are unknown,
    /// addresses that were never mentioned silent. The reference stays good.
    VirtualHost& Host(std::string_view name) { return hosts_[std::string(name)]; }

    /// By the exact text of the URL; made when first mentioned. URLs that were never mentioned fail after 1 ms with
    /// "Could not resolve host: <host>".
    VirtualPage& Page(std::string_view url) { return pages_[std::string(url)]; }

    /// Without a network every Connect throws and every echo and page fails.
    void SetNetworkThere(bool there) { networkThere_ = there; }

    /// IcmpCreateFile fails with this reason; an empty one allows echoes again.
    void ForbidEcho(std::string whyNot) { echoForbidden_ = std::move(whyNot); }

    // For the parts of this world.
    VirtualWorld& World() { return world_; }
    bool NetworkThere() const { return networkThere_; }
    const std::string& EchoForbidden() const { return echoForbidden_; }
    VirtualHost* FindHost(const std::string& name) { return hosts_.contains(name) ? &hosts_[name] : nullptr; }
    VirtualPage* FindPage(const std::string& url) { return pages_.contains(url) ? &pages_[url] : nullptr; }

private:
    VirtualWorld& world_;
    std::map<std::string, VirtualHost, LessNoCase> hosts_;
    std::map<std::string, VirtualPage> pages_;
    bool networkThere_ = true;
    std::string echoForbidden_;
};

}  // namespace korvane
