// The table of safeguards: what an operator may write, and that a key that is not written leaves no trace.
#include <gtest/gtest.h>

#include "shell/options/safeguard_inputs.h"
#include "store/entry_safeguards.h"
#include "store/safeguards.h"
#include "support/world.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

TEST(SafeguardTable, AValueThatIsUnusableIsNamedOnceAndLeavesItsSafeguardOff) {
    World world({.settings = "CatchUp=true\nOwnNetwork=10.0.0.1; a b\nHeartbeat=ftp://x\nSMTPSecurity1=ssl\nSMTPPort1=65536\n"
                             "ProveMailTime=24:00\nProveMail=True\nHTTPStatusFails= True \nSMTPPort2=65535"});
    world.Start();
    Safeguards& guards = world.run.TheDesk().safeguards;
    for (const int again : {1, 2}) {
        guards.TellProblems();
        const auto texts = world.LogTexts();
        EXPECT_EQ(std::count_if(texts.begin(), texts.end(), [](auto& text) { return Holds(text, "Safeguard off. "); }), 9)
            << again;
    }
    EXPECT_TRUE(world.Logged("# Safeguard off. CatchUp: 'true' is not \"True\" or \"False\"."));
    for (const Safeguard& safeguard : AllSafeguards()) {
        EXPECT_EQ(guards.IsOn(safeguard.key), safeguard.key == "HTTPStatusFails") << safeguard.key;
        EXPECT_EQ(ProblemOf(safeguard, safeguard.recommended), "");
    }
    EXPECT_EQ(guards.Text("Heartbeat") + guards.Text("SMTPSecurity1"), "");
    EXPECT_EQ(guards.Port("SMTPPort1", 25), 25);
    EXPECT_EQ(guards.Port("SMTPPort2", 25), 65535);
    for (const char* needed : {"ProveMailTo", "ProveMailHost", "ProveMailUser"})
        world.Set(needed, "x");
    EXPECT_FALSE(guards.IsOn("ProveMail")) << "its time is unusable";
    world.Set("ProveMailTime", "23:59");
    EXPECT_TRUE(guards.IsOn("ProveMail"));
    world.Set("OwnNetwork", "10.0.0.1;;[::1]; gate.example");
    EXPECT_EQ(guards.Hosts("OwnNetwork"), (std::vector<std::string>{"10.0.0.1", "[::1]", "gate.example"}));
}

TEST(SafeguardTable, OnlyKeysOfTheFileAreSavedAgainAndAsTheyWereUnlessTheOperatorChangesThem) {
    World world({.settings = "catchup=True\nGuardClock=true\nEscapeReports=True\nFigures=yes"});
    world.Start();
    const Desk& desk = world.run.TheDesk();
    SafeguardValues shown = SafeguardsFromSettings(desk.collection);
    shown["GuardClock"] = shown["EscapeReports"] = shown["HidePasswords"] = "False";  // marks that are not set
    SetSafeguards(desk, shown);
    world.run.mnuExit_Click();
    const std::string file = ToLower(world.Text("kvurlwatchn.ini"));
    for (const auto& [key, line] :
         {std::pair("catchup", "=true"), {"guardclock", "=true"}, {"escapereports", "=false"}, {"figures", "=yes"}})
        EXPECT_TRUE(Holds(file, std::string("\n") + key + line + "\n")) << file;
    EXPECT_FALSE(Holds(file, "hidepasswords") || Holds(file, "catchup=false") || Holds(file, "smtpsecurity"));
}

TEST(SafeguardTable, SentencesThatAlternateAreWrittenOnceAnHourAndWithoutKeysNoTimerRuns) {
    World world;
    world.Start();
    world.RunFor(3s);
    EXPECT_EQ(world.world.Pending(), 2u) << "the cycle, and the look for requests of the command line";
    for (int second = 0; second < 3610; second += 10, world.RunFor(10s))
        world.run.TheDesk().safeguards.Acted("CatchUp", second % 20 == 0 ? "A." : "B.");
    const auto texts = world.LogTexts();
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "Safeguard CatchUp: A."), 2);
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "Safeguard CatchUp: B."), 1);
    world.Set("HidePasswords", "True");
    world.Set("SMTPPass1", "text");
    world.run.TheDesk().log.Info("A text.");
    EXPECT_TRUE(world.Logged("Safeguard HidePasswords: A password was taken out of a [not shown].")) << "once";
}

TEST(EntrySafeguards, TheirTableIsMadeByTheFirstValueAndHoldsOneForEachKeyOfAnEntry) {
    World world;
    world.Start();
    EntrySafeguards& values = world.run.TheDesk().ofEntries;
    values.Write(1, "A", "");
    EXPECT_EQ(values.Read(1, "A"), "");
    EXPECT_THROW(world.rows.Rows("EntrySafeguards"), Error);
    values.Write(1, "A", "x");
    values.Write(1, "B", "it's");
    values.Write(2, "A", "z");
    values.Write(1, "a", "y");
    EXPECT_EQ(values.Read(1, "A") + values.Read(1, "b") + values.Read(2, "A"), "yit'sz");
    values.Write(1, "A", "");
    EXPECT_EQ(values.Read(1, "A") + values.Read(1, "B"), "it's");
    world.rows.Add({.id = 1});
    world.run.TheDesk().maintenance.DeleteServerData("1");  // the safeguards are off
    EXPECT_EQ(values.Read(1, "B") + values.Read(2, "A"), "z");
    EXPECT_EQ(world.rows.Count("EntrySafeguards"), 1);
}

}  // namespace
}  // namespace korvane
