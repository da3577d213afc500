// The fakes on the workbench of the contract suites: all ports in the virtual world. What a suite needs from the other side
// (servers, pages, hosts) it asks the bench for, in the same words for the fakes and for the real adapters.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/virtual_icmp_echo.h"
#include "support/virtual_inet.h"
#include "support/virtual_net.h"
#include "support/virtual_tcp_socket.h"
#include "support/virtual_world.h"

namespace korvane::contract {

class VirtualBench {
    VirtualWorld world_{DateTime::Of(2026, 11, 21, 15, 0, 0), std::chrono::hours(-5)};
    VirtualNet net_{world_};
    int lastPort_ = 1000;

public:
    Clock& clock = world_.clock;
    Events& events = world_.events;
    Timers& timers = world_.timers;

    /// Something that another thread or the system has for the program: the pump delivers it.
    void Happen(std::function<void()> action) { world_.After(std::chrono::milliseconds(0), std::move(action)); }

    std::unique_ptr<TcpSocket> NewSocket() { return std::make_unique<VirtualTcpSocket>(net_); }
    std::unique_ptr<Inet> NewInet() { return std::make_unique<VirtualInet>(net_); }
    std::unique_ptr<IcmpEcho> NewEcho() {
        net_.Host("127.0.0.1");
        return std::make_unique<VirtualIcmpEcho>(net_);
    }

    /// A server on 127.0.0.1 and localhost that plays these steps to each client; at their end it waits for the client. Gives its
    /// port.
    int Serve(const std::vector<ServerStep>& steps);
    /// Whether the latest server has got these lines.
    bool Heard(const std::vector<std::string>& lines) { return net_.Host("127.0.0.1").Port(lastPort_).Lines() == lines; }
    int RefusingPort() {
        net_.Host("127.0.0.1");
        return ++lastPort_;
    }

    /// A URL that gives this answer. A failure is a refused connection.
    std::string ServePage(const PageAnswer& answer);
};

inline int VirtualBench::Serve(const std::vector<ServerStep>& steps) {
    ++lastPort_;
    for (const char* host : {"127.0.0.1", "localhost"}) {
        for (const ServerStep& step : steps)
            net_.Host(host).Port(lastPort_).Add(step);
        net_.Host(host).Port(lastPort_).Accept(std::chrono::milliseconds(1));
    }
    return lastPort_;
}

inline std::string VirtualBench::ServePage(const PageAnswer& answer) {
    const std::string url = "http://127.0.0.1:" + std::to_string(++lastPort_) + "/";
    net_.Page(url).Add(answer.kind == PageAnswer::Kind::Failure
                           ? PageAnswer{PageAnswer::Kind::Failure, "Could not connect to server", answer.after}
                           : answer);
    return url;
}

}  // namespace korvane::contract
