// The safeguards of web checks, and of this machine's own network.
#include <filesystem>

#include "engine/engine_test.h"
#include "engine/http_status.h"

namespace korvane {
namespace {

TEST(HttpStatusSafeguard, AStatusFromFourHundredOnFailsUnlessTheEntryCallsItGood) {
    const std::string on = "HTTPStatusFails=True", reason = "The server answered with HTTP status ";
    using Kind = PageAnswer::Kind;
    const std::tuple<std::string, PageAnswer, const char*, const char*, std::string, int> cases[] = {
        {"", {Kind::Body, "x", 1ms, 500}, "", "UP", "x", 1},
        {on, {Kind::Body, "x", 1ms, 500}, "", "Failing", reason + "500. x", 1},
        {on, {Kind::Body, "", 1ms, 404}, "401", "Failing", reason + "404. ", 1},
        {on, {Kind::Binary, "", 1ms, 503}, "", "Failing", reason + "503. Binary Data Returned", 1},
        {on, {Kind::Body, "x", 1ms, 302}, "", "UP", "x", 1},
        {on, {Kind::Body, "", 1ms, 401}, " 503, 401", "UP", "HTTP status 401", 1},
        {on, {Kind::Body, "", 1ms, 204}, "204", "UP", "HTTP status 204", 1},
        {on, {Kind::Body, "x", 1ms, 401}, "401;503", "Failing", reason + "401. x", 1},  // not a list
        {on, {Kind::Body, "", 1ms, 200}, "", "Failing", "No Response Returned. ", 1},
        {"", {Kind::Failure, "refused", 1ms}, "", "Failing", "Reason 'refused' ", 11},
        {on, {Kind::Failure, "refused", 1ms}, "", "Failing", "Reason 'refused' ", 1},
        {"", {Kind::OtherHost, "evil", 1ms}, "", "UP", "evil", 1},
        {"SameHostRedirects=True",
         {Kind::OtherHost, "evil", 1ms},
         "",
         "Failing",
         "Reason 'Redirected to another host: evil' ",
         1},
    };
    for (const auto& [settings, answer, good, status, response, requests] : cases) {
        Engine engine({Web()}, settings);
        if (*good != '\0') engine.run.TheDesk().ofEntries.Write(1, "httpstatusgood", good);
        engine.page.Add(answer);
        engine.RunFor(3500ms);
        EXPECT_EQ(engine.Of(1, "strCurStatus"), status) << response;
        EXPECT_EQ(engine.Of(1, "strLastResponse"), response);
        EXPECT_EQ(engine.page.Requests(), requests) << response;
        EXPECT_EQ(engine.Logged("Safeguard "), response.starts_with(reason) || Holds(settings, "Same")) << response;
    }
    for (const char* text : {"99", "600", "4000", "401,", "401;403", "4o1", "-401"})
        EXPECT_FALSE(IsStatusList(text)) << text;
    for (const char* text : {"", " ", "100", "401 , 599"})
        EXPECT_TRUE(IsStatusList(text)) << text;
}

/// Entry 1 gets no answer, and neither does a question about the own network.
struct Alone : Engine {
    explicit Alone(const Row& entry = {}) : Engine({Ping(entry)}, "OwnNetwork=10.9.9.1; gate.test\nGlobalRetryDuration=30") {
        net.Host("10.0.0.1").Down();
        for (const int number : {80, 443, 53})
            net.Host("gate.test").Port(number).Silent();
    }
    VirtualHost& gateway = net.Host("10.9.9.1").Down();
};

TEST(OwnNetwork, NoEntryIsBlamedAndOneMailTellsWhenItIsBack) {
    Alone alone(Columns("nTries strCMD strEmailList1 strEmailList2 strEmailFrom", 1, "act", "a@x;b@x", "A@x", "me@x"));
    const auto told = [&] {
        const Texts texts = alone.LogTexts();
        return std::count_if(texts.begin(), texts.end(), [](auto& text) { return text.starts_with("Safeguard OwnNetwork: "); });
    };
    alone.RunFor(10min);
    EXPECT_EQ(alone.Of(1, "strCurStatus,nTriesCur,nFail,nPercentUp"), "own network down,0,0,100");
    EXPECT_TRUE(
        alone.Of(1, "strLastResponse").starts_with("Not counted, because the own network is down since 11/21/2026 3:00:"));
    EXPECT_EQ(alone.rows.Count("Failures") + static_cast<int>(alone.mail.mails.size() + alone.TakeStarted().size()), 0);
    const std::size_t checks = alone.run.TheDesk().safeguards.Counts().at("OwnNetwork");
    EXPECT_TRUE(checks > 12 && checks <= 20) << checks;  // the pace of the retry; the questions take some seconds
    EXPECT_EQ(told(), 1);
    const TemporaryFolder copy;
    std::filesystem::copy(alone.home, copy.Path(), std::filesystem::copy_options::recursive);
    World restarted({.start = alone.world.clock.Now(), .home = copy.Path()});
    restarted.net.Host("10.9.9.1").Up();
    restarted.Start();
    restarted.RunFor(90s);
    EXPECT_TRUE(restarted.Logged("The own network is back after 10 min. "));
    EXPECT_EQ(restarted.mail.mails.size(), 5U);
    alone.gateway.Up();
    alone.RunFor(90s);
    EXPECT_EQ(told(), 2);
    EXPECT_TRUE(alone.Logged("The own network is back after 10 min. "));
    EXPECT_TRUE(alone.Logged(" sec. " + std::to_string(checks) + " failed checks were not counted."));
    ASSERT_EQ(alone.mail.mails.size(), 5U) << "two about the network, and three about the entry, which is down itself";
    EXPECT_TRUE(Holds(alone.mail.mails[1].text, "OWN NETWORK BACK UP") && Holds(alone.mail.mails[1].text, "since 11/21/2026"));
    EXPECT_EQ(alone.mail.mails[1].recipients, Texts{"<b@x>"});
    EXPECT_EQ(alone.Of(1, "strCurStatus"), "DOWN");
    alone.Set("MailOutbox", "True");
    alone.gateway.Down();
    alone.RunFor(5min);
    alone.gateway.Up();
    alone.RunFor(90s);
    EXPECT_GT(alone.ownProgram.started, 0);
    EXPECT_EQ(std::count_if(alone.mail.mails.begin(), alone.mail.mails.end(),
                            [](auto& mail) { return Holds(mail.text, "OWN NETWORK BACK UP"); }),
              4);
}

TEST(OwnNetwork, TellsOnceThatItIsBackAlsoWhenARestartFollows) {
    Alone alone(Columns("strEmailList1", "a@x"));
    alone.Add(Ping({{"strEmailList1", "a@x"}}));
    alone.RunFor(1min);
    alone.gateway.Up();
    while (alone.mail.mails.empty())
        alone.RunFor(1s);
    EXPECT_EQ(alone.Of(2, "strCurStatus"), "own network down") << "it is not checked again yet";
    const TemporaryFolder copy;
    std::filesystem::copy(alone.home, copy.Path(), std::filesystem::copy_options::recursive);
    World restarted({.start = alone.world.clock.Now(), .home = copy.Path()});
    for (const char* host : {"10.9.9.1", "10.0.0.1"})
        restarted.net.Host(host).Up();
    restarted.Start();
    restarted.RunFor(90s);
    EXPECT_EQ(restarted.mail.mails.size(), 0U);
}

TEST(OwnNetwork, IsAskedBeforeAndAfterTheCheckAndAnyAnswerWillDo) {
    const auto change = [](Alone& alone, std::chrono::milliseconds after, bool up) {
        alone.world.After(after, [&alone, up] { up ? alone.gateway.Up() : alone.gateway.Down(); });
    };
    const std::tuple<std::function<void(Alone&)>, const char*> cases[] = {
        {[](Alone& a) { a.gateway.Up(); }, "Failing"},
        {[](Alone& a) { a.gateway.Up().EchoStatus(769); }, "own network down"},
        {[](Alone& a) { a.net.Host("gate.test").Port(443).Refuse(); }, "Failing"},
        {[](Alone& a) { a.net.Host("gate.test").Port(53).Accept(5ms); }, "Failing"},
        {[](Alone& a) { a.net.Host("10.9.9.1").Up().Port(53).Refuse(), a.net.ForbidEcho("no"); }, "Failing"},
        {[](Alone& a) { a.net.SetNetworkThere(false); }, "own network down"},
        {[](Alone& a) { a.Set("OwnNetwork", "10.9.9.1; a b"); }, "Failing"},  // unusable, so it is off
        {[&](Alone& a) { change(a, 9s, true); }, "own network down"},         // back during the check
        {[&](Alone& a) { a.gateway.Up(), change(a, 4s, false); }, "own network down"},
        {[&](Alone& a) { a.Set("OwnNetwork", "10.9.9.1"), change(a, 9s, true); }, "own network down"},
        {[](Alone& a) { a.Set("OwnNetwork", "10.9.9.1"), a.gateway.Up().Echo(1001ms); }, "own network down"},  // late
    };
    for (int number = 0; const auto& [behave, status] : cases) {
        Alone alone(Columns("strType strPort strExpectedText", "SMTP", "25", ""));
        behave(alone);
        alone.RunFor(25s);
        EXPECT_EQ(alone.Of(1, "strCurStatus"), status) << ++number;
    }
}

TEST(OwnNetwork, ExcusesAlsoAPageThatSomebodyElseAnswered) {
    Engine engine({Web({{"strExpectedText", "Welcome"}})},
                  "OwnNetwork=10.9.9.1\nCatchUp=True\nGuardBadEntries=True\nGlobalRetryDuration=soon");
    engine.page.Answer("Please log in to the hotel", 5ms);
    engine.RunFor(50s);
    EXPECT_EQ(engine.Of(1, "strCurStatus,nFail"), "own network down,0");
    EXPECT_EQ(engine.page.Requests(), 1);
    engine.RunFor(20s);
    EXPECT_EQ(engine.page.Requests(), 2);
}

}  // namespace
}  // namespace korvane
