// The real adapters on the workbench of the contract suites, with servers on 127.0.0.1 as their other side.
#pragma once

#include <QCoreApplication>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/curl/curl_inet.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_icmp_echo.h"
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_tcp_socket.h"
#include "platform/qt/qt_timer.h"
#include "support/loopback_server.h"
#include "support/qt_application.h"
#include "support/virtual_page.h"
#include "support/virtual_server.h"

namespace korvane::contract {

class RealBench {
    struct Application {
        Application() { NeedQtApplication(); }
    };
    Application application_;
    SystemClock clock_;
    QtEvents events_;
    QtTimers timers_;
    std::vector<std::unique_ptr<LoopbackServer>> servers_;
    std::vector<std::jthread> others_;

public:
    Clock& clock = clock_;
    Events& events = events_;
    Timers& timers = timers_;

    void Happen(std::function<void()> action) {
        others_.emplace_back([action = std::move(action)] {
            QMetaObject::invokeMethod(QCoreApplication::instance(), action, Qt::QueuedConnection);
        });
    }

    std::unique_ptr<TcpSocket> NewSocket() { return std::make_unique<QtTcpSocket>(); }
    std::unique_ptr<Inet> NewInet() { return std::make_unique<CurlInet>(events_, clock_, CurlInet::Options{}); }
    std::unique_ptr<IcmpEcho> NewEcho() { return std::make_unique<LinuxIcmpEcho>(); }

    int Serve(std::vector<ServerStep> steps) {
        return Start([steps = std::move(steps)](LoopbackServer::Peer& peer) { Play(steps, peer); }).Port();
    }

    bool Heard(const std::vector<std::string>& lines) const { return servers_.back()->Notes() == lines; }

    int RefusingPort() { return korvane::RefusingPort(); }

    std::string ServePage(const PageAnswer& answer) {
        using Kind = PageAnswer::Kind;
        if (answer.kind == Kind::Failure) return "http://127.0.0.1:" + std::to_string(RefusingPort()) + "/";
        return Start([answer](LoopbackServer::Peer& peer) {
                   peer.ReadUntil("\r\n\r\n");
                   if (answer.kind == Kind::Silent) return void(peer.ReadToEnd());
                   peer.Linger(answer.after);
                   peer.Send(answer.kind == Kind::Body ? HttpAnswer(answer.text, "text/html; charset=utf-8")
                                                       : HttpAnswer(std::string("\x7F"
                                                                                "ELF\0\0\1\2",
                                                                                8),
                                                                    "application/octet-stream"));
               }).Http() +
               "/";
    }

private:
    LoopbackServer& Start(LoopbackServer::Script script) {
        servers_.push_back(std::make_unique<LoopbackServer>(std::move(script)));
        return *servers_.back();
    }

    static void Play(const std::vector<ServerStep>& steps, LoopbackServer::Peer& peer) {
        using Kind = ServerStep::Kind;
        for (const ServerStep& step : steps) {
            if (step.kind == Kind::Expect && peer.ReadUntil(step.text + "\r\n").ends_with('\n')) peer.Note(step.text);
            if (step.after.count() > 0) peer.Linger(step.after);
            if (step.kind == Kind::Speak) peer.Send(step.text);
            if (step.kind == Kind::Reset) peer.Reset();
            if (step.kind == Kind::Reset || step.kind == Kind::Close) return;
        }
        peer.ReadToEnd();
    }
};

}  // namespace korvane::contract
