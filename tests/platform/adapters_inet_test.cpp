// What CurlInet promises beyond the port: who is told what, which answers are text, and what it costs to wait.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <string>
#include <vector>

#include "base/error.h"
#include "base/text.h"
#include "platform/curl/curl_inet.h"
#include "platform/curl/url_text.h"
#include "platform/linux/linux_clock.h"
#include "platform/qt/qt_events.h"
#include "support/loopback_server.h"
#include "support/qt_application.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using Peer = LoopbackServer::Peer;

/// Counts the waits of whoever is given it.
class CountingEvents : public Events {
public:
    void DoEvents() override { real_.DoEvents(); }
    void WaitForEvent(std::chrono::milliseconds limit) override {
        ++waits;
        real_.WaitForEvent(limit);
    }
    void Sleep(std::chrono::milliseconds time) override { real_.Sleep(time); }
    std::unique_ptr<Watch> WatchReadable(int descriptor, std::function<void()> readable) override {
        return real_.WatchReadable(descriptor, std::move(readable));
    }

    int waits = 0;

private:
    QtEvents real_;
};

class CurlInetTest : public testing::Test {
protected:
    /// The page, or the error in words.
    std::string Ask(const Inet::Request& request) {
        try {
            return inet.OpenURL(request);
        } catch (const Error& error) {
            return std::string("error: ") + error.what();
        }
    }
    std::string Fetch(const std::string& url) { return Ask({.URL = url, .RequestTimeout = 20s}); }

    const bool application = (NeedQtApplication(), true);
    SystemClock clock;
    CountingEvents events;
    CurlInet inet{events, clock, {.userAgent = "Korvane"}};
};

std::string RedirectTo(const std::string& url, const std::string& headers = "") {
    return HttpAnswer("", "text/html", "302 Found", "Location: " + url + "\r\n" + headers);
}

TEST(EncodeUrl, MakesWhatWasTypedFitToBeSent) {
    const struct {
        const char* typed;
        const char* sent;
    } cases[] = {
        {" http://host/a \r\n", "http://host/a"},
        {"http://host/a b?c d=\"e\"#f g", "http://host/a%20b?c%20d=%22e%22#f%20g"},
        {"http://host/a%20b<\xC3\xA4>", "http://host/a%20b%3C%C3%A4%3E"},
        {"http://host?a b", "http://host?a%20b"},
        {"http://bad host/", "http://bad host/"},
        {"http://\xC3\xA4.test/", "http://\xC3\xA4.test/"},
        {"", ""},
    };
    for (const auto& each : cases)
        EXPECT_EQ(EncodeUrl(each.typed), each.sent);
}

TEST_F(CurlInetTest, TellsTextFromBinaryData) {
    const struct {
        std::string body;
        const char* type;
        std::string outcome;
    } cases[] = {
        {"caf\xE9", "text/html", "caf\xC3\xA9"},
        {std::string(70'000, 'x') + '\0', "text/html", "error: Type mismatch"},
        {"\x89PNG", "image/png", "error: Type mismatch"},
        {"", "image/png", ""},
        {"no such page", "text/html; charset=image/png", "no such page"},
        {"x", " IMAGE/gif ;x=y", "error: Type mismatch"},
    };
    for (const auto& each : cases) {
        const LoopbackServer server(AnswerHttp(HttpAnswer(each.body, each.type, "404 Not Found")));
        EXPECT_EQ(Fetch(server.Http()), each.outcome);
    }
}

TEST_F(CurlInetTest, MistakesInTheAddressAreToldInWords) {
    const struct {
        std::string url;
        const char* words;
    } cases[] = {
        {"http://", "illegal format"},
        {"http://a b/", "illegal format"},
        {"http://\"host\"/", "illegal format"},
        {"http://127.0.0.1:99999/", "illegal format"},
        {"http://127.0.0.1/\x01", "illegal format"},
        {"file:///etc/passwd", "\"file\" not supported"},
        {"ftp://127.0.0.1/", "\"ftp\" not supported"},
    };
    for (const auto& each : cases)
        EXPECT_TRUE(Holds(Fetch(each.url), each.words)) << each.url << ": " << Fetch(each.url);
    EXPECT_TRUE(Holds(Ask({.URL = "http://127.0.0.1/", .RemotePort = 70000}), "70000"));

    const LoopbackServer server(AnswerHttp(HttpAnswer("long")));
    const std::string longest = "/" + std::string(2000, 'a');
    EXPECT_EQ(Fetch(server.Http() + longest), "long");
    EXPECT_TRUE(Holds(server.Notes().at(0), "GET " + longest + " HTTP/1.1\r\n"));
}

TEST_F(CurlInetTest, RedirectsStayOnTheWebAndComeToAnEnd) {
    const LoopbackServer toFile(AnswerHttp(RedirectTo("file:///etc/passwd")));
    EXPECT_TRUE(Holds(Fetch(toFile.Http()), "\"file\" not supported"));
    const LoopbackServer circle(AnswerHttp(RedirectTo("/again")));
    EXPECT_TRUE(Holds(Fetch(circle.Http()), "Maximum (20) redirects followed"));
    EXPECT_EQ(circle.Connections(), 21);
}

TEST_F(CurlInetTest, CredentialsGoToTheFirstServerOnly) {
    const LoopbackServer other(AnswerHttp(HttpAnswer("other")));
    const LoopbackServer first(AnswerHttp(RedirectTo(other.Http())));
    EXPECT_EQ(Ask({.URL = first.Http(), .UserName = "mu", .Password = "pw"}), "other");
    EXPECT_TRUE(Holds(first.Notes().at(0), "Authorization: Basic bXU6cHc=\r\n"));
    EXPECT_FALSE(Holds(other.Notes().at(0), "Authorization"));
    EXPECT_EQ(Fetch(first.Http()), "other");
    EXPECT_FALSE(Holds(first.Notes().at(1), "Authorization"));
}

TEST_F(CurlInetTest, CookiesLiveForOneTransfer) {
    const LoopbackServer server([](Peer& peer) {
        const std::string request = peer.ReadUntil("\r\n\r\n");
        peer.Send(Holds(request, "Cookie: seen=1\r\n") ? HttpAnswer("welcome") : RedirectTo("/", "Set-Cookie: seen=1\r\n"));
    });
    for (int i = 1; i <= 2; ++i) {
        EXPECT_EQ(Fetch(server.Http()), "welcome");
        EXPECT_EQ(server.Connections(), 2 * i);  // no connection is used twice either
    }
}

TEST_F(CurlInetTest, OnlyTheProxyOfTheRequestCounts) {
    const LoopbackServer server(AnswerHttp(HttpAnswer("from the server")));
    const LoopbackServer proxy(AnswerHttp(HttpAnswer("from the proxy")));
    ::setenv("http_proxy", ("127.0.0.1:" + std::to_string(RefusingPort())).c_str(), 1);
    ::setenv("no_proxy", "*", 1);
    EXPECT_EQ(Fetch(server.Http()), "from the server");
    EXPECT_EQ(Ask({.URL = "http://127.0.0.1/", .RemotePort = server.Port()}), "from the server");
    EXPECT_EQ(Ask({.URL = "http://far.test/",
                   .AccessType = InetAccess::NamedProxy,
                   .Proxy = "127.0.0.1:" + std::to_string(proxy.Port())}),
              "from the proxy");
    EXPECT_TRUE(proxy.Notes().at(0).starts_with("GET http://far.test/ HTTP/1.1\r\n"));
    ::unsetenv("http_proxy");
    ::unsetenv("no_proxy");
}

TEST_F(CurlInetTest, LargeBodiesComeWholeWithOrWithoutALength) {
    std::string body;
    body.resize(50'000'000, 'x');
    const LoopbackServer told(AnswerHttp(HttpAnswer(body)));
    EXPECT_EQ(Fetch(told.Http()), body);
    const LoopbackServer untold(AnswerHttp("HTTP/1.1 200 OK\r\n\r\n" + body));
    EXPECT_EQ(Fetch(untold.Http()), body);
    const LoopbackServer cutShort(AnswerHttp("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nfive!"));
    EXPECT_TRUE(Holds(Fetch(cutShort.Http()), "error: transfer closed"));
    for (const std::string& tooLarge : {std::string("Content-Length: 70000000\r\n\r\nx"), "\r\n" + std::string(70'000'000, 'x'),
                                        "\r\n" + std::string(40'000'000, '\xE9')}) {
        const LoopbackServer endless(AnswerHttp("HTTP/1.1 200 OK\r\n" + tooLarge));
        EXPECT_TRUE(Holds(Fetch(endless.Http()), "larger than 64 MB"));
    }
}

TEST_F(CurlInetTest, AWaitForASilentServerSleeps) {
    const LoopbackServer silent([](Peer& peer) { peer.ReadToEnd(); });
    EXPECT_TRUE(Holds(Ask({.URL = silent.Http(), .RequestTimeout = 1s}), "timed out"));
    EXPECT_LT(events.waits, 20);
}

}  // namespace
}  // namespace korvane
