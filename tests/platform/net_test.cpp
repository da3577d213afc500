// What QtTcpSocket and CurlInet promise beyond their ports: bounded memory, all addresses of a name, name servers that never
// answer, who is told what, and which answers are text.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <signal.h>
#include <stdlib.h>

#include <latch>

#include "base/text.h"
#include "platform/curl/curl_inet.h"
#include "platform/linux/linux_processes.h"
#include "platform/qt/qt_tcp_socket.h"
#include "platform/real_ports.h"
#include "support/loopback_server.h"
#include "support/temporary_folder.h"

namespace korvane::net_test {

/// Opened at the end of the test: until then the name server of "silent.test" says nothing.
std::latch nameServer(1);

/// Stands before the system's own, for the adapters and for libcurl alike.
extern "C" int getaddrinfo(const char* name, const char* service, const addrinfo* hints, addrinfo** result) {
    static const auto real = reinterpret_cast<decltype(&getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
    const std::string_view host = name != nullptr ? name : "";
    if (host == "silent.test") nameServer.wait();
    if (host != "two-addresses.test") return real(name, service, hints, result);
    const int outcome = real("127.0.0.2", service, hints, result);
    return outcome != 0 ? outcome : real("127.0.0.1", service, hints, &(*result)->ai_next);
}

using namespace std::chrono_literals;
using Peer = LoopbackServer::Peer;
using Notes = std::vector<std::string>;

struct NetTest : RealPorts {
    static std::string RedirectTo(const std::string& url, const std::string& headers = "") {
        return HttpAnswer("", "text/html", "302 Found", "Location: " + url + "\r\n" + headers);
    }
    std::string Fetch(const Inet::Request& request, const CurlInet::Options& options = {}) {
        std::string answer;
        const std::string error = ErrorOf([&] { answer = CurlInet(events, clock, options).OpenURL(request); });
        return error.empty() ? answer : "error: " + error;
    }

    QtTcpSocket socket;
};

TEST_F(NetTest, AFloodIsHeldUpUntilItIsReadAndWithUnreadDataTheEndIsOrderlyToo) {
    const LoopbackServer server([](Peer& peer) {
        peer.Send(std::string(20'000'000, 'x'));
        const std::string line = peer.ReadUntil("\r\n");
        peer.Note(line + (peer.ReadToEnd() ? "end" : "reset"));
    });
    std::size_t total = 0;
    socket.Connect("127.0.0.1", server.Port());
    EXPECT_FALSE(Wait([&] { return socket.PeekData().size() > 65536; }, 50ms));
    EXPECT_TRUE(Wait([&] { return (total += socket.GetData().size()) > 19'900'000; })) << total;
    socket.SendData("QUIT\r\n");
    socket.Close();
    EXPECT_TRUE(Wait([&] { return server.Notes() == Notes{"QUIT\r\nend"}; }));
}

TEST_F(NetTest, APeerThatDoesNotReadIsLetGo) {
    for (const auto& [limit, connections] : {std::pair<std::chrono::milliseconds, int>{1ms, 1}, {1h, 8}}) {
        const LoopbackServer server([](Peer& peer) { peer.Note(peer.Linger(30s) ? "held" : "let go"); });
        QtTcpSocket sender(limit);
        for (int i = 0; i < connections; ++i) {
            sender.Connect("127.0.0.1", server.Port());
            EXPECT_TRUE(Wait([&] { return sender.State() == SocketState::Connected; }));
            sender.SendData(std::string(20'000'000, 'x'));
            sender.Close();
        }
        EXPECT_TRUE(Wait([&] { return server.Notes() == Notes{"let go"}; }));
    }
}

TEST_F(NetTest, EveryAddressOfANameIsTriedAndASilentNameServerHoldsUpNothing) {
    const LoopbackServer server(AnswerHttp(HttpAnswer("page")));
    std::string errors;
    socket.SetHandlers({{}, {}, [&](int number, const std::string&) { errors += std::to_string(number); }});
    socket.Connect("silent.test", server.Port());
    EXPECT_FALSE(Wait([&] { return socket.State() != SocketState::ResolvingHost; }, 20ms));
    socket.Close();
    EXPECT_TRUE(Holds(Fetch({.URL = "http://silent.test/", .RequestTimeout = 1s}), "timed out"));
    socket.Connect("two-addresses.test", server.Port());
    EXPECT_TRUE(Wait([&] { return socket.State() == SocketState::Connected; }));
    nameServer.count_down();  // the late answer finds nobody
    EXPECT_FALSE(Wait([&] { return !errors.empty(); }, 20ms));
    socket.Close();
    socket.Connect("two-addresses.test", RefusingPort());
    EXPECT_TRUE(Wait([&] { return errors == "10061"; }));
}

TEST_F(NetTest, AnswersAreTextOrNotAndMistakesAreToldInWords) {
    EXPECT_EQ(EncodeUrl(" http://\xC3\xA4.test/a b?c d=\"e\"#f%20<\xC3\xA4> \r\n"),
              "http://\xC3\xA4.test/a%20b?c%20d=%22e%22#f%20%3C%C3%A4%3E");
    for (const char* url : {"http://", "http://a b/", "http://127.0.0.1:99999/", "http://127.0.0.1/\x01"})
        EXPECT_TRUE(Holds(Fetch({.URL = url}), "illegal format")) << url;
    const std::string ok = "HTTP/1.1 200 OK\r\n", large(50'000'000, 'x');
    const std::string binary = "error: Type mismatch", tooLarge = "error: The answer is larger than 64 MB";
    const std::pair<std::string, std::string> cases[] = {
        {HttpAnswer("caf\xE9"), "caf\xC3\xA9"},
        {HttpAnswer(std::string(70'000, 'x') + '\0'), binary},
        {HttpAnswer("no such page", "text/html; charset=image/png", "404 Not Found"), "no such page"},
        {HttpAnswer("x", "application/pdf ;x=y"), binary},
        {ok + "\r\n" + large, large},
        {ok + "Content-Length: 70000000\r\n\r\nx", tooLarge},
        {ok + "\r\n" + large + large, tooLarge},
        {ok + "\r\n" + std::string(40'000'000, '\xE9'), tooLarge},  // each of them takes two bytes
        {RedirectTo("file:///etc/passwd"), "error: Protocol \"file\" not supported"},
        {RedirectTo("/again"), "error: Maximum (20) redirects followed"}};
    for (const auto& [answer, outcome] : cases) {
        const LoopbackServer server(AnswerHttp(answer));
        EXPECT_TRUE(Fetch({.URL = server.Http()}).starts_with(outcome)) << answer.substr(0, 200);
    }
}

TEST_F(NetTest, CredentialsCookiesAndProxiesGoWhereTheyBelong) {
    const LoopbackServer other(AnswerHttp(HttpAnswer("other")));
    const LoopbackServer first(AnswerHttp(RedirectTo(other.Http())));
    EXPECT_EQ(Fetch({.URL = first.Http(), .UserName = "mu", .Password = "pw"}), "other");
    EXPECT_TRUE(Holds(first.Notes()[0], "Authorization: Basic bXU6cHc=\r\n") && !Holds(other.Notes()[0], "Authorization"));
    const LoopbackServer server([](Peer& peer) {
        const std::string request = peer.ReadUntil("\r\n\r\n");
        peer.Send(Holds(request, "Cookie: seen=1\r\n") ? HttpAnswer("welcome") : RedirectTo("/", "Set-Cookie: seen=1\r\n"));
    });
    ::setenv("http_proxy", ("127.0.0.1:" + std::to_string(RefusingPort())).c_str(), 1);
    for (int transfer = 0; transfer < 2; ++transfer)
        EXPECT_EQ(Fetch({.URL = "http://127.0.0.1/", .RemotePort = server.Port()}), "welcome");
    EXPECT_EQ(server.Connections(), 4) << "neither cookies nor connections are kept";
    ::unsetenv("http_proxy");
    const std::string proxy = "127.0.0.1:" + std::to_string(other.Port());
    EXPECT_EQ(Fetch({.URL = "http://far.test/", .AccessType = InetAccess::NamedProxy, .Proxy = proxy}), "other");
    EXPECT_TRUE(other.Notes().back().starts_with("GET http://far.test/ HTTP/1.1\r\n"));
}

TEST_F(NetTest, ACertificateMustBeOfTheHostThatWasAsked) {
    const TemporaryFolder folder;
    const std::string file = folder.Path() + "/both", port = std::to_string(RefusingPort());
    const std::string make =
        "openssl req -x509 -newkey rsa:2048 -nodes -subj /CN=localhost -addext subjectAltName=DNS:localhost ";
    ASSERT_EQ(std::system((make + "-keyout - 2>/dev/null >> " + file).c_str()), 0);
    LinuxProcesses processes(events);
    const int pid = processes.Start({"openssl", "s_server", "-quiet", "-www", "-accept", "127.0.0.1:" + port, "-cert", file});
    const auto fetch = [&](const std::string& host) {
        return Fetch({.URL = "https://" + host + ":" + port + "/", .RequestTimeout = 20s}, {.caBundle = file});
    };
    EXPECT_TRUE(Wait([&] { return Holds(fetch("localhost"), "s_server"); }));
    EXPECT_TRUE(Holds(fetch("127.0.0.1"), "error: SSL")) << fetch("127.0.0.1");
    ::kill(pid, SIGKILL);
}

}  // namespace korvane::net_test
