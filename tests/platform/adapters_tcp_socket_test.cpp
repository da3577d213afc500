// What QtTcpSocket promises beyond the port: bounded memory, names with several addresses, name servers that never answer, and no
// network.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <netdb.h>

#include <algorithm>
#include <cstring>
#include <latch>
#include <string>
#include <vector>

#include "base/error.h"
#include "base/text.h"
#include "platform/curl/curl_inet.h"
#include "platform/linux/linux_clock.h"
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_tcp_socket.h"
#include "platform/wait.h"
#include "support/child_process.h"
#include "support/loopback_server.h"
#include "support/qt_application.h"

namespace {

/// Opened at the end of the test: until then the name server of "silent.test" says nothing.
std::latch* nameServer = nullptr;

}  // namespace

/// Stands before the system's own, for the adapters and for libcurl alike.
extern "C" int getaddrinfo(const char* name, const char* service, const addrinfo* hints, addrinfo** result) {
    static const auto real = reinterpret_cast<decltype(&getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
    if (name != nullptr && std::strcmp(name, "silent.test") == 0) {
        nameServer->wait();
        return EAI_AGAIN;
    }
    if (name == nullptr || std::strcmp(name, "two-addresses.test") != 0) return real(name, service, hints, result);
    const int outcome = real("127.0.0.2", service, hints, result);
    return outcome != 0 ? outcome : real("127.0.0.1", service, hints, &(*result)->ai_next);
}

namespace korvane {
namespace {

using namespace std::chrono_literals;
using Peer = LoopbackServer::Peer;

class QtTcpSocketTest : public testing::Test {
protected:
    void Connect(const std::string& host, int port) { socket.Connect(host, port); }

    template <class Condition>
    bool Wait(Condition condition, std::chrono::milliseconds limit = 20s) {
        return WaitFor(events, clock, limit, condition);
    }

    bool Receives(const std::string& text) {
        received.clear();
        socket.SetHandlers({[this] { received += socket.GetData(); }, {}, {}});
        return Wait([&] { return received == text; });
    }

    const bool application = (NeedQtApplication(), true);
    SystemClock clock;
    QtEvents events;
    std::string received;
    QtTcpSocket socket;
};

TEST_F(QtTcpSocketTest, AFloodIsHeldUpUntilItIsRead) {
    constexpr std::size_t kFlood = 50'000'000;
    const LoopbackServer server([](Peer& peer) { peer.Send(std::string(kFlood, 'x')); });
    std::size_t total = 0;
    std::size_t largest = 0;
    int arrivals = 0;
    socket.SetHandlers({[&] { ++arrivals; }, {}, {}});
    Connect("127.0.0.1", server.Port());
    EXPECT_TRUE(Wait([&] { return arrivals > 0; }));
    Wait([] { return false; }, 20ms);
    const auto take = [&] {
        const std::size_t size = socket.GetData().size();
        largest = std::max(largest, size);
        total += size;
    };
    socket.SetHandlers({take, {}, {}});
    take();
    EXPECT_TRUE(Wait([&] { return total == kFlood; })) << total;
    EXPECT_LE(largest, 65536U);
    EXPECT_TRUE(Wait([&] { return socket.State() == SocketState::Closing; }));
}

TEST_F(QtTcpSocketTest, WithUnreadDataItsEndIsOrderlyToo) {
    const LoopbackServer server([](Peer& peer) {
        peer.Send(std::string(300'000, 'x'));
        const std::string line = peer.ReadUntil("\r\n");
        peer.Note(line + (peer.ReadToEnd() ? "end" : "reset"));
    });
    Connect("127.0.0.1", server.Port());
    EXPECT_TRUE(Wait([&] { return !socket.PeekData(1).empty(); }));
    socket.SendData("QUIT\r\n");
    socket.Close();
    EXPECT_TRUE(Wait([&] { return !server.Notes().empty(); }));
    EXPECT_EQ(server.Notes(), std::vector<std::string>{"QUIT\r\nend"});
}

TEST_F(QtTcpSocketTest, APeerThatDoesNotReadIsLetGo) {
    const std::pair<std::chrono::milliseconds, int> cases[] = {{1ms, 1}, {1h, 8}};
    for (const auto& [limit, connections] : cases) {
        const LoopbackServer server([](Peer& peer) { peer.Note(peer.Linger(30s) ? "held" : "let go"); });
        QtTcpSocket sender(limit);
        for (int i = 0; i < connections; ++i) {
            sender.Connect("127.0.0.1", server.Port());
            EXPECT_TRUE(Wait([&] { return sender.State() == SocketState::Connected; }));
            sender.SendData(std::string(20'000'000, 'x'));
            sender.Close();
            EXPECT_EQ(sender.State(), SocketState::Closed);
        }
        EXPECT_TRUE(Wait([&] { return !server.Notes().empty(); }));
        EXPECT_EQ(server.Notes(), std::vector<std::string>{"let go"});
    }
}

TEST_F(QtTcpSocketTest, EveryAddressOfANameIsTried) {
    const LoopbackServer server([](Peer& peer) {
        peer.Send("second");
        peer.ReadToEnd();
    });
    Connect("two-addresses.test", server.Port());
    EXPECT_TRUE(Receives("second"));
    socket.Close();

    std::vector<int> errors;
    socket.SetHandlers({{}, {}, [&](int number, const std::string&) { errors.push_back(number); }});
    Connect("two-addresses.test", RefusingPort());
    EXPECT_TRUE(Wait([&] { return socket.State() == SocketState::Error; }));
    EXPECT_EQ(errors, std::vector<int>{10061});
}

TEST_F(QtTcpSocketTest, ASilentNameServerHoldsUpNothing) {
    std::latch opened(1);
    nameServer = &opened;
    const LoopbackServer server(AnswerHttp(HttpAnswer("page")));
    CurlInet inet(events, clock, {});

    int failures = 0;
    socket.SetHandlers({{}, {}, [&](int, const std::string&) { ++failures; }});
    const auto start = clock.GetTickCount();
    Connect("silent.test", server.Port());
    EXPECT_FALSE(Wait([&] { return socket.State() != SocketState::ResolvingHost; }, 20ms));
    socket.Close();
    EXPECT_EQ(socket.State(), SocketState::Closed);
    Connect("localhost", server.Port());
    EXPECT_TRUE(Wait([&] { return socket.State() == SocketState::Connected; }));
    try {
        inet.OpenURL({.URL = "http://silent.test/", .RequestTimeout = 1s});
        ADD_FAILURE();
    } catch (const Error& error) {
        EXPECT_TRUE(Holds(error.what(), "timed out")) << error.what();
    }
    EXPECT_EQ(inet.OpenURL({.URL = server.Http()}), "page");
    EXPECT_LT(clock.GetTickCount() - start, 10s);

    opened.count_down();  // the late answer finds nobody
    EXPECT_FALSE(Wait([&] { return failures > 0; }, 20ms));
    EXPECT_EQ(socket.State(), SocketState::Connected);
}

TEST_F(QtTcpSocketTest, WithoutANetworkConnectSaysSoAtOnce) {
    if (!PassesInChild(EnterEmptyNetwork)) GTEST_SKIP() << "this user cannot make a network of its own";
    EXPECT_TRUE(PassesInChild([&] {
        EnterEmptyNetwork();
        try {
            Connect("192.0.2.1", 80);
        } catch (const Error& error) {
            return error.Number() == kSocketAddressNotAvailable && socket.State() == SocketState::Closed;
        }
        return false;
    }));
}

}  // namespace
}  // namespace korvane
