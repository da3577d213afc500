// The sign of life for a service elsewhere.
#include "shell/shell_world.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

TEST(Heartbeat, BeatsEachMinuteInWhichTheCycleIsAliveAndHoldsUpNothing) {
    World world({.settings = "Heartbeat=https://alive.test/secret"});
    VirtualPage& page = world.net.Page("https://alive.test/secret").Answer("ok", 20s);
    world.Start();
    world.RunFor(10min + 30s);
    EXPECT_EQ(page.Requests(), 10);
    EXPECT_EQ(page.LastRequest().Redirects, InetRedirects::None);
    EXPECT_EQ(world.run.TheDesk().safeguards.Counts().at("Heartbeat"), 10U);
    world.run.cmdStopStart();
    world.RunFor(5min);
    EXPECT_EQ(page.Requests(), 10) << "a stopped monitor";
    world.run.cmdStopStart();
    VirtualServer& slow = world.net.Host("10.0.0.1").Port(25).Speak("220 ready");
    std::string expected = "220";
    for (int i = 0; i < 10; ++i, expected += ",A,220")  // each check takes more than three minutes
        slow.Speak("220 ready", 19s).ExpectAnyLine();
    for (int i = 0; i < 3; ++i)
        world.rows.Add(
            {.strType = "SMTP", .strPort = "25", .nTimeout = 30, .nIntervalSeconds = 7200, .strExpectedText = expected});
    world.RunFor(10min);
    const int before = page.Requests();
    EXPECT_TRUE(before >= 13 && before <= 15) << before << ": a cycle that does not tick for a minute";
    world.RunFor(5min);
    EXPECT_GE(page.Requests(), before + 4);
    world.Set("Heartbeat", "");
    world.RunFor(3min);
    EXPECT_LE(page.Requests(), before + 6);
}

TEST(Heartbeat, TellsAFailureOnceUntilItWorksAgain) {
    World world({.settings = "Heartbeat=http://alive.test/secret"});
    using Kind = PageAnswer::Kind;
    VirtualPage& page = world.net.Page("http://alive.test/secret");
    for (const PageAnswer& answer : {PageAnswer{Kind::Body, "", 1ms, 204},
                                     {Kind::Silent},
                                     {Kind::Failure, "refused", 1ms},
                                     {Kind::Body, "", 1ms, 302},
                                     {Kind::Body, "", 1ms},
                                     {Kind::Body, "", 1ms, 500}})
        page.Add(answer);
    world.Start();
    world.RunFor(9min);
    std::vector<std::string> told = world.LogTexts();
    std::erase_if(told, [](const std::string& text) { return !Holds(text, "Safeguard Heartbeat") || Holds(text, "secret"); });
    EXPECT_EQ(told, (std::vector<std::string>{"Safeguard Heartbeat: A heartbeat was answered.",
                                              "# Safeguard Heartbeat: A heartbeat failed: Operation timed out",
                                              "Safeguard Heartbeat: Heartbeats are answered again.",
                                              "# Safeguard Heartbeat: A heartbeat failed: The server answered with HTTP status "
                                              "500."}));
    EXPECT_FALSE(world.Logged("secret"));
}

}  // namespace
}  // namespace korvane
