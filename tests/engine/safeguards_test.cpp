// The safeguards of the cycle: what is checked while much is due, after a change of the clock, and beside entries that cannot be
// checked.
#include <cstdlib>

#include "engine/engine_test.h"

namespace korvane {
namespace {

std::int64_t Checks(Engine& engine, std::int64_t id) {
    const Row row = engine.rows.Server(id);
    return row.at("nSuccess").Int64() + row.at("nFail").Int64();
}

/// As another program would.
void Execute(Engine& engine, const std::string& sql) {
    ASSERT_EQ(std::system(("sqlite3 " + engine.rows.Path() + " \"" + sql + "\"").c_str()), 0) << sql;
}

TEST(CatchUp, ChecksAllThatIsDueWithinItsIntervalAndStopsAtOnce) {
    for (const bool on : {false, true}) {
        Engine engine({}, on ? "CatchUp=True" : "GuardBadEntries=True");
        for (int i = 0; i < 100; ++i)
            engine.Add(Ping({{"nIntervalSeconds", 10}}));
        engine.Add(Web({{"nIntervalSeconds", 0}}));  // it fails, and is due again at once
        engine.page.Fail("refused", 700ms);
        engine.RunFor(50s);
        EXPECT_NEAR(engine.run.State().nReportTicks, 48, 2) << "they count seconds";
        engine.RunFor(12s);
        std::int64_t least = 99, most = 0;
        for (std::int64_t id = 1; id <= 100; ++id) {
            least = std::min(least, Checks(engine, id));
            most = std::max(most, Checks(engine, id));
        }
        EXPECT_EQ(least >= 6, on) << least;
        EXPECT_TRUE(!on || most <= 7) << most;
        EXPECT_EQ(engine.Logged("Safeguard CatchUp"), on);
        EXPECT_FALSE(engine.Logged("is set aside"));
    }
    Engine stopped({Web(), Web(), Web(), Web()}, "CatchUp=True");
    stopped.page.Answer("ok", 100ms);
    stopped.world.After(2150ms, [&] { stopped.run.cmdStopStart(); });
    stopped.RunFor(1min);
    EXPECT_EQ(Checks(stopped, 1) + Checks(stopped, 2), 2);
    EXPECT_EQ(Checks(stopped, 3) + Checks(stopped, 4), 0);
}

TEST(GuardClock, NobodyWaitsForTimeThatComesTwiceAndNothingIsDueForTimeThatWasSkipped) {
    using Move = void (VirtualWorld::*)(std::chrono::seconds);
    struct Case {
        Move move;
        std::chrono::seconds by;
        int withoutGuard, withGuard;  ///< checks within 9 minutes of an entry that is checked each 5 minutes
    };
    for (const auto& [move, by, withoutGuard, withGuard] : {Case{&VirtualWorld::MoveZone, -1h, 0, 2},
                                                            {&VirtualWorld::MoveClock, -24h, 0, 2},
                                                            {&VirtualWorld::MoveClock, 3h, 2, 2}}) {
        for (const bool on : {false, true}) {
            Engine engine({}, on ? "GuardClock=True" : "");
            for (int i = 0; i < 10; ++i)
                engine.Add(Ping({{"nIntervalSeconds", 7200}, {"dtNextCheck", kStart + std::chrono::minutes(50 + i)}}));
            engine.Add(Ping());
            engine.RunFor(4min);
            (engine.world.*move)(by);
            const auto before = Checks(engine, 11);
            engine.RunFor(9min);
            EXPECT_EQ(Checks(engine, 11) - before, on ? withGuard : withoutGuard) << by.count();
            EXPECT_EQ(Checks(engine, 5), on ? by == -24h : by > 0s) << by.count();
            EXPECT_EQ(engine.Logged("Safeguard GuardClock"), on);
        }
    }
    const Row inFiveMinutes = Ping({{"dtNextCheck", kStart + 5min}});
    Engine wrong({Ping({{"dtNextCheck", DateTime::Of(2031, 1, 1)}}), inFiveMinutes, inFiveMinutes}, "GuardClock=True");
    Execute(wrong, "UPDATE Servers SET dtNextCheck='2026-11-21T10:00:00' WHERE ID=3");
    wrong.RunFor(10s);
    EXPECT_EQ(wrong.Of(1, "nSuccess") + wrong.Of(2, "nSuccess") + wrong.Of(3, "nSuccess"), "101");
}

TEST(GuardBadEntries, TwentyGoodEntriesAreCheckedBesideEachBadValue) {
    const Row down = Ping({{"strAddress_IP", "10.0.0.9"}}), talks = Ping({{"strType", "SMTP"}, {"strPort", "nowhere"}});
    struct Case {
        Row entry;
        std::string written;        ///< into the entry's row by another program: "column=value"
        const char* unusable = "";  ///< the reason of an entry that is set aside; empty: it is checked
    };
    const Case cases[] = {
        {Web(), "strPort='abc'", "strPort 'abc'"},
        {Web(), "strPort='70000'", "strPort '70000'"},
        {Web(), "strPort='40000'"},
        {Web(), "strPort=NULL"},
        {Web(), "nFailScanText='x'", "nFailScanText 'x'"},
        {Web(), "nFailScanText=1; DROP TABLE ResponseFailText", "no such table"},
        {Ping(), "strExpectedText='40000'", "strExpectedText '40000'"},
        {Ping(), "strExpectedText=NULL"},
        {talks, "ID=1"},
        {talks, "nTimeout='long'", "nTimeout 'long'"},
        {talks, "nTimeout=99999", "nTimeout '99999'"},
        {Ping(), "bIsMonitoring='maybe'", "bIsMonitoring 'maybe'"},
        {Ping(), "nAveResponse='x'", "nAveResponse 'x'"},
        {Ping(), "nSuccess='x'"},
        {Ping(), "nIntervalSeconds='often'", "nIntervalSeconds 'often'"},
        {Ping(), "nIntervalSeconds=1e300", "nIntervalSeconds '1"},
        {Ping(), "dtNextCheck='2026-11-20T15:04:05'"},
        {Ping(), "dtNextCheck='5'"},  // which is no time that the cycle finds
        {down, "nIntervalSeconds='often'", "nIntervalSeconds 'often'"},
        {down, "nIntervalSeconds=-100"},
        {down, "nTries='many'", "nTries 'many'"},
        {down, "nTriesCur='x'", "nTriesCur 'x'"},
        {down, "nTriesCur=32767"},
        {down, "nTriesCur=32768"},
        {down, "nFail=2147483647"},
        {down, "nFail=x'00ff'", "nFail '"},
        {down, "strDownTime1='25:99', nDownDuration1='x'"},
    };
    for (const auto& [entry, written, unusable] : cases) {
        SCOPED_TRACE(written);
        Engine engine({entry}, "GuardBadEntries=True\nGlobalRetryDuration=soon");
        for (int i = 0; i < 20; ++i)
            engine.Add(Ping({{"nIntervalSeconds", 120}, {"dtNextCheck", kStart}}));
        const std::string sql = "UPDATE Servers SET nIntervalSeconds=30, " + written;
        Execute(engine, sql + (Holds(sql, ";") ? "" : " WHERE ID=1"));
        engine.page.Answer("ok", 10ms);
        engine.RunFor(5min);
        for (std::int64_t id = 2; id <= 21; ++id)
            EXPECT_GE(Checks(engine, id), 2) << id;
        EXPECT_TRUE(*unusable != 0 || !engine.Of(1, "datelastcheck").empty());
        Texts texts = engine.LogTexts();
        std::erase_if(texts, [](const std::string& text) { return !Holds(text, "is set aside. Not checked: "); });
        ASSERT_EQ(texts.size(), *unusable != 0) << "once an hour";
        EXPECT_TRUE(texts.empty() || Holds(texts[0], unusable)) << texts[0];
    }
}

TEST(GuardBadEntries, KeepsTheAccountsOfAnHourWhileTheStoreRefusesThem) {
    using Op = StoreOperation;
    for (const auto& [refused, minutes] : {std::pair{std::vector{Op::Update}, 60},
                                           {std::vector{Op::Commit}, 10},
                                           {std::vector{Op::AddNew}, 10},
                                           {std::vector{Op::AddNew, Op::Commit}, 10}}) {
        Engine engine({Web({{"strPort", "abc"}})}, "GuardBadEntries=True\nCatchUp=True");
        const Row entry = Ping({{"nIntervalSeconds", 60}, {"strCMD", "mend"}});
        for (const char* address : {"10.0.0.1", "10.0.0.2", "10.0.0.1", "10.0.0.2"}) {
            engine.Add(entry);
            engine.Change(engine.last, {{"strAddress_IP", address}});
        }
        engine.RunFor(10s);
        for (const Op operation : refused)
            engine.store.faults.Add({.operation = operation, .forever = true});
        engine.RunFor(std::chrono::minutes(minutes));
        engine.store.faults.Heal();
        engine.RunFor(30s);
        std::int64_t failed = 0;
        for (std::int64_t id = 2; id <= 5; ++id) {
            EXPECT_GE(Checks(engine, id), id % 2 == 0 ? minutes : std::min(minutes, 50)) << "longer pauses in a long outage";
            failed += engine.rows.Server(id).at("nFail").Int64();
        }
        EXPECT_EQ(engine.rows.Count("Failures"), failed);
        EXPECT_EQ(engine.TakeStarted().size(), 4U) << "a command and a trace each";
        EXPECT_TRUE(engine.Logged("Outcomes of checks are stored again."));
        engine.run.TheDesk().publisher.PublishReports();
        EXPECT_TRUE(Holds(engine.Text("Reports/R0/Group1/summary.htm"), "<b>Not checked: strPort 'abc' can't be used.</b>"));
    }
}

TEST(GuardBadEntries, MailsOnceWhenNothingCouldBeCheckedForFiveMinutes) {
    Engine engine({Ping({{"strEmailList1", "a@b"}})}, "GuardBadEntries=True");
    for (int round = 1; round <= 2; ++round) {
        engine.Set("MailOutbox", round == 2 ? "True" : "");  // which sends it from memory
        engine.RunFor(1min);
        engine.store.faults.Add({.operation = StoreOperation::Connect, .forever = true, .description = "locked"});
        engine.RunFor(9min);
        EXPECT_EQ(std::ssize(engine.mail.mails), round);
        engine.RunFor(2h);
        ASSERT_EQ(std::ssize(engine.mail.mails), round);
        EXPECT_TRUE(Holds(engine.mail.mails.back().text, "because of this error: locked"));
        engine.store.faults.Heal();
        engine.RunFor(5min);
    }
    EXPECT_TRUE(engine.Logged("Entries are checked again."));
}

}  // namespace
}  // namespace korvane
