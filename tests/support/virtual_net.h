// The network of the virtual world: hosts by name or address, their TCP servers, their echoes, and web pages by URL.
// VirtualTcpSocket, VirtualInet and VirtualIcmpEcho talk to it. It can be changed at any time, so that a server fails and
// recovers by a scheduled action:
//
//     VirtualNet net(world);
//     net.Host("10.0.0.1").Echo(12ms).Port(25).Speak("220 ready\r\n", 30ms).OnLine("QUIT", "221 bye\r\n");
//     world.After(1h, [&] { net.Host("10.0.0.1").Port(25).Refuse(); });
//     world.After(2h, [&] { net.Host("10.0.0.1").Port(25).Accept(3ms); });
#pragma once

#include <arpa/inet.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text.h"
#include "platform/icmp_echo.h"
#include "platform/inet.h"
#include "support/virtual_server.h"
#include "support/virtual_world.h"

namespace korvane {

struct PageAnswer {
    enum class Kind { Body, Binary, Failure, Silent, OtherHost };
    Kind kind = Kind::Silent;
    std::string text = {};  ///< the body, or the failure in words
    std::chrono::milliseconds after{0};
    int status = 200;
};

/// What a web server gives for one URL: a list of answers, one for each request, of which the last one stays for good.
///
///     net.Page("http://10.0.0.2/").Answer("", 5ms).Fail("Connection refused", 1ms).Answer("Welcome", 40ms);
class VirtualPage {
    using Milliseconds = std::chrono::milliseconds;
    using Kind = PageAnswer::Kind;

public:
    VirtualPage& Answer(const std::string& body, Milliseconds after = Milliseconds(1)) { return Add({Kind::Body, body, after}); }
    VirtualPage& AnswerBinary(Milliseconds after = Milliseconds(1)) { return Add({Kind::Binary, "", after}); }
    VirtualPage& Fail(const std::string& why, Milliseconds after = Milliseconds(1)) { return Add({Kind::Failure, why, after}); }
    /// Nothing comes until the time of the request is over. So does a page without any answer.
    VirtualPage& Silent() { return Add({}); }
    VirtualPage& Add(const PageAnswer& answer) {
        return Decide([answer] { return answer; });
    }
    /// The answer is made when it is asked for.
    VirtualPage& Decide(std::function<PageAnswer()> answer) {
        answers_.push_back(std::move(answer));
        return *this;
    }
    /// Forgets the answers.
    VirtualPage& Anew() {
        answers_.clear();
        next_ = 0;
        return *this;
    }

    int Requests() const { return requests_; }
    /// The latest request; an empty one before the first.
    const Inet::Request& LastRequest() const { return lastRequest_; }

    // For VirtualInet.
    PageAnswer Take(const Inet::Request& request) {
        ++requests_;
        lastRequest_ = request;
        if (answers_.empty()) return {};
        return answers_[next_ + 1 < answers_.size() ? next_++ : next_]();
    }

private:
    std::vector<std::function<PageAnswer()>> answers_;
    std::size_t next_ = 0;
    int requests_ = 0;
    Inet::Request lastRequest_;
};

/// A machine. By default its name is found after 1 ms (an address is never looked up), echoes come back after 1 ms, and ports
/// that nobody mentioned refuse after 1 ms.
class VirtualHost {
    using Milliseconds = std::chrono::milliseconds;

public:
    struct EchoAnswer {
        bool comes = true;
        int status = 0;  ///< 0, or ICMP type * 256 + code
        Milliseconds after{1};
    };

    VirtualHost& ResolveAfter(Milliseconds after) { return Set(lookup_, after); }
    VirtualHost& NeverResolves() { return Set(lookup_, std::nullopt); }

    VirtualHost& Echo(Milliseconds after) { return EchoStatus(0, after); }
    VirtualHost& EchoSilent() {
        return DecideEcho([] { return EchoAnswer{false}; });
    }
    /// An ICMP error comes back instead, as type * 256 + code (3 * 256 + 1: host unreachable).
    VirtualHost& EchoStatus(int status, Milliseconds after = Milliseconds(1)) {
        return DecideEcho([=] { return EchoAnswer{true, status, after}; });
    }
    /// What becomes of an echo is decided when it is sent.
    VirtualHost& DecideEcho(std::function<EchoAnswer()> answer) { return Set(echo_, std::move(answer)); }

    /// Down: as if the plug was pulled. Nothing answers, echoes and pages included, until Up; the scripts stay.
    VirtualHost& Down() { return Set(down_, true); }
    VirtualHost& Up() { return Set(down_, false); }

    VirtualServer& Port(int port) { return ports_[port]; }

    // For the parts of this world.
    std::optional<Milliseconds> FoundAfter() const { return lookup_; }
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

    std::optional<Milliseconds> lookup_{1};
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

/// ICMP echoes: time moves on during one, and nothing is delivered.
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
        const VirtualHost::EchoAnswer answer = AnswerOf(address);
        const bool inTime = answer.comes && answer.after <= wait;
        net_.World().events.Sleep(inTime ? answer.after : wait);
        return inTime ? EchoReply{true, answer.status, answer.after, address} : EchoReply{};
    }
    void SendEchoes(const std::vector<Ipv4Address>& to, std::string_view, int) override {
        sent_ = net_.World().Ticks();
        back_.reset();
        for (const Ipv4Address address : to)
            if (const auto answer = AnswerOf(address); answer.comes && answer.status == 0)
                back_ = std::min(back_.value_or(answer.after), answer.after);
    }
    bool EchoCameBack(std::chrono::milliseconds wait) override {
        const bool inTime = back_ && *back_ <= wait;
        const auto until = sent_ + (inTime ? *back_ : wait);
        if (until > net_.World().Ticks()) net_.World().events.Sleep(until - net_.World().Ticks());
        return inTime;
    }
    void IcmpCloseHandle() override {}

private:
    VirtualHost::EchoAnswer AnswerOf(Ipv4Address address) {
        const VirtualHost* const host = net_.NetworkThere() ? net_.FindHost(inet_ntoa(in_addr{address})) : nullptr;
        return host != nullptr && !host->IsDown() ? host->HowEchoed() : VirtualHost::EchoAnswer{false};
    }

    VirtualNet& net_;
    std::chrono::milliseconds sent_{0};
    std::optional<std::chrono::milliseconds> back_;  ///< after this time the first echo that was sent comes back
};

}  // namespace korvane
