// What the conversations rely on in every TCP socket: the states in their order, arrivals, both ends of closing, and what is
// refused.
#include <gtest/gtest.h>

#include <algorithm>

#include "base/error.h"
#include "platform/contract/benches.h"
#include "platform/wait.h"

namespace korvane::contract {
namespace {

using namespace std::chrono_literals;
using Kind = ServerStep::Kind;

constexpr auto kAmple = 10s;

template <class Bench>
class TcpSocketContract : public testing::Test {
protected:
    void SetUp() override {
        socket->SetProtocol(SocketProtocol::Tcp);
        socket->SetHandlers({[this] {
                                 ++arrivals;
                                 received += socket->GetData();
                             },
                             [this] { ++closes; },
                             [this](int number, const std::string& description) {
                                 errorNumbers.push_back(number);
                                 EXPECT_NE(description, "");
                             }});
    }

    void Connect(int port, const std::string& host = "127.0.0.1") {
        socket->SetRemoteHost(host);
        socket->SetRemotePort(port);
        socket->SetLocalPort(0);
        socket->Connect();
    }

    bool Reaches(SocketState state) {
        return WaitFor(bench.events, bench.clock, kAmple, [&] { return socket->State() == state; });
    }

    bool Receives(const std::string& text) {
        return WaitFor(bench.events, bench.clock, kAmple, [&] { return received == text; });
    }

    /// Time for an event that must not come.
    void LetPass(std::chrono::milliseconds time) {
        WaitFor(bench.events, bench.clock, time, [] { return false; });
    }

    Bench bench;
    std::unique_ptr<TcpSocket> socket = bench.NewSocket();
    std::string received;
    int arrivals = 0;
    int closes = 0;
    std::vector<int> errorNumbers;
};
TYPED_TEST_SUITE(TcpSocketContract, Benches, BenchNames);

TYPED_TEST(TcpSocketContract, TheServerSpeaksFirstAndAnswersLines) {
    const int port = this->bench.Serve({{Kind::Speak, "220 ready\r\n"},
                                        {Kind::Expect, "NOOP"},
                                        {Kind::Speak, "250 fine\r\n"},
                                        {Kind::Speak, "and busy\r\n", 10ms},
                                        {Kind::Expect, "QUIT"}});
    this->Connect(port);
    EXPECT_EQ(this->socket->RemoteHost(), "127.0.0.1");
    EXPECT_EQ(this->socket->RemotePort(), port);
    EXPECT_TRUE(this->Receives("220 ready\r\n"));
    EXPECT_EQ(this->socket->State(), SocketState::Connected);
    this->socket->SendData("NO");
    this->socket->SendData("OP\r\n");
    EXPECT_TRUE(this->Receives("220 ready\r\n250 fine\r\n"));
    this->socket->SendData("QUIT\r\n");
    this->socket->Close();  // what was sent goes out before the end
    EXPECT_EQ(this->socket->State(), SocketState::Closed);
    EXPECT_TRUE(WaitFor(this->bench.events, this->bench.clock, kAmple, [this] { return this->bench.Heard({"NOOP", "QUIT"}); }));
}

TYPED_TEST(TcpSocketContract, NamesAreLookedUpBesideTheProgram) {
    this->Connect(this->bench.Serve({{Kind::Speak, "hello"}}), "localhost");
    EXPECT_EQ(this->socket->State(), SocketState::ResolvingHost);
    EXPECT_TRUE(this->Receives("hello"));
}

TYPED_TEST(TcpSocketContract, AnUnknownNameIsAnErrorEvent) {
    this->Connect(this->bench.RefusingPort(), "no..such..host");
    EXPECT_TRUE(this->Reaches(SocketState::Error));
    EXPECT_EQ(this->errorNumbers, std::vector<int>{11001});
}

TYPED_TEST(TcpSocketContract, ARefusedConnectionIsAnErrorEvent) {
    this->Connect(this->bench.RefusingPort());
    EXPECT_TRUE(this->Reaches(SocketState::Error));
    EXPECT_EQ(this->errorNumbers, std::vector<int>{10061});
    EXPECT_EQ(this->closes, 0);
    EXPECT_THROW(this->socket->SendData("x"), Error);
    EXPECT_THROW(this->socket->Connect(), Error);

    this->socket->Close();
    this->Connect(this->bench.Serve({{Kind::Speak, "hello"}}));
    EXPECT_TRUE(this->Receives("hello"));
}

TYPED_TEST(TcpSocketContract, AfterTheRemoteCloseUnreadDataCanStillBeRead) {
    this->socket->SetHandlers({[] {}, [this] { ++this->closes; }, [](int, const std::string&) {}});
    this->Connect(this->bench.Serve({{Kind::Speak, "last words"}, {Kind::Close, ""}}));
    EXPECT_TRUE(this->Reaches(SocketState::Closing));
    EXPECT_TRUE(WaitFor(this->bench.events, this->bench.clock, kAmple, [this] { return this->closes > 0; }));
    EXPECT_EQ(this->closes, 1);
    EXPECT_EQ(this->socket->GetData(), "last words");
    EXPECT_THROW(this->socket->SendData("x"), Error);
    EXPECT_THROW(this->socket->Connect(), Error);
    this->socket->Close();
    EXPECT_EQ(this->socket->State(), SocketState::Closed);
    EXPECT_EQ(this->socket->GetData(), "");
}

TYPED_TEST(TcpSocketContract, NoEventFollowsOurOwnClose) {
    const int port = this->bench.Serve({{Kind::Speak, "hello"}, {Kind::Close, "", 10ms}});
    this->Connect(port);
    this->socket->Close();  // while connecting
    EXPECT_EQ(this->socket->State(), SocketState::Closed);
    this->LetPass(50ms);
    EXPECT_EQ(this->arrivals, 0);

    this->Connect(port);  // and the same socket again
    EXPECT_TRUE(this->Receives("hello"));
    this->socket->Close();
    this->LetPass(50ms);
    EXPECT_EQ(this->socket->State(), SocketState::Closed);
    EXPECT_EQ(this->arrivals, 1);
    EXPECT_EQ(this->closes, 0);
    EXPECT_TRUE(this->errorNumbers.empty());
}

TYPED_TEST(TcpSocketContract, ItCanBeClosedAndConnectedAgainInsideItsOwnEvents) {
    const int next = this->bench.Serve({{Kind::Speak, "second"}});
    int rounds = 0;
    this->socket->SetHandlers({[&] {
                                   this->received = this->socket->GetData();
                                   if (++rounds > 1) return;
                                   this->socket->Close();
                                   this->Connect(next);
                               },
                               {},
                               {}});
    this->Connect(this->bench.Serve({{Kind::Speak, "first"}}));
    EXPECT_TRUE(this->Receives("second"));
    EXPECT_EQ(this->socket->State(), SocketState::Connected);
}

TYPED_TEST(TcpSocketContract, ABrokenConnectionIsNoLongerConnected) {
    this->Connect(this->bench.Serve({{Kind::Speak, "hello"}, {Kind::Expect, "go"}, {Kind::Reset, ""}}));
    EXPECT_TRUE(this->Receives("hello"));
    this->socket->SendData("go\r\n");
    EXPECT_TRUE(WaitFor(this->bench.events, this->bench.clock, kAmple,
                        [this] { return this->socket->State() != SocketState::Connected; }));
    EXPECT_THROW(this->socket->SendData("x"), Error);
    this->socket->Close();
    EXPECT_EQ(this->socket->State(), SocketState::Closed);
}

TYPED_TEST(TcpSocketContract, AReaderMayLookBeforeItTakes) {
    this->socket->SetHandlers({[this] { ++this->arrivals; }, {}, {}});
    this->Connect(this->bench.Serve({{Kind::Speak, "220 ready\r\n"}}));
    EXPECT_TRUE(WaitFor(this->bench.events, this->bench.clock, kAmple, [this] { return this->socket->PeekData().size() == 11; }));
    EXPECT_EQ(this->socket->PeekData(4), "220 ");
    EXPECT_EQ(this->socket->PeekData(100), "220 ready\r\n");
    EXPECT_EQ(this->socket->GetData(4), "220 ");
    EXPECT_EQ(this->socket->GetData(), "ready\r\n");
    EXPECT_EQ(this->socket->PeekData(), "");
    EXPECT_EQ(this->arrivals, 1);
}

TYPED_TEST(TcpSocketContract, WhatIsSentIsReportedUntilNothingRemains) {
    std::vector<std::string> events;
    std::size_t sent = 0;
    std::size_t remaining = 1;
    this->socket->SetHandlers({.dataArrival = [&] { events.push_back("arrival"); },
                               .close = {},
                               .error = {},
                               .connect = [&] { events.push_back("connect"); },
                               .sendProgress =
                                   [&](std::size_t bytes, std::size_t left) {
                                       sent += bytes;
                                       remaining = left;
                                   },
                               .sendComplete = [&] { events.push_back("complete"); }});
    const std::string much(3'000'000, 'x');
    this->Connect(this->bench.Serve({{Kind::Speak, "go"}, {Kind::Expect, much}, {Kind::Speak, "thanks"}}));
    EXPECT_TRUE(WaitFor(this->bench.events, this->bench.clock, kAmple, [&] { return events.size() == 2; }));
    EXPECT_NE(this->socket->LocalIP(), "");
    EXPECT_NE(this->socket->LocalHostName(), "");
    this->socket->SendData(much);
    this->socket->SendData("\r\n");
    EXPECT_EQ(sent, 0u);
    EXPECT_TRUE(WaitFor(this->bench.events, this->bench.clock, kAmple, [&] { return events.size() == 4; }));
    EXPECT_EQ(sent, much.size() + 2);
    EXPECT_EQ(remaining, 0u);
    std::sort(events.begin() + 2, events.end());  // the answer and the end of the sending may meet
    EXPECT_EQ(events, (std::vector<std::string>{"connect", "arrival", "arrival", "complete"}));
}

TYPED_TEST(TcpSocketContract, MisuseIsRefused) {
    for (const int port : {0, 65536})
        EXPECT_THROW(this->socket->SetRemotePort(port), Error) << port;
    this->Connect(this->bench.Serve({{Kind::Speak, "hello"}}));
    EXPECT_THROW(this->socket->SendData("x"), Error);
    EXPECT_THROW(this->socket->Connect(), Error);
}

}  // namespace
}  // namespace korvane::contract
