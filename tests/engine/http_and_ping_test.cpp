// The requester's retries and reasons, and the ping with its limit.
#include <gtest/gtest.h>

#include <functional>

#include "base/text.h"
#include "engine/engine_world.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr const char* kUrl = "http://10.0.0.2/";

TEST(getURLData2, RetriesHiccupsAndKeepsErrors) {
    struct Case {
        const char* name;
        std::function<void(VirtualPage&)> page;
        const char* response;
        const char* reason;
        int requests;
    };
    const Case cases[] = {
        {"an answer", [](VirtualPage& p) { p.Answer("Welcome", 20ms); }, "Welcome", "", 1},
        {"always blank and fast", [](VirtualPage& p) { p.Answer("", 5ms); }, "", "No Response Returned.", 11},
        {"blank and slow", [](VirtualPage& p) { p.Answer("", 600ms); }, "", "No Response Returned.", 1},
        {"blank at first", [](VirtualPage& p) { p.Answer("", 5ms).Answer("", 5ms).Answer("ok", 5ms); }, "ok", "", 3},
        {"an error stays pending", [](VirtualPage& p) { p.Fail("Connection refused").Answer("ok"); }, "",
         "Reason 'Connection refused'", 2},
        {"slow error", [](VirtualPage& p) { p.Fail("Connection reset", 700ms); }, "", "Reason 'Connection reset'", 1},
        {"binary counts as an answer", [](VirtualPage& p) { p.AnswerBinary(600ms); }, "Binary Data Returned", "", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EngineWorld engine;
        engine.TimerMonitorDB->SetEnabled(false);
        c.page(engine.net.Page(kUrl));
        const TimedCheckResult result = engine.http.getURLData2({.strURL = kUrl});
        EXPECT_EQ(result.response, c.response);
        EXPECT_EQ(result.strReason, c.reason);
        EXPECT_EQ(engine.net.Page(kUrl).Requests(), c.requests);
        EXPECT_LT(result.nResponseMs, 1s);
    }
}

TEST(getURLData2, SetsPortProxyAndCredentialsOfEachRequestAnew) {
    EngineWorld engine;
    engine.TimerMonitorDB->SetEnabled(false);
    engine.net.Page(kUrl).Answer("ok");
    const auto request = [&](std::int16_t port, const char* user) {
        engine.http.getURLData2({.strURL = kUrl, .strUser = user, .strPassword = "secret", .nTimeout = 7s, .nPort = port});
        return engine.net.Page(kUrl).LastRequest();
    };
    EXPECT_EQ(request(8080, "joe").RemotePort, 8080);
    EXPECT_EQ(request(80, "joe").Password, "secret");
    EXPECT_EQ(request(443, "").RemotePort, 0);
    EXPECT_EQ(request(80, "").Password, "");
    EXPECT_EQ(request(80, "").RequestTimeout, 7s);
    engine.settings.setKvSettingsColValue("ProxyName", "proxy.test");
    engine.settings.setKvSettingsColValue("ProxyPort", "3128");
    EXPECT_EQ(request(8080, "").Proxy, "proxy.test:3128");
    EXPECT_EQ(request(8080, "").RemotePort, 0);
}

TEST(getURLData2, TakesAFreeSlotWhileAnotherIsBusy) {
    EngineWorld engine;
    engine.TimerMonitorDB->SetEnabled(false);
    engine.net.Page(kUrl).Answer("slow", 3s);
    engine.net.Page("http://10.0.0.3/").Answer("quick", 10ms);
    TimedCheckResult second;
    engine.world.After(1s, [&] { second = engine.http.getURLData2({.strURL = "http://10.0.0.3/"}); });
    const TimedCheckResult first = engine.http.getURLData2({.strURL = kUrl});
    EXPECT_EQ(second.response, "quick");
    // The busy slot that was met on the way to a free one has been cancelled.
    EXPECT_NE(first.strReason, "");
}

TEST(getURLData2, GivesTheBarBackToTheRequestThatStillRuns) {
    EngineWorld engine;
    engine.TimerMonitorDB->SetEnabled(false);
    engine.person.windowVisible = true;
    engine.state.nLastAverage = 10'000;  // the bar is full after 12 s
    HttpRequester ofOperator{{engine.settings, engine.world.events, engine.world.clock, engine.progress}};
    ofOperator.LoadInets([&] { return std::make_unique<VirtualInet>(engine.net); });
    engine.net.Page(kUrl).Answer("slow", 9s);
    engine.net.Page("http://10.0.0.3/").Answer("quick", 3s);
    engine.world.After(3100ms, [&] { ofOperator.getURLData2({.strURL = "http://10.0.0.3/"}); });
    std::vector<int> bar;
    for (const auto when : {4600ms, 7600ms})
        engine.world.After(when, [&] { bar.push_back(engine.person.progressValue); });
    engine.http.getURLData2({.strURL = kUrl});
    EXPECT_EQ(bar, (std::vector<int>{12, 62}));
    EXPECT_FALSE(engine.TimerProgress->Enabled());
}

TEST(DoPingRequest, MeasuresAgainstTheLimit) {
    struct Case {
        const char* name;
        std::function<void(VirtualNet&)> host;
        const char* address;
        std::int16_t limit;
        const char* response;
        const char* reason;
    };
    const Case cases[] = {
        {"in time", [](VirtualNet& n) { n.Host("10.0.0.4").Echo(999ms); }, "10.0.0.4", 1000,
         "Ping Success to 10.0.0.4. Took 999 ms. (<1000 ms).", ""},
        {"came back too late", [](VirtualNet& n) { n.Host("10.0.0.4").Echo(1001ms); }, "10.0.0.4", 1000, "",
         "Ping Failure to 10.0.0.4.  -Took too long : (1001 ms) "},
        {"silent", [](VirtualNet& n) { n.Host("10.0.0.4").EchoSilent(); }, "10.0.0.4", 1000, "",
         "Ping Failure to 10.0.0.4.  -Took too long : (2000 ms) Ping Timeout"},
        {"a longer limit does not lengthen the wait", [](VirtualNet& n) { n.Host("10.0.0.4").EchoSilent(); }, "10.0.0.4", 5000,
         "", "Ping Failure to 10.0.0.4.  Ping Timeout"},
        {"unreachable", [](VirtualNet& n) { n.Host("10.0.0.4").EchoStatus(3 * 256 + 1, 5ms); }, "10.0.0.4", 1000, "",
         "Ping Failure to 10.0.0.4.  Ping Failure (Host did not reply or could not be reached)."},
        {"a name", [](VirtualNet&) {}, "mail.test", 1000, "",
         "Ping Failure to mail.test.   mail.test is not a valid IP address."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EngineWorld engine;
        c.host(engine.net);
        const CheckResult result = engine.ping.DoPingRequest(c.address, c.limit);
        EXPECT_EQ(result.response, c.response);
        EXPECT_EQ(result.strReason, c.reason);
    }
}

TEST(DoPingRequest, SaysOnceWhatToAllow) {
    EngineWorld engine;
    engine.net.ForbidEcho("allow it with setcap");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(engine.ping.DoPingRequest("10.0.0.4", 1000).strReason,
                  "Ping Failure to 10.0.0.4.  Unable to create handle to ICMP:  PING may not be supported for Windows 95 users.");
    }
    EXPECT_EQ(engine.LogTexts(), (std::vector<std::string>{"PingHost: allow it with setcap"}));
}

TEST(IsValidIPAddress, WantsFourNumbers) {
    for (const char* good : {"0.0.0.0", "255.255.255.255", "127.0.0.1"})
        EXPECT_TRUE(IsValidIPAddress(good)) << good;
    for (const char* bad : {"", "1.2.3", "1.2.3.4.5", "256.1.1.1", "a.b.c.d", "1..2.3", "-1.0.0.0"})
        EXPECT_FALSE(IsValidIPAddress(bad)) << bad;
}

}  // namespace
}  // namespace korvane
