// Scripted conversations: what the server does, what the check must say of it and when.
#include "engine/tcp_checker.h"

#include <gtest/gtest.h>

#include <functional>

#include "engine/engine_world.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

struct Conversation {
    const char* name;
    std::function<void(VirtualNet&)> server;
    const char* expected;
    const char* response;
    const char* reason;
    std::chrono::milliseconds atLeast;
    std::chrono::milliseconds atMost;
};

constexpr const char* kCouldNot = "Could Not Connect to 10.0.0.1 Double check for typos. ";
const std::string kMostOfAFlood = "Error: " + std::string(8191, 'x') + " Expected 220";

const Conversation kConversations[] = {
    {"whole script",
     [](VirtualNet& n) { n.Host("10.0.0.1").Port(25).Speak("220 ready\r\n", 30ms).OnLine("QUIT", "221 bye\r\n"); },
     "220,QUIT,221", "221 bye\r\n", "", 30ms, 500ms},
    {"banner alone", [](VirtualNet& n) { n.Host("10.0.0.1").Port(25).Speak("+OK hello\r\n"); }, "+OK", "+OK hello\r\n", "", 0ms,
     500ms},
    {"connecting is enough", [](VirtualNet& n) { n.Host("10.0.0.1").Port(25).Accept(3ms); }, "", "Server Connected.", "", 3ms,
     300ms},
    {"an empty element takes anything",
     [](VirtualNet& n) { n.Host("10.0.0.1").Port(25).Speak("hm\r\n").OnLine("QUIT", "whatever\r\n"); }, ",QUIT,", "whatever\r\n",
     "", 0ms, 500ms},
    {"wrong banner fails at once", [](VirtualNet& n) { n.Host("10.0.0.1").Port(25).Speak("554 no\r\n"); }, "220,QUIT,221", "",
     "Error: 554 no\r\n Expected 220", 0ms, 300ms},
    {"a flood ends at 8 kB, between two characters",
     [](VirtualNet& n) { n.Host("10.0.0.1").Port(25).Speak(std::string(8191, 'x') + "\xC3\xA4" + std::string(90'000, 'x')); },
     "220", "", kMostOfAFlood.c_str(), 0ms, 300ms},
    {"control characters become blanks once they were looked at",
     [](VirtualNet& n) { n.Host("10.0.0.1").Port(25).Speak(std::string("+OK\x1B[1m\0\tready\r\n", 16)); }, "+OK\x1B",
     "+OK [1m \tready\r\n", "", 0ms, 300ms},
    {"the first piece decides", [](VirtualNet& n) { n.Host("10.0.0.1").Port(25).Speak("2", 5ms).Speak("20 ready\r\n", 5ms); },
     "220", "", "Error: 2 Expected 220", 0ms, 300ms},
    {"a later failure keeps the earlier answer",
     [](VirtualNet& n) { n.Host("10.0.0.1").Port(25).Speak("220 ready\r\n").OnLine("QUIT", "500 what\r\n"); }, "220,QUIT,221",
     "220 ready\r\n", "Error: 500 what\r\n Expected 221", 0ms, 500ms},
    {"silence", [](VirtualNet& n) { n.Host("10.0.0.1").Port(25).Accept(1ms); }, "220", "",
     "Error:  Expected 220 Server error, timed out while waiting for a response.220", 20500ms, 21800ms},
    {"closed without a word", [](VirtualNet& n) { n.Host("10.0.0.1").Port(25).Accept(1ms).Close(10ms); }, "220", "",
     "Error:  Expected 220 Server error, timed out while waiting for a response.220", 20500ms, 21800ms},
    {"refused", [](VirtualNet& n) { n.Host("10.0.0.1").Port(25).Refuse(2ms); }, "220", "", kCouldNot, 0ms, 300ms},
    {"no answer to connecting: half the timeout", [](VirtualNet& n) { n.Host("10.0.0.1").Port(25).Silent(); }, "220", "",
     "Connection Timeout Failure.  Failed to connect in a timely manner. ", 7500ms, 7500ms},
};

TEST(DoTCPRequest, TellsWhatTheServerDid) {
    for (const Conversation& c : kConversations) {
        SCOPED_TRACE(c.name);
        EngineWorld engine;
        engine.TimerMonitorDB->SetEnabled(false);
        c.server(engine.net);
        const auto start = engine.world.Ticks();
        const CheckResult result = engine.tcp.DoTCPRequest("10.0.0.1", c.expected, 15s, "25");
        const auto took = engine.world.Ticks() - start;
        EXPECT_EQ(result.response, c.response);
        EXPECT_EQ(result.strReason, c.reason);
        EXPECT_GE(took, c.atLeast);
        EXPECT_LE(took, c.atMost);
        EXPECT_EQ(engine.net.Host("10.0.0.1").Port(25).Mistake(), "");
        EXPECT_EQ(engine.socket.State(), SocketState::Closed);
        EXPECT_FALSE(engine.person.waitCursor);
    }
}

TEST(DoTCPRequest, LooksNamesUpAndGivesUpOnThem) {
    EngineWorld engine;
    engine.TimerMonitorDB->SetEnabled(false);
    engine.net.Host("mail.test").ResolveAfter(300ms).Port(110).Speak("+OK\r\n");
    EXPECT_EQ(engine.tcp.DoTCPRequest("mail.test", "+OK", 15s, "110").strReason, "");
    EXPECT_TRUE(engine.person.Said(" Resolved."));
    engine.net.Host("lost.test").NeverResolves();
    EXPECT_EQ(engine.tcp.DoTCPRequest("lost.test", "+OK", 15s, "110").strReason,
              "Connection Timeout Failure.  Failed to connect in a timely manner. ");
    engine.net.Host("unknown.test").Unknown(5ms);
    EXPECT_EQ(engine.tcp.DoTCPRequest("unknown.test", "+OK", 15s, "110").strReason,
              "Could Not Connect to unknown.test Double check for typos. ");
}

TEST(DoTCPRequest, AnswersBadPortsAndAMissingNetworkWithAReason) {
    EngineWorld engine;
    engine.TimerMonitorDB->SetEnabled(false);
    EXPECT_EQ(engine.tcp.DoTCPRequest("10.0.0.1", "220", 15s, "abc").strReason, "Type mismatch");
    EXPECT_EQ(engine.tcp.DoTCPRequest("10.0.0.1", "220", 15s, "").strReason, "Type mismatch");
    EXPECT_NE(engine.tcp.DoTCPRequest("10.0.0.1", "220", 15s, "70000").strReason, "");
    engine.net.SetNetworkThere(false);
    EXPECT_EQ(engine.tcp.DoTCPRequest("10.0.0.1", "220", 15s, "25").strReason, "Please connect to the internet first! ");
    EXPECT_EQ(engine.socket.State(), SocketState::Closed);
}

TEST(DoTCPRequest, RefusesASecondConversationAndTheNextOneWorks) {
    EngineWorld engine;
    engine.TimerMonitorDB->SetEnabled(false);
    engine.net.Host("10.0.0.1").Port(25).Speak("220\r\n", 2s);
    CheckResult nested;
    engine.world.After(1s, [&] { nested = engine.tcp.DoTCPRequest("10.0.0.1", "220", 15s, "25"); });
    EXPECT_NE(engine.tcp.DoTCPRequest("10.0.0.1", "220", 15s, "25").strReason, "");
    EXPECT_EQ(nested.strReason, "Socket wasn't closed ");
    EXPECT_EQ(engine.tcp.DoTCPRequest("10.0.0.1", "220", 15s, "25").strReason, "");
}

TEST(WaitForTCPText, AcrossMidnightWaitsPastItsLimitButNotForGood) {
    EngineWorld answered(DateTime::Of(2026, 11, 21, 23, 59, 50));
    answered.TimerMonitorDB->SetEnabled(false);
    answered.net.Host("10.0.0.1").Port(25).Speak("220\r\n", 60s);
    EXPECT_EQ(answered.tcp.DoTCPRequest("10.0.0.1", "220", 15s, "25").strReason, "");

    EngineWorld silent(DateTime::Of(2026, 11, 21, 23, 59, 50));
    silent.TimerMonitorDB->SetEnabled(false);
    silent.net.Host("10.0.0.1").Port(25).Accept(1ms);
    EXPECT_NE(silent.tcp.DoTCPRequest("10.0.0.1", "220", 15s, "25").strReason, "");
    EXPECT_LE(silent.world.Ticks(), 16min);
}

TEST(DoTCPRequest, ShowsTheConversationToWhoeverLooks) {
    EngineWorld engine;
    engine.TimerMonitorDB->SetEnabled(false);
    engine.conversation.visible = true;
    engine.net.Host("10.0.0.1").Port(25).Speak("220 a").OnLine("QUIT", "500 b");
    const CheckResult result = engine.tcp.DoTCPRequest("10.0.0.1", "220,QUIT,221", 15s, "25");
    EXPECT_EQ(engine.conversation.lines, (std::vector<std::string>{"< 220 a", "> QUIT", "< Error: 500 b Expected 221"}));
    EXPECT_EQ(result.response, "Error: 500 b Expected 221");
}

}  // namespace
}  // namespace korvane
