// The tick and its branches: what is checked when, what the row, the status line, the log and the tray say of it; and the wait
// and the switch before it.
#include "engine/engine_test.h"

namespace korvane::cycle_test {

TEST(Cycle, SleepsUntilTheNextIsDueAndPublishesAfterSixtyTicks) {
    for (const int ticks : {59, 60}) {
        Engine engine({Ping()});
        engine.RunFor(2s);
        EXPECT_EQ(engine.Of(1, "strLastResponse"), "Ping Success to 10.0.0.1. Took 5 ms. (<1000 ms).");
        const int sleep = ticks - 3;  // from the second tick on
        engine.Change(1, {{"dtNextCheck", kStart + 3s + std::chrono::seconds(sleep)}});
        engine.RunFor(1s);
        EXPECT_TRUE(engine.person.SaidPart("WAITING " + std::to_string(sleep) + " SECONDS before checking database"));
        engine.Change(1, {{"dtNextCheck", kStart + 2min}});
        engine.RunFor(std::chrono::seconds(sleep + 1));
        EXPECT_EQ(engine.Logged("frmMonitor:TimerMonitorDB: Publishing Reports Success."), ticks == 60);
        EXPECT_EQ(engine.Of(1, "nSuccess,nTotalSession"), ticks == 60 ? "1,0" : "1,1");  // an hour of the pages begins
        engine.RunFor(90s);
        EXPECT_EQ(engine.Of(1, "nSuccess"), "2");
    }
}

TEST(Cycle, PublishesAfterAThousandTicksEvenWhenARowIsLongOverdue) {
    Engine engine;
    engine.RunFor(1002s);
    EXPECT_TRUE(engine.person.Said("No servers need monitoring at this time. Sleeping for 60 seconds..."));
    engine.Add(Ping());  // overdue for more seconds than 16 bits hold
    engine.RunFor(62s);
    EXPECT_TRUE(engine.person.Said("Publishing Up-Time Reports..."));
    EXPECT_EQ(engine.Of(1, "nSuccess"), "1");
}

TEST(Cycle, SkipsInactiveEntriesAndThoseInTheirDownTime) {
    const Row suspended = Ping({{"strDownTime2", "23:30"}, {"nDownDuration2", 60}, {"nTriesCur", 2}});
    Engine engine({suspended, Ping({{"bIsMonitoring", false}})}, "", DateTime::Of(2026, 12, 31, 23, 45, 0));
    engine.RunFor(3s);
    EXPECT_EQ(engine.Of(1, "strCurStatus,dtNextCheck,nTriesCur"), "Down-Time,1/1/2027 12:30:00 AM,2");
    EXPECT_EQ(engine.Of(2, "strCurStatus,dtNextCheck,nSuccess"), "Inactive,1/1/2027 5:45:03 AM,0");
    EXPECT_TRUE(engine.Logged("Skipping 10.0.0.1 because of server down time (set to resume in 45 minutes)."));
    engine.RunFor(47min);
    EXPECT_EQ(engine.Of(1, "strCurStatus"), "UP");
}

TEST(Cycle, AppliesTheTextRulesOfWebPages) {
    const std::string found = "' found in the response.  You have set this value in the 'URL Scan Text' tab";
    const std::tuple<const char*, const char*, int, const char*, std::string> cases[] = {
        {"", "friend", 0, "UP", ""},  // rules that are not counted are not looked at
        {"Welcome, friend", "FRIEND", 1, "UP", ""},
        {"welcome", "", 0, "Failing", ""},
        {"Welcome", "friend", 1, "Failing", "Server Error: 'friend" + found},
        {"", "", 1, "Failing", "Server Error: '" + found},
    };
    for (const auto& [expected, failText, count, status, reason] : cases) {
        Engine engine({Web({{"strExpectedText", expected}, {"nFailScanText", count}})});
        engine.rows.AddRow("ResponseFailText", {{"id", 7}, {"idParent", 1}, {"strFailText", failText}});
        engine.page.Answer("Hello. Welcome, friend.", 30ms);
        engine.RunFor(2500ms);
        EXPECT_EQ(engine.Of(1, "strCurStatus"), status);
        const std::string stored = status[0] == 'U' ? "" : engine.rows.Rows("Failures").at(0).at("strReason").Text();
        EXPECT_EQ(stored.substr(0, reason.size()), reason) << stored;
        EXPECT_EQ(stored.empty(), reason.empty());
    }
}

TEST(Cycle, EndsATickInItsHandlerAndLeavesTheRowDue) {
    const Row badPort = Columns("strPort nTimeout strUserName strPassword", "abc", Value(), "joe", "secret");
    for (const auto& [entry, problem] : {std::pair{Web({{"strPort", "70000"}}), "Overflow Last Step get urldata2"},
                                         {Web(badPort), "Type mismatch Last Step get urldata2"},
                                         {Ping({{"strExpectedText", "40000"}}), "Overflow Last Step dopingrequest"}}) {
        Engine engine({entry});
        engine.RunFor(3s);
        EXPECT_TRUE(engine.person.SaidPart(std::string("Monitor Timer Error: ") + problem)) << problem;
        EXPECT_TRUE(engine.Logged(std::string("# frmMonitor:TimerMonitorDB: Errors block: ") + problem)) << problem;
        EXPECT_EQ(engine.Of(1, "dtNextCheck"), entry.at("dtNextCheck").Text());
        EXPECT_EQ(engine.rows.Count("Failures"), 0);
        EXPECT_EQ(engine.person.Said("Timeout [15 sec.] - Port[abc] getting 'web'. Please wait..."), problem[0] == 'T');
        EXPECT_FALSE(engine.person.SaidPart("secret") || engine.Logged("secret"));
    }
}

TEST(Cycle, SurvivesALookAheadAtMidnightAndRowsWithoutATime) {
    Engine engine({}, "", DateTime::Of(2026, 11, 21, 23, 57, 58));
    engine.RunFor(3s);  // no query can name midnight; at the next tick there is no row to tell the next time of
    EXPECT_TRUE(engine.person.SaidPart("Monitor Timer Error: Invalid procedure call or argument Last Step open db"));
    EXPECT_TRUE(engine.person.SaidPart("Last Step open db 2nd time"));
    engine.Add(Ping({{"dtNextCheck", Value()}, {"strCurStatus", Value()}, {"nAveResponse", Value()}}));
    engine.RunFor(3min);
    EXPECT_EQ(engine.Of(1, "strCurStatus"), "UP");
}

TEST(Cycle, ChecksOneEntryAtATimeWhileAnEditorChangesOrRemovesItAndShowsTheWorstOfTheOthers) {
    const std::tuple<const char*, bool, Tray> cases[] = {
        {"UP", false, {TrayPicture::Normal, "Korvane Monitoring: No Recent Failures"}},
        {"failing", false, {TrayPicture::Warning, "Korvane: One or more server are failing. "}},
        {"DOWN", true, {TrayPicture::Error, "Korvane: One or more Server in Failure State! "}}};
    for (const auto& [status, removed, tray] : cases) {
        const Row other = Ping({{"strCurStatus", status}, {"dtNextCheck", kStart + 60s}});
        Engine engine({Ping({{"strType", "SMTP"}, {"strPort", "25"}}), other});
        engine.person.windowVisible = true;
        VirtualServer& server = engine.net.Host("10.0.0.1").Port(25).Speak("1000 late\r\n", 5s);
        engine.world.After(4s, [&, gone = removed] {
            gone ? engine.rows.Remove("Servers", 1) : engine.Change(1, {{"nTries", 7}});
        });
        engine.RunFor(7500ms);
        EXPECT_EQ(server.Connections(), 1);
        EXPECT_EQ(engine.Logged("# frmMonitor:TimerMonitorDB: tried to update record. err = Row cannot be located"), removed);
        EXPECT_TRUE(removed || engine.Of(1, "nTries,nSuccess") == "7,1");
        EXPECT_EQ(engine.person.tray, tray);
    }
}

TEST(BeginWait, CountsTheMinutesDownAndHandsOverUnlessStopped) {
    const std::tuple<const char*, std::chrono::seconds, bool, const char*> cases[] = {{"2", 121s, false, "0"},
                                                                                      {"2", 122s, false, "1"},
                                                                                      {"2", 122s, true, "0"},
                                                                                      {"-3", 2s, false, "1"},
                                                                                      {"soon", 2s, false, "1"}};
    for (const auto& [begin, time, stopped, checks] : cases) {
        Engine engine({Ping({{"nIntervalSeconds", 60}})}, std::string("Begin=") + begin);
        engine.RunFor(1s);
        EXPECT_EQ(engine.person.cycleText.starts_with("Waiting 120 seconds"), begin[0] == '2');
        if (stopped) engine.run.cmdStopStart();
        engine.RunFor(time - 1s);
        EXPECT_EQ(engine.person.SaidPart("During Compact and Repair"), begin[0] == '2' && !stopped);
        EXPECT_EQ(engine.Of(1, "nSuccess"), checks) << begin;
        if (!stopped) engine.run.cmdStopStart();
        EXPECT_EQ(engine.person.tray.tip, " Korvane: URL Monitoring is Paused.  No Monitoring will occur. ");
        engine.RunFor(10min);
        EXPECT_EQ(engine.Of(1, "nSuccess"), checks) << begin;
        engine.run.cmdStopStart();
        engine.RunFor(1s);
        EXPECT_NE(engine.Of(1, "nSuccess"), checks) << begin;
    }
}

}  // namespace korvane::cycle_test
