// What the rooms rely on in every clock, event pump, timer, TCP socket and transfer slot: the fakes in the virtual world and the
// real adapters, with servers on 127.0.0.1, pass the same tests.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <list>
#include <memory>

#include "base/text.h"
#include "platform/curl/curl_inet.h"
#include "platform/qt/qt_tcp_socket.h"
#include "platform/real_ports.h"
#include "platform/wait.h"
#include "support/loopback_server.h"
#include "support/virtual_inet.h"
#include "support/virtual_net.h"
#include "support/virtual_tcp_socket.h"
#include "support/virtual_world.h"

namespace korvane::contract {

using namespace std::chrono_literals;
using Do = ServerStep::Kind;
using Page = PageAnswer::Kind;
using Steps = std::vector<ServerStep>;

/// The ports, played or real, and what a test needs from the other side.
struct Contract : RealPorts, testing::WithParamInterface<bool> {
    int RefusingPort() { return real ? korvane::RefusingPort() : (net.Host("127.0.0.1"), ++lastPort); }
    /// A server on 127.0.0.1 and localhost that plays these steps to each client, and then waits for it. Gives its port.
    int Serve(const Steps& steps) {
        if (real) return servers.emplace_back([steps](LoopbackServer::Peer& peer) { Play(steps, peer); }).Port();
        ++lastPort;
        for (const char* host : {"127.0.0.1", "localhost"})
            for (VirtualServer& server = net.Host(host).Port(lastPort).Accept(1ms); const ServerStep& step : steps)
                server.Add(step);
        return lastPort;
    }
    static void Play(const Steps& steps, LoopbackServer::Peer& peer) {
        for (const ServerStep& step : steps) {
            if (step.kind == Do::Expect && peer.ReadUntil(step.text + "\r\n").ends_with('\n')) peer.Note(step.text);
            if (step.after.count() > 0) peer.Linger(step.after);
            if (step.kind == Do::Speak) peer.Send(step.text);
            if (step.kind == Do::Reset) peer.Reset();
            if (step.kind == Do::Reset || step.kind == Do::Close) return;
        }
        peer.ReadToEnd();
    }
    /// A URL that gives this answer.
    std::string ServePage(Page kind, const std::string& text = "") {
        Steps steps{{Do::Expect, "\r\n"}, {Do::Speak, HttpAnswer(text, "text/html; charset=utf-8")}, {Do::Close}};
        if (kind == Page::Silent) steps.resize(1);
        const std::string url = "http://127.0.0.1:" + std::to_string(kind == Page::Failure ? RefusingPort() : Serve(steps)) + "/";
        net.Page(url).Add({kind, kind == Page::Failure ? "Could not connect to server" : text, 5ms});
        return url;
    }
    /// Whether it came true within 10 s, or within `limit`.
    template <class Condition>
    bool Wait(Condition condition, std::chrono::milliseconds limit = 10s) {
        return WaitFor(events, clock, limit, condition);
    }
    std::unique_ptr<Timer> NewTimer(std::chrono::milliseconds interval, std::function<void()> tick) {
        auto timer = timers.NewTimer("test");
        timer->OnTick(std::move(tick));
        timer->SetInterval(interval);
        timer->SetEnabled(true);
        return timer;
    }
    /// The body after a "=", or the error in words.
    std::string Fetch(const std::string& url, std::chrono::seconds timeout = 20s) {
        std::string answer;
        const std::string error = ErrorOf([&] { answer = "=" + inet->OpenURL({.URL = url, .RequestTimeout = timeout}); });
        return error + answer;
    }

    const bool real = GetParam();
    VirtualWorld world{DateTime::Of(2026, 11, 21, 15, 0, 0), -5h};
    VirtualNet net{world};
    int lastPort = 1000;
    QtTimers realTimers;
    const Clock& clock = real ? static_cast<const Clock&>(RealPorts::clock) : world.clock;
    Events& events = real ? static_cast<Events&>(RealPorts::events) : world.events;
    Timers& timers = real ? static_cast<Timers&>(realTimers) : world.timers;
    std::list<LoopbackServer> servers;
    VirtualInet virtualInet{net};
    CurlInet realInet{RealPorts::events, RealPorts::clock, {}};
    Inet* const inet = real ? static_cast<Inet*>(&realInet) : &virtualInet;
    VirtualTcpSocket virtualSocket{net};
    QtTcpSocket realSocket;
    TcpSocket* const socket = real ? static_cast<TcpSocket*>(&realSocket) : &virtualSocket;
    std::string said;  ///< by the handlers of the socket
    const TcpSocket::Handlers handlers = {[this] { said += socket->GetData(); }, [this] { said += "close"; },
                                          [this](int number, const std::string&) { said += std::to_string(number); }};
};
INSTANTIATE_TEST_SUITE_P(Real, Contract, testing::Bool());

TEST_P(Contract, OnlyThePumpDeliversAndATickNeverOverlapsItself) {
    EXPECT_NEAR(clock.Timer(), static_cast<double>((clock.Now() - clock.Now().Date()).count()), 2);
    const auto took = [&, start = clock.GetTickCount()] { return clock.GetTickCount() - start; };
    EXPECT_FALSE(Wait([] { return false; }, 30ms));
    EXPECT_GE(took(), 30ms);
    int depth = 0, rounds = 0, others = 0;
    const auto other = NewTimer(5ms, [&] { ++others; });
    events.Sleep(40ms);
    EXPECT_TRUE(took() >= 70ms && others == 0) << others;
    std::unique_ptr<Timer> timer = NewTimer(20s, [&] {
        EXPECT_EQ(++depth, 1);
        EXPECT_TRUE(Wait([&, before = others] { return others >= before + 5; }));
        --depth;
        timer->SetEnabled(++rounds % 2 == 1);
    });
    timer->SetInterval(5ms);
    EXPECT_TRUE(Wait([&] { return rounds == 2; }));
    EXPECT_TRUE(Wait([&, before = others] { return others >= before + 10; }));
    EXPECT_EQ(rounds, 2) << "a disabled timer is silent";
    timer->SetInterval(40ms);
    timer->SetEnabled(true);
    EXPECT_TRUE(Wait([&, before = took()] { return rounds == 3 && took() - before >= 35ms; })) << "it starts a whole period";
}

TEST_P(Contract, PagesComeBackWholeAndFailuresInWordsWhileThePumpRuns) {
    for (const std::string& body : {std::string("Welcome\r\nto the \xC3\xA4 page"), std::string(), std::string(300'000, 'x')})
        EXPECT_EQ(Fetch(ServePage(Page::Body, body)), "=" + body);
    EXPECT_EQ(Fetch(ServePage(Page::Binary, std::string(1, '\0'))), "Type mismatch");
    EXPECT_TRUE(Holds(ToLower(Fetch(ServePage(Page::Failure))), "connect"));
    EXPECT_TRUE(Holds(Fetch("http://no..such..host/"), "no..such..host"));
    const std::string silent = ServePage(Page::Silent), quick = ServePage(Page::Body, "quick");
    EXPECT_TRUE(Holds(Fetch(silent, 1s), "timed out"));
    const auto timer = NewTimer(20ms, [&] {
        EXPECT_TRUE(!inet->StillExecuting() || Fetch(quick) == "Still executing last request");
        inet->Cancel();  // with nothing running it leaves nothing behind
    });
    EXPECT_EQ(Fetch(silent), "Request cancelled");
    timer->SetEnabled(false);
    EXPECT_EQ(Fetch(quick), "=quick");
}

TEST_P(Contract, AServerSpeaksFirstAndWhatWasSentGoesOutBeforeTheEnd) {
    const int port =
        Serve({{Do::Speak, "220 ready "}, {Do::Expect, "NOOP"}, {Do::Speak, "250 fine", 10ms}, {Do::Expect, "QUIT"}});
    socket->SetHandlers(handlers);
    socket->Connect("127.0.0.1", port);
    EXPECT_TRUE(Wait([&] { return said == "220 ready "; }));
    EXPECT_EQ(socket->State(), SocketState::Connected);
    socket->SendData("NOOP\r\n");
    EXPECT_TRUE(Wait([&] { return said == "220 ready 250 fine"; }));
    socket->SendData("QUIT\r\n");
    socket->Close();
    EXPECT_EQ(socket->State(), SocketState::Closed);
    const auto heard = [&] { return real ? servers.back().Notes() : net.Host("127.0.0.1").Port(port).Lines(); };
    for (int i = 0; i < 1000 && heard().size() < 2; ++i)
        events.WaitForEvent(10ms);  // a server's note is no event
    EXPECT_EQ(heard(), (std::vector<std::string>{"NOOP", "QUIT"}));
    EXPECT_EQ(said, "220 ready 250 fine") << "no event follows our own close";
}

TEST_P(Contract, NamesAreLookedUpBesideTheProgramAndFailuresAreEvents) {
    const int port = Serve({{Do::Speak, "last words"}, {Do::Close}});
    socket->SetHandlers({{}, handlers.close, handlers.error});
    for (const auto& [host, failing, number] :
         {std::tuple{"no..such..host", port, "11001"}, {"127.0.0.1", RefusingPort(), "10061"}}) {
        socket->Connect(host, failing);
        EXPECT_THROW(socket->SendData("x"), Error);
        EXPECT_TRUE(Wait([&] { return socket->State() == SocketState::Error; }));
        EXPECT_EQ(std::exchange(said, ""), number);
        EXPECT_THROW(socket->Connect(), Error);
        socket->Close();
    }
    socket->Connect("localhost", port);
    EXPECT_EQ(socket->State(), SocketState::ResolvingHost);
    EXPECT_TRUE(Wait([&] { return said == "close"; }));
    EXPECT_EQ(socket->State(), SocketState::Closing);
    EXPECT_EQ(socket->PeekData(6), "last w");
    EXPECT_EQ(socket->GetData(4), "last") << "it can still be read";
    EXPECT_THROW(socket->SendData("x"), Error);
    socket->Close();
    EXPECT_EQ(socket->GetData(), "");
}

TEST_P(Contract, WhatIsSentIsReportedAndASocketCanBeConnectedAgainInsideItsOwnEvents) {
    const std::string much(20'000'000, 'x');
    const int first = Serve({{Do::Speak, "x"}}), second = Serve({{Do::Expect, much}, {Do::Speak, "x"}, {Do::Reset, "", 50ms}});
    std::size_t sent = 0, remaining = 1;
    const auto arrival = [&] {
        said += "arrival ";
        if (sent > 0) return;
        socket->Close();
        socket->Connect("127.0.0.1", second);
    };
    const auto progress = [&](std::size_t bytes, std::size_t left) { sent += bytes, remaining = left; };
    socket->SetHandlers({arrival, {}, {}, [&] { said += "connect "; }, progress, [&] { said += "complete "; }});
    socket->Connect("127.0.0.1", first);
    EXPECT_TRUE(Wait([&] { return said == "connect arrival connect "; }));
    socket->SendData(much + "\r\n");
    EXPECT_EQ(sent, 0U);
    EXPECT_TRUE(Wait([&] { return socket->State() != SocketState::Connected; })) << "the connection is broken";
    EXPECT_THROW(socket->SendData("x"), Error);
    EXPECT_TRUE(sent == much.size() + 2 && remaining == 0) << sent;
    EXPECT_EQ(said.size(), std::strlen("connect arrival connect arrival complete ")) << said;  // the last two may meet
}

}  // namespace korvane::contract
