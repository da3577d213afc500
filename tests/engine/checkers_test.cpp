// The checkers one by one: what a server does, and what the check says of it; and the daily windows without checks.
#include <functional>

#include "engine/down_time.h"
#include "engine/engine_test.h"

namespace korvane::checkers_test {

CheckResult Talk(World& world, const std::string& host, const std::string& expected, const std::string& port = "25") {
    return world.run.TheDesk().tcp.DoTCPRequest(host, expected, 15s, port);
}

TEST(TcpChecker, TellsWhatTheServerDid) {
    const char* const late = "Error:  Expected 220 Server error, timed out while waiting for a response.220";
    const char* const couldNot = "Could Not Connect to 10.0.0.1 Double check for typos. ";
    const char* const timeout = "Connection Timeout Failure.  Failed to connect in a timely manner. ";
    using Step = std::function<void(VirtualServer&)>;
    const std::tuple<Step, const char*, const char*, const char*, std::chrono::milliseconds> cases[] = {
        {[](auto& s) { s.Speak("220 ready", 30ms).OnLine("QUIT", "221 bye"); }, "220,QUIT,221", "221 bye", "", 0ms},
        {[](auto& s) { s.Accept(3ms); }, "", "Server Connected.", "", 0ms},
        {[](auto& s) { s.Speak("hm").OnLine("QUIT", "whatever"); }, ",QUIT,", "whatever", "", 0ms},
        {[](auto& s) { s.Speak("+ok"); }, "+OK,QUIT,bye", "", "Error: +ok Expected +OK", 0ms},
        {[](auto& s) { s.Speak("2", 5ms).Speak("20 ready", 5ms); }, "220", "", "Error: 2 Expected 220", 0ms},
        {[](auto& s) { s.Speak("220 a").OnLine("QUIT", "500 b"); }, "220,QUIT,221", "220 a", "Error: 500 b Expected 221", 0ms},
        {[](auto& s) { s.Accept(1ms); }, "220", "", late, 20500ms},
        {[](auto& s) { s.Accept(1ms).Close(10ms); }, "220", "", late, 20500ms},
        {[](auto& s) { s.Refuse(2ms); }, "220", "", couldNot, 0ms},
        {[](auto& s) { s.Silent(); }, "220", "", timeout, 7500ms},
    };
    for (const auto& [behave, expected, response, reason, took] : cases) {
        World world;
        behave(world.net.Host("10.0.0.1").Port(25));
        const CheckResult result = Talk(world, "10.0.0.1", expected);
        EXPECT_EQ(result.response, response);
        EXPECT_EQ(result.strReason, reason);
        EXPECT_EQ(std::clamp<std::chrono::milliseconds>(world.world.Ticks(), took, took + 1300ms), world.world.Ticks()) << reason;
        EXPECT_TRUE(world.testSocket.State() == SocketState::Closed && !world.person.waitCursor);
    }
}

TEST(GuardClock, AReplyIsNotWaitedForLongerOverMidnight) {
    for (const bool on : {false, true}) {
        World world({.start = DateTime::Of(2026, 11, 21, 23, 59, 50), .settings = on ? "GuardClock=True" : ""});
        world.Start();
        world.net.Host("10.0.0.1").Port(25).Accept(1ms);
        Talk(world, "10.0.0.1", "220");
        EXPECT_EQ(world.world.Ticks() < 22s, on);
    }
}

TEST(TcpChecker, AnswersWhatCannotBeTalkedToWithAReason) {
    World world;
    world.net.Host("mail.test").ResolveAfter(300ms).Port(25).Speak("220\r\n", 2s);
    world.net.Host("lost.test").NeverResolves();
    CheckResult nested;
    world.world.After(1s, [&] { nested = Talk(world, "mail.test", "220"); });
    EXPECT_NE(Talk(world, "mail.test", "220").strReason, "");  // the second conversation took its socket
    EXPECT_EQ(nested.strReason, "Socket wasn't closed ");
    EXPECT_EQ(Talk(world, "mail.test", "220").strReason, "");
    EXPECT_EQ(Talk(world, "lost.test", "220").strReason, "Connection Timeout Failure.  Failed to connect in a timely manner. ");
    EXPECT_EQ(Talk(world, "unknown.test", "220").strReason, "Could Not Connect to unknown.test Double check for typos. ");
    EXPECT_EQ(Talk(world, "10.0.0.1", "220", "abc").strReason, "Type mismatch");
    world.net.SetNetworkThere(false);
    EXPECT_EQ(Talk(world, "10.0.0.1", "220").strReason, "Please connect to the internet first! ");
}

/// The requester of what the operator tries out.
HttpRequester& RequesterOf(World& world) {
    world.run.TheDesk().http.LoadInets([&] { return std::make_unique<VirtualInet>(world.net); });
    world.Set("ProxyName", "");
    return world.run.TheDesk().http;
}

TEST(HttpRequester, RetriesHiccupsAndKeepsErrors) {
    const std::tuple<std::function<void(VirtualPage&)>, const char*, const char*, int> cases[] = {
        {[](auto& p) { p.Answer("", 5ms); }, "", "No Response Returned.", 11},
        {[](auto& p) { p.Answer("", 600ms); }, "", "No Response Returned.", 1},
        {[](auto& p) { p.Answer("", 5ms).Answer("", 5ms).Answer("ok", 5ms); }, "ok", "", 3},
        {[](auto& p) { p.Fail("Connection refused").Answer("ok"); }, "", "Reason 'Connection refused'", 2},
        {[](auto& p) { p.Fail("Connection reset", 700ms); }, "", "Reason 'Connection reset'", 1},
        {[](auto& p) { p.AnswerBinary(600ms); }, "Binary Data Returned", "", 1},
    };
    for (const auto& [behave, response, reason, requests] : cases) {
        World world;
        VirtualPage& page = world.net.Page("http://web");
        behave(page);
        const TimedCheckResult result = RequesterOf(world).getURLData2({.strURL = "http://web"});
        EXPECT_EQ(result.response, response);
        EXPECT_EQ(result.strReason, reason);
        EXPECT_EQ(page.Requests(), requests) << response << reason;
    }
}

TEST(HttpRequester, SetsPortProxyAndCredentialsOfEachRequestAnew) {
    World world;
    HttpRequester& http = RequesterOf(world);
    const auto asked = [&](std::int16_t port, const char* user) {
        http.getURLData2({.strURL = "http://web", .strUser = user, .strPassword = "secret", .nTimeout = 7s, .nPort = port});
        const Inet::Request& request = world.net.Page("http://web").Answer("ok").LastRequest();
        return std::to_string(request.RequestTimeout.count()) + std::to_string(request.RemotePort) + request.Password +
               request.Proxy;
    };
    world.net.Page("http://web");
    EXPECT_EQ(asked(8080, "joe"), "78080secret");
    EXPECT_EQ(asked(443, ""), "70");
    world.Set("ProxyName", "proxy.test");
    world.Set("ProxyPort", "3128");
    EXPECT_EQ(asked(8080, ""), "70proxy.test:3128");
}

TEST(PingChecker, MeasuresAgainstTheLimitAndSaysOnceWhatToAllow) {
    World world;
    const auto ping = [&](std::int16_t limit, const char* address = "10.0.0.1") {
        const CheckResult result = world.run.TheDesk().ping.DoPingRequest(address, limit);
        return result.response + "|" + result.strReason;
    };
    VirtualHost& host = world.net.Host("10.0.0.1").Echo(1000ms);
    EXPECT_EQ(ping(1000), "Ping Success to 10.0.0.1. Took 1000 ms. (<1000 ms).|");
    EXPECT_EQ(ping(999), "|Ping Failure to 10.0.0.1.  -Took too long : (1000 ms) ");
    host.EchoSilent();
    EXPECT_EQ(ping(1000), "|Ping Failure to 10.0.0.1.  -Took too long : (2000 ms) Ping Timeout");
    EXPECT_EQ(ping(5000), "|Ping Failure to 10.0.0.1.  Ping Timeout");  // the wait is as long as ever
    host.EchoStatus(769);
    EXPECT_EQ(ping(1000), "|Ping Failure to 10.0.0.1.  Ping Failure (Host did not reply or could not be reached).");
    EXPECT_EQ(ping(1, "mail.test"), "|Ping Failure to mail.test.   mail.test is not a valid IP address.");
    world.net.ForbidEcho("allow it with setcap");
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(Holds(ping(1000), "Unable to create handle to ICMP:  PING may not be supported"));
    EXPECT_EQ(world.LogTexts(), Texts{"# PingHost: allow it with setcap"});
    for (const char* bad : {"", "1.2.3", "1.2.3.4.5", "256.1.1.1", "a.b.c.d", "1..2.3", "-1.0.0.0"})
        EXPECT_FALSE(IsValidIPAddress(bad)) << bad;
    EXPECT_TRUE(IsValidIPAddress("0.0.0.0") && IsValidIPAddress("255.255.255.255"));
}

TEST(DownTime, HoldsFromItsFirstMinuteToBeforeItsEnd) {
    const std::tuple<const char*, const char*, int, int, bool, int> cases[] = {
        {"9:00", "60", 8, 59, false, 1},
        {"9:00", "60", 9, 0, true, 0},
        {"9:00", "60", 10, 0, false, -60},
        {"12:30 AM", "60", 1, 29, true, -59},
        {"23:30", "60", 0, 10, false, 1400},  // minutes of the day do not wrap
        {"11/20/2026 9:00:00 PM", "1", 21, 0, true, 0},
        {"", "60", 9, 0, false, -1},
        {"9:00", "0", 9, 0, false, -1},
        {"nine", "60", 9, 0, false, -1},
        {"9:00", "soon", 9, 0, false, -1},
        {"23:00", "32000", 23, 0, false, -1},  // leaves the 16 bits
    };
    for (const auto& [start, duration, hour, minute, down, toStart] : cases) {
        const DownTime result = IsDownTime(start, duration, DateTime::Of(2026, 11, 21, hour, minute, 30));
        EXPECT_EQ(std::pair(result.bIsDown, result.nMinutesToStart), std::pair(down, toStart)) << start << " at " << hour;
    }
}

}  // namespace korvane::checkers_test
