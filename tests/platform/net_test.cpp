// What the rooms rely on in the real clock, event pump, timers, sockets and transfers, with servers on 127.0.0.1; and bounded memory,
// all addresses of a name, name servers that never answer, who is told what, and which answers are text.
#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <poll.h>
#include <stdlib.h>

#include <array>
#include <functional>
#include <latch>
#include <memory>
#include <tuple>
#include <utility>

#include "base/text.h"
#include "platform/curl/curl_inet.h"
#include "platform/qt/qt_tcp_socket.h"
#include "platform/real_ports.h"
#include "platform/wait.h"
#include "support/loopback_server.h"
#include "support/virtual_tcp_socket.h"

namespace korvane::net_test {

/// Opened at the end of the test: until then the name server of "silent.test" says nothing.
std::latch nameServer(1);

/// Stands before the system's own, for the adapters and for libcurl alike.
extern "C" int getaddrinfo(const char* name, const char* service, const addrinfo* hints, addrinfo** result) {
    static const auto real = reinterpret_cast<decltype(&getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
    const std::string_view host = name != nullptr ? name : "";
    if (host == "silent.test") nameServer.wait();
    if (host == "slow.test") ::poll(nullptr, 0, 60);
    if (host != "two-addresses.test") return real(host == "slow.test" ? "127.0.0.1" : name, service, hints, result);
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

    std::unique_ptr<Timer> NewTimer(std::chrono::milliseconds interval, std::function<void()> tick) {
        auto timer = timers.NewTimer("test");
        timer->OnTick(std::move(tick));
        timer->SetInterval(interval);
        timer->SetEnabled(true);
        return timer;
    }

    QtTimers timers;
    QtTcpSocket socket;
    std::string said;  ///< by the handlers of the socket
};

TEST_F(NetTest, OnlyThePumpDeliversAndATickNeverOverlapsItself) {
    EXPECT_NEAR(clock.Timer(), static_cast<double>((clock.Now() - clock.Now().Date()).count()), 2);
    const auto took = [&, start = clock.GetTickCount()] { return clock.GetTickCount() - start; };
    EXPECT_FALSE(WaitFor(events, clock, 30ms, [] { return false; }));
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

TEST_F(NetTest, ATransferIsCancelledWhileThePumpRunsAndFailuresAreToldInWords) {
    const LoopbackServer silent([](Peer&peer) { peer.ReadToEnd(); }), quick(AnswerHttp(HttpAnswer("quick")));
    CurlInet inet(events, clock, {});
    const auto errorOf = [&](const LoopbackServer& server) { return ErrorOf([&] { inet.OpenURL({.URL = server.Http()}); }); };
    const auto timer = NewTimer(20ms, [&] {
        EXPECT_TRUE(!inet.StillExecuting() || errorOf(quick) == "Still executing last request");
        inet.Cancel();  // with nothing running it leaves nothing behind
    });
    EXPECT_EQ(errorOf(silent), "Request cancelled");
    timer->SetEnabled(false);
    EXPECT_EQ(inet.OpenURL({.URL = quick.Http()}), "quick");
    EXPECT_TRUE(Holds(ToLower(Fetch({.URL = "http://127.0.0.1:" + std::to_string(RefusingPort())})), "connect"));
    EXPECT_TRUE(Holds(Fetch({.URL = "http://no..such..host/"}), "no..such..host"));
}

TEST_F(NetTest, AStartedTransferHoldsUpNobodyAndItsEndIsToldOnce) {
    const LoopbackServer silent([](Peer&peer) { peer.ReadToEnd(); }), quick(AnswerHttp(HttpAnswer("quick")));
    CurlInet inet(events, clock, {});
    const auto outcome = [&] {
        std::optional<std::string> told;
        Wait([&] { return told || (told = inet.Outcome()); });
        return told.value_or("none");
    };
    inet.Start({.URL = silent.Http(), .RequestTimeout = 1s});
    EXPECT_FALSE(inet.Outcome() || inet.StillExecuting());
    EXPECT_TRUE(Holds(outcome(), "timed out"));
    EXPECT_FALSE(inet.Outcome());
    inet.Start({.URL = silent.Http()});
    inet.Start({.URL = quick.Http()});
    EXPECT_EQ(outcome(), "");
    EXPECT_EQ(inet.ResponseCode(), 200);
    inet.Start({.URL = silent.Http()});  // and goes away with the slot
}

TEST_F(NetTest, NamesAreLookedUpBesideTheProgramAndLastWordsCanStillBeRead) {
    const LoopbackServer server([](Peer& peer) { peer.Send("last words"); });
    socket.SetHandlers({{}, [this] { said += "close"; }, {}});
    socket.Connect("localhost", server.Port());
    EXPECT_EQ(socket.State(), SocketState::ResolvingHost);
    EXPECT_THROW(socket.SendData("x"), Error);
    EXPECT_THROW(socket.Connect(), Error);
    EXPECT_TRUE(Wait([&] { return said == "close"; }));
    EXPECT_EQ(socket.State(), SocketState::Closing);
    EXPECT_EQ(socket.PeekData(6), "last w");
    EXPECT_EQ(socket.GetData(4), "last") << "it can still be read";
    EXPECT_THROW(socket.SendData("x"), Error);
    socket.Close();
    EXPECT_EQ(socket.GetData(), "");
}

TEST_F(NetTest, TheFakeSocketOfTheOtherSuitesTellsWhatTheRealOneTells) {
    VirtualWorld world(DateTime::Of(2026, 11, 21));
    VirtualNet net(world);
    VirtualTcpSocket fake(net);
    const LoopbackServer server([](Peer& peer) {
        peer.Send("220");
        if (peer.ReadUntil("\r\n") == "QUIT\r\n") peer.Send("221");
    });
    net.Host("127.0.0.1").Port(server.Port()).Speak("220").OnLine("QUIT", "221").Close();
    std::vector<std::string> told;
    for (TcpSocket* const each : std::initializer_list<TcpSocket*>{&socket, &fake}) {
        std::string& all = told.emplace_back();
        const auto add = [&](const std::string& text) { all += text + std::to_string(static_cast<int>(each->State())) + " "; };
        const auto arrival = [&] { add(each->GetData()), all.size() < 20 ? each->SendData("QUIT\r\n") : void(); };
        each->SetHandlers({arrival,
                           [&] { add("close"); },
                           [&](int number, auto&) { add(std::to_string(number) + "."); },
                           [&] { add("connect"); },
                           {},
                           [&] { add("complete"); }});
        for (const auto& [host, port] :
             {std::pair{"127.0.0.1", server.Port()}, {"127.0.0.1", RefusingPort()}, {"no..host", 25}}) {
            each->Connect(host, port);
            EXPECT_TRUE(Wait([&] { return world.RunFor(1ms), each->State() > SocketState::Connected; })) << all;
            each->Close();
        }
    }
    EXPECT_EQ(told[0], told[1]);
    EXPECT_EQ(told[0], "connect7 2207 complete7 2217 close8 10061.9 11001.9 ");
}

TEST_F(NetTest, WhatIsSentIsReportedAndASocketCanBeConnectedAgainInsideItsOwnEvents) {
    const std::string much = std::string(20'000'000, 'x') + "\r\n";
    const LoopbackServer server([&much](Peer& peer) {
        peer.Send("x");
        if (peer.ReadUntil(much).empty()) return;
        peer.Linger(50ms);
        peer.Reset();
    });
    std::size_t sent = 0, remaining = 1;
    const auto arrival = [&] {
        said += "arrival ";
        if (server.Connections() > 1) return;
        socket.Close();
        socket.Connect("127.0.0.1", server.Port());
    };
    const auto progress = [&](std::size_t bytes, std::size_t left) { sent += bytes, remaining = left; };
    socket.SetHandlers({arrival, {}, {}, [&] { said += "connect "; }, progress, [&] { said += "complete "; }});
    socket.Connect("127.0.0.1", server.Port());
    EXPECT_TRUE(Wait([&] { return said == "connect arrival connect arrival "; }));
    socket.SendData(much);
    EXPECT_EQ(sent, 0U);
    EXPECT_TRUE(Wait([&] { return socket.State() != SocketState::Connected; })) << "the connection is broken";
    EXPECT_THROW(socket.SendData("x"), Error);
    EXPECT_TRUE(sent == much.size() && remaining == 0) << sent;
    EXPECT_EQ(said, "connect arrival connect arrival complete ");
}

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
    for (const std::string host : {"silent.test", "LOCALHOST"}) {  // names that are looked up would not be found so soon
        const LoopbackServer away(AnswerHttp(RedirectTo("//" + host + "/")));
        EXPECT_EQ(Fetch({.URL = away.Http(), .RequestTimeout = 20s, .Redirects = InetRedirects::SameHost}),
                  "error: Redirected to another host: " + host);
    }
    EXPECT_EQ(Fetch({.URL = first.Http(), .Redirects = InetRedirects::SameHost}), "other") << "the port may change";
    EXPECT_EQ(Fetch({.URL = first.Http(), .Redirects = InetRedirects::None}), "");
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
    Fetch({.URL = "https://far.test/", .AccessType = InetAccess::NamedProxy, .Proxy = proxy});
    EXPECT_TRUE(other.Notes().back().starts_with("CONNECT far.test:443 "));
}

TEST_F(NetTest, ACertificateMustBeGoodAndOfTheHostThatWasAsked) {
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

    socket.SetHandlers({.dataArrival = [&] { said += socket.GetData(); },
                        .close = [&] { said += " closed"; },
                        .error = [&](int, const std::string& reason) { said += "error: " + reason; },
                        .connect = {},
                        .sendComplete = [&] { said += "sent "; },
                        .encrypted = [&] { socket.SendData("GET / HTTP/1.0\r\n\r\n"); }});
    for (const auto& [host, authorities, outcome] :
         std::initializer_list<std::array<std::string, 3>>{{"localhost", file, "sent HTTP/1.0 200 ok"},
                                                           {"127.0.0.1", file, "error: The host name did not match"},
                                                           {"localhost", "", "error: The certificate is self-signed"},
                                                           {"localhost", folder.Path(), "There are no certificates in the file"},
                                                           {"localhost", file, "sent HTTP/1.0 200 ok"}}) {
        said.clear();
        socket.Connect("127.0.0.1", std::stoi(port));
        EXPECT_TRUE(Wait([&] { return socket.State() == SocketState::Connected; }));
        said += ErrorOf([&] { socket.StartEncryption(host, authorities); });
        EXPECT_TRUE(Wait([&] { return !said.empty() && (!said.starts_with("sent") || Holds(said, " closed")); })) << said;
        EXPECT_TRUE(said.starts_with(outcome)) << said;
        socket.Close();
    }
    ::kill(pid, SIGKILL);
}

TEST_F(NetTest, ThePhasesOfATransferAreThoseOfItsLastRequestAndWhatDidNotRunIsAbsent) {
    CheckPhases phases;
    const auto measure = [&](const std::string& url, InetRedirects redirects = InetRedirects::Follow) {
        Fetch({.URL = url, .RequestTimeout = 20s, .Redirects = redirects, .phases = &phases});
        return phases.name.value_or(-1us);
    };
    const LoopbackServer last([](Peer& peer) { peer.Linger(50ms), peer.ReadUntil("\r\n\r\n"), peer.Send(HttpAnswer("page")); });
    const std::string there = "://slow.test:" + std::to_string(last.Port()) + "/";
    const LoopbackServer first([&](Peer& peer) { peer.Linger(400ms), peer.Send(RedirectTo("http" + there)); });
    const std::string moved = first.Http();
    EXPECT_TRUE(measure(moved) >= 60ms && *phases.firstByte >= 20ms && *phases.firstByte < 300ms && phases.LeftOver() >= 300ms);
    EXPECT_EQ(*phases.whole, *phases.name + *phases.connect + *phases.firstByte + *phases.LeftOver());
    EXPECT_TRUE(measure(moved, InetRedirects::None) == -1us && *phases.firstByte >= 300ms && *phases.LeftOver() < 300ms);
    EXPECT_TRUE(measure(first.Http(), InetRedirects::SameHost) == -1us && *phases.firstByte >= 300ms)
        << "an address is not looked up";
    EXPECT_FALSE(phases.tls || phases.certificateEnd);
    EXPECT_TRUE(measure("https" + ReplaceAll(there, std::to_string(last.Port()), std::to_string(first.Port()))) >= 60ms &&
                phases.connect && !phases.tls && !phases.firstByte && *phases.LeftOver() > 0ms);
    EXPECT_TRUE(measure("http://127.0.0.1:" + std::to_string(RefusingPort())) == -1us && !phases.connect && phases.whole);

    // A connection that finds the queue full is there at its second try, a second later.
    const auto [listener, port] = BindFreePort();
    ::listen(listener.Number(), 0);
    std::vector<Descriptor> clients;
    const auto filling = NewTimer(20ms, [&, listening = listener.Number()] {
        const Descriptor client(::accept4(listening, nullptr, nullptr, SOCK_CLOEXEC));
        if (client.Number() >= 0) ::send(client.Number(), "HTTP/1.0 200 OK\r\n\r\npage", 23, MSG_NOSIGNAL);
    });
    filling->SetEnabled(false);
    sockaddr_in address{.sin_family = AF_INET,
                        .sin_port = htons(static_cast<std::uint16_t>(port)),
                        .sin_addr = {htonl(INADDR_LOOPBACK)},
                        .sin_zero = {}};
    for (int i = 0; i < 2; ++i) {
        clients.emplace_back(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        ::connect(clients.back().Number(), reinterpret_cast<sockaddr*>(&address), sizeof address);
    }
    ::fcntl(listener.Number(), F_SETFL, O_NONBLOCK);
    filling->SetEnabled(true);
    measure("http://127.0.0.1:" + std::to_string(port));
    EXPECT_TRUE(phases.connect && *phases.connect >= 900ms) << phases.connect.value_or(0us).count();
}

TEST_F(NetTest, TheEndOfACertificateIsTheEarliestOfTheChainThatWasVerified) {
    const TemporaryFolder folder;
    const std::string make = "cd " + folder.Path() +
                             R"( && exec 2>output && echo subjectAltName=DNS:localhost >host && echo basicConstraints=CA:TRUE >ca
        new="openssl req -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -batch"
        certify() { $new -subj "/CN=$1" -keyout "$1.key" -out csr; openssl x509 -req -in csr -CA "$2.pem" -CAkey "$2.key" -CAcreateserial -days "$3" -extfile "$4" -out "$1.pem"; }
        for authority in root other; do $new -x509 -subj /CN=$authority -days 3000 -keyout $authority.key -out $authority.pem; done
        certify middle root 20 ca && certify old root -1 ca
        certify a root 400 host; certify b root 20 host; certify c root 1 host; certify d root -1 host
        certify e middle 400 host; certify f old 400 host; certify g other 400 host)";
    ASSERT_EQ(std::system(make.c_str()), 0);
    LinuxProcesses processes(events);
    const auto at = [&](const std::string& file) { return folder.Path() + "/" + file; };
    for (const auto& [name, host, days] :
         std::initializer_list<std::tuple<std::string, std::string, int>>{{"a", "localhost", 400},
                                                                          {"b", "localhost", 20},
                                                                          {"c", "localhost", 1},
                                                                          {"d", "localhost", -1},
                                                                          {"e", "localhost", 20},
                                                                          {"f", "localhost", -1},
                                                                          {"g", "localhost", 0},
                                                                          {"b", "127.0.0.1", 0}}) {
        SCOPED_TRACE(name + host);
        const std::string port = std::to_string(RefusingPort()), chain = name == "f" ? "old.pem" : "middle.pem";
        const int pid = processes.Start({"openssl", "s_server", "-quiet", "-www", "-accept", "127.0.0.1:" + port, "-cert",
                                         at(name + ".pem"), "-key", at(name + ".key"), "-cert_chain", at(chain)});
        CheckPhases phases;
        std::string answer;
        EXPECT_TRUE(Wait([&] {
            answer = Fetch({.URL = "https://" + host + ":" + port + "/", .RequestTimeout = 20s, .phases = &phases},
                           {.caBundle = at("root.pem")});
            return phases.connect.has_value();
        })) << answer;
        EXPECT_EQ(Holds(answer, "s_server"), days > 0) << answer;
        EXPECT_EQ(phases.tls.has_value() && phases.firstByte.has_value(), days > 0);
        EXPECT_EQ(phases.certificateEnd.has_value(), days != 0);
        if (phases.certificateEnd) {
            EXPECT_NEAR(static_cast<double>((*phases.certificateEnd - clock.Now()).count()), days * 86400.0, 4000)
                << "of the summer";
        }
        ::kill(pid, SIGKILL);
    }
}

}  // namespace korvane::net_test
