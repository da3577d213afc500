// The tick and its branches: what is checked when, what the row, the status line, the log and the tray say of it.
#include "engine/monitor_cycle.h"

#include <gtest/gtest.h>

#include <tuple>

#include "base/text.h"
#include "engine/engine_world.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

const DateTime kStart = DateTime::Of(2026, 11, 21, 15, 0, 0);

Entry Ping(DateTime next, const char* desc = "ping") {
    return {.strDesc = desc, .nIntervalSeconds = 300, .strExpectedText = "1000", .dtNextCheck = next};
}

Entry Web(DateTime next) {
    return {.strDesc = "web",
            .strAddress_IP = "10.0.0.2/",
            .strType = "HTTP",
            .strPort = "80",
            .nIntervalSeconds = 300,
            .dtNextCheck = next};
}

TEST(Cycle, ChecksADueRowAtOnceAndSleepsUntilTheNext) {
    EngineWorld engine(kStart);
    const auto id = engine.database.Add(Ping(kStart));
    engine.net.Host("10.0.0.1").Echo(5ms);
    engine.RunFor(1s);
    EXPECT_EQ(engine.database.Server(id).at("nSuccess"), Value(1));
    EXPECT_EQ(engine.database.Server(id).at("strLastResponse"), Value("Ping Success to 10.0.0.1. Took 5 ms. (<1000 ms)."));
    engine.RunFor(1s);
    EXPECT_TRUE(engine.person.Said("No servers need monitoring at this time. Sleeping for 60 seconds..."));
    EXPECT_EQ(engine.state.nSleepLeft, 60);
    EXPECT_TRUE(engine.Logged("frmMonitor:TimerMonitorDB: Next Scheduled DATABASE SERVER event at 11/21/2026 3:0"));
}

TEST(Cycle, SleepsTheDifferenceWhenARowIsDueWithinTheLookAhead) {
    EngineWorld engine(kStart);
    const auto id = engine.database.Add(Ping(kStart + 31s));
    engine.net.Host("10.0.0.1").Echo(5ms);
    engine.RunFor(1s);
    EXPECT_EQ(engine.state.nSleepLeft, 30);
    EXPECT_TRUE(engine.person.Said("WAITING 30 SECONDS before checking database for next scheduled monitor event."));
    EXPECT_EQ(engine.reports.published, 0);  // fewer than 60 ticks
    engine.RunFor(30s);
    EXPECT_EQ(engine.database.Server(id).at("nSuccess"), Value(0));
    engine.RunFor(1s);
    EXPECT_EQ(engine.database.Server(id).at("nSuccess"), Value(1));
}

TEST(Cycle, PublishesFromTheSleepBranchAndForcesItAfterAThousandTicks) {
    EngineWorld sleeping(kStart);
    sleeping.database.Add(Ping(kStart + 119s));
    sleeping.net.Host("10.0.0.1").Echo(1ms);
    sleeping.RunFor(10min);
    EXPECT_GE(sleeping.reports.published, 1);
    EXPECT_TRUE(sleeping.Logged("Publishing Reports Success."));

    EngineWorld busy(kStart);
    Entry always = Ping(kStart - 20h);
    always.nIntervalSeconds = 1;
    busy.database.Add(always);
    busy.net.Host("10.0.0.1").Echo(1ms);
    busy.database.Change("Servers", 1, {{"dtNextCheck", Value(kStart - 20h)}});
    busy.reports.problem = "no folder";
    busy.RunFor(1000s);
    EXPECT_EQ(busy.reports.published, 0);
    busy.database.Change("Servers", 1, {{"dtNextCheck", Value(kStart - 20h)}});  // overdue by more than 16 bits of seconds
    busy.RunFor(2s);
    EXPECT_EQ(busy.reports.published, 1);
    EXPECT_TRUE(busy.person.Said("Reporting Error: no folder"));
    const auto checked = busy.database.Server(1).at("nSuccess").Int64();
    busy.RunFor(2s);
    EXPECT_GT(busy.database.Server(1).at("nSuccess").Int64(), checked);  // and goes on
}

TEST(Cycle, PutsInactiveEntriesAsideForSixHours) {
    EngineWorld engine(kStart);
    Entry off = Ping(kStart);
    off.bIsMonitoring = false;
    const auto id = engine.database.Add(off);
    engine.RunFor(1s);
    const Row row = engine.database.Server(id);
    EXPECT_EQ(row.at("strCurStatus"), Value("Inactive"));
    EXPECT_EQ(row.at("dtNextCheck"), Value(kStart + 1s + 21600s));
    EXPECT_EQ(row.at("nSuccess"), Value(0));
    EXPECT_TRUE(engine.person.Said("Skipping 10.0.0.1"));
}

TEST(Cycle, SuspendsAnEntryInItsDownTimeUntilTheWindowEnds) {
    const DateTime evening = DateTime::Of(2026, 12, 31, 23, 45, 0);
    EngineWorld engine(evening);
    Entry entry = Ping(evening);
    entry.strDownTime2 = "23:30";
    entry.nDownDuration2 = 60;
    entry.nTriesCur = 2;
    const auto id = engine.database.Add(entry);
    engine.net.Host("10.0.0.1").Echo(1ms);
    engine.RunFor(1s);
    const DateTime end = DateTime::Of(2027, 1, 1, 0, 30, 0);
    EXPECT_EQ(engine.database.Server(id).at("strCurStatus"), Value("Down-Time"));
    EXPECT_EQ(engine.database.Server(id).at("dtNextCheck"), Value(end));
    EXPECT_EQ(engine.database.Server(id).at("nTriesCur"), Value(2));
    EXPECT_TRUE(engine.person.Said("Down time (23:30) for 60 minutes. - monitoring stopped."));
    EXPECT_TRUE(engine.person.Said(
        "DownTime 2 (Begins: 23:30). Server Checks Begin Again at 1/1/2027 12:30:00 AM which is in 45 Minutes."));
    EXPECT_TRUE(
        engine.Logged("frmMonitor:TimerMonitorDB: Skipping 10.0.0.1 because of server down time (set to resume in 45 minutes)."));
    engine.world.RunTo(end + 2min);
    EXPECT_EQ(engine.database.Server(id).at("strCurStatus"), Value("UP"));
}

TEST(Cycle, AppliesTheTextRulesOfWebPages) {
    struct Case {
        const char* name;
        const char* expected;
        const char* failText;
        int nFailScanText;
        const char* status;
        const char* reason;
    };
    const Case cases[] = {
        {"no rules", "", nullptr, 0, "UP", ""},
        {"expected text there", "Welcome, friend", nullptr, 0, "UP", ""},
        {"upper and lower case differ", "welcome", nullptr, 0, "Failing", ""},
        {"a text that means failure", "Welcome", "friend", 1, "Failing",
         "Server Error: 'friend' found in the response.  You have set this value in the 'URL Scan Text' tab (text that indicates "
         "url "
         "failure) for this URL."},
        {"another case of it", "Welcome", "FRIEND", 1, "UP", ""},
        {"rules that are not counted are not looked at", "", "\x1B", 0, "UP", ""},
        {"an empty fail text is found everywhere", "", "", 1, "Failing",
         "Server Error: '' found in the response.  You have set this value in the 'URL Scan Text' tab (text that indicates url "
         "failure) for this URL."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EngineWorld engine(kStart);
        Entry entry = Web(kStart);
        entry.strExpectedText = c.expected;
        entry.nFailScanText = c.nFailScanText;
        const auto id = engine.database.Add(entry);
        if (c.failText != nullptr)
            engine.database.AddRow("ResponseFailText", {{"id", 7}, {"idParent", id}, {"strFailText", c.failText}});
        engine.net.Page("http://10.0.0.2/").Answer("Hello.\x1B Welcome, friend.", 30ms);
        engine.RunFor(1s);
        EXPECT_TRUE(engine.database.Server(id).at("strLastResponse").Text().ends_with("Hello.  Welcome, friend."));
        EXPECT_EQ(engine.database.Server(id).at("strCurStatus"), Value(c.status));
        const auto failures = engine.database.Rows("Failures");
        ASSERT_EQ(failures.size(), std::string(c.status) == "UP" ? 0u : 1u);
        if (!failures.empty()) {
            EXPECT_EQ(failures[0].at("strReason").Text(), c.reason);
        }
    }
}

TEST(Cycle, LogsAndRecordsAFailedPage) {
    EngineWorld engine(kStart);
    Entry entry = Web(kStart);
    entry.strPort = "";
    entry.strUserName = "joe";
    entry.strPassword = "secret";
    const auto id = engine.database.Add(entry);
    engine.database.Change("Servers", id, {{"nTimeout", Value()}});
    engine.net.Page("http://10.0.0.2/").Fail("Connection refused", 600ms);
    engine.RunFor(2s);
    EXPECT_EQ(engine.database.Server(id).at("strLastResponse"), Value("Reason 'Connection refused' "));
    EXPECT_EQ(engine.database.Server(id).at("strPort"), Value("80"));
    EXPECT_TRUE(engine.Logged("frmMonitor:TimerMonitorDB: HTTP failure: Reason 'Connection refused'"));
    EXPECT_TRUE(engine.Logged("1 calling DoFailure. strReason=Reason 'Connection refused'"));
    EXPECT_TRUE(engine.person.Said("Timeout [15 sec.] - Port[] getting '10.0.0.2/'. Please wait..."));
    EXPECT_TRUE(engine.person.Said("Basic Authentication UserName='joe' Password=[not shown]"));
    EXPECT_FALSE(engine.person.SaidPart("secret"));
}

TEST(Cycle, EndsATickInItsHandlerAndLeavesTheRowDue) {
    struct Case {
        Entry entry;
        const char* problem;
    };
    Entry port = Web(kStart), limit = Ping(kStart), word = Web(kStart);
    port.strPort = "70000";
    word.strPort = "abc";
    limit.strExpectedText = "40000";
    for (const Case& c : {Case{port, "Overflow Last Step get urldata2"}, Case{word, "Type mismatch Last Step get urldata2"},
                          Case{limit, "Overflow Last Step dopingrequest"}}) {
        EngineWorld engine(kStart);
        const auto id = engine.database.Add(c.entry);
        engine.RunFor(2s);
        EXPECT_TRUE(engine.person.SaidPart(std::string("Monitor Timer Error: ") + c.problem)) << c.problem;
        EXPECT_TRUE(engine.Logged(std::string("#\tfrmMonitor:TimerMonitorDB: Errors block: ") + c.problem));
        EXPECT_EQ(engine.database.Server(id).at("dtNextCheck"), Value(kStart));
        EXPECT_EQ(engine.database.Count("Failures"), 0);
    }
}

TEST(Cycle, SurvivesAnEmptyDatabaseAndALookAheadAtMidnight) {
    EngineWorld engine(DateTime::Of(2026, 11, 21, 23, 57, 59));
    engine.RunFor(1s);  // the look-ahead falls on midnight
    EXPECT_TRUE(engine.person.SaidPart("Monitor Timer Error: Invalid procedure call or argument Last Step open db"));
    engine.RunFor(1s);  // and there is no row to tell the next time of
    EXPECT_TRUE(engine.person.SaidPart("Last Step open db 2nd time"));
    engine.database.Add(Ping(kStart));
    engine.net.Host("10.0.0.1").Echo(1ms);
    engine.RunFor(62s);
    EXPECT_EQ(engine.database.Server(1).at("nSuccess"), Value(1));
}

TEST(Cycle, FindsARowWithoutATimeOnceNothingElseIsDue) {
    EngineWorld engine(kStart);
    Entry entry = Ping(kStart);
    entry.dtNextCheck = {};
    entry.strCurStatus = {};
    entry.nAveResponse = {};
    const auto id = engine.database.Add(entry);
    engine.database.Change("Servers", id, {{"dtNextCheck", Value()}});
    engine.net.Host("10.0.0.1").Echo(1ms);
    engine.RunFor(63s);
    EXPECT_EQ(engine.database.Server(id).at("strCurStatus"), Value("UP"));
    EXPECT_EQ(engine.database.Server(id).at("nSuccess"), Value(1));
}

TEST(Cycle, GoesOnAfterStoreErrorsAtEveryOperation) {
    for (const StoreOperation operation :
         {StoreOperation::Connect, StoreOperation::Open, StoreOperation::Read, StoreOperation::Write, StoreOperation::MoveNext,
          StoreOperation::AddNew, StoreOperation::Update}) {
        for (const bool answers : {true, false}) {
            for (int nth = 1; nth <= 12; ++nth) {
                EngineWorld engine(kStart);
                const auto id = engine.database.Add(Ping(kStart));
                if (answers) engine.net.Host("10.0.0.1").Echo(1ms);
                engine.store.faults.Add({.operation = operation, .nth = nth, .description = "disk I/O error"});
                engine.RunFor(15min);
                const Row row = engine.database.Server(id);
                const auto checks = row.at("nSuccess").Int64() + row.at("nFail").Int64();
                // A failure that could not even be written down in the row is counted without a row of its own.
                const bool early = operation == StoreOperation::Read || operation == StoreOperation::Write;
                const auto without = row.at("nFail").Int64() - engine.database.Count("Failures");
                EXPECT_TRUE(without == 0 || (early && without == 1)) << static_cast<int>(operation) << " nth " << nth;
                EXPECT_GE(checks, 2) << static_cast<int>(operation) << " nth " << nth << " answers " << answers;
            }
        }
    }
}

TEST(Cycle, SaysOnceThatNothingCanBeStoredAndOnceThatItCanAgain) {
    Entry page = Web(kStart);
    page.strExpectedText = "Welcome";
    const std::tuple<StoreOperation, Entry, bool> cases[] = {{StoreOperation::Update, Ping(kStart), true},
                                                             {StoreOperation::Commit, Ping(kStart), false},
                                                             {StoreOperation::Update, page, false}};
    for (const auto& [operation, entry, answers] : cases) {
        EngineWorld engine(kStart);
        engine.person.windowVisible = true;
        engine.database.Add(entry);
        engine.net.Page("http://10.0.0.2/").Answer("an error page", 30ms);
        if (answers) engine.net.Host("10.0.0.1").Echo(1ms);
        engine.store.faults.Add({.operation = operation, .forever = true, .description = "disk full"});
        engine.RunFor(20s);
        EXPECT_EQ(engine.person.tray,
                  (RecordingOperator::Tray{TrayPicture::Error, "Korvane: Outcomes of checks can't be stored! "}));
        engine.store.faults.Heal();
        engine.RunFor(20s);
        EXPECT_NE(engine.person.tray.picture, TrayPicture::Error);
        const std::string begins = "Outcomes of checks can't be stored, and are lost: disk full";
        EXPECT_EQ(engine.manager.told, (std::vector<std::string>{begins, "Outcomes of checks are stored again."}));
        EXPECT_TRUE(engine.person.Said(begins) && engine.Logged("#\t" + begins));
    }
}

TEST(Cycle, ShowsTheWorstOfTheRowsItSeesInTheTray) {
    struct Case {
        const char* other;
        TrayPicture picture;
        const char* tip;
    };
    for (const Case& c : {Case{"UP", TrayPicture::Normal, "Korvane Monitoring: No Recent Failures"},
                          Case{"failing", TrayPicture::Warning, "Korvane: One or more server are failing. "},
                          Case{"DOWN", TrayPicture::Error, "Korvane: One or more Server in Failure State! "}}) {
        EngineWorld engine(kStart);
        engine.person.windowVisible = true;
        engine.database.Add(Ping(kStart));
        Entry other = Ping(kStart + 60s);
        other.strCurStatus = c.other;
        engine.database.Add(other);
        engine.net.Host("10.0.0.1").Echo(1ms);
        engine.RunFor(1s);
        EXPECT_EQ(engine.person.tray, (RecordingOperator::Tray{c.picture, c.tip}));
    }
}

TEST(Cycle, GoesOnToTheTrayWithoutAnEntryThatIsRemovedDuringItsCheck) {
    EngineWorld engine(kStart);
    engine.person.windowVisible = true;
    const auto id = engine.database.Add(
        {.strType = "SMTP", .strPort = "25", .nIntervalSeconds = 300, .strExpectedText = "220", .dtNextCheck = kStart});
    Entry other = Ping(kStart + 60s);
    other.strCurStatus = "DOWN";
    engine.database.Add(other);
    engine.net.Host("10.0.0.1").Port(25).Speak("220 late\r\n", 2s);
    engine.world.After(2s, [&] { engine.database.Remove("Servers", id); });
    engine.RunFor(3500ms);
    EXPECT_TRUE(engine.Logged("#\tfrmMonitor:TimerMonitorDB: tried to update record. err = Row cannot be located"));
    EXPECT_EQ(engine.person.tray.tip, "Korvane: One or more Server in Failure State! ");
}

TEST(Cycle, ATickNeverOverlapsItselfAndAnEditorIsNeverBlocked) {
    EngineWorld engine(kStart);
    const auto id = engine.database.Add({.strDesc = "slow",
                                         .strType = "SMTP",
                                         .strPort = "25",
                                         .nIntervalSeconds = 300,
                                         .strExpectedText = "220",
                                         .dtNextCheck = kStart});
    engine.net.Host("10.0.0.1").Port(25).Speak("220 late\r\n", 10s);
    engine.world.After(5s, [&] { engine.database.Change("Servers", id, {{"strDesc", "renamed"}, {"nTries", 7}}); });
    engine.RunFor(15s);
    EXPECT_EQ(engine.net.Host("10.0.0.1").Port(25).Connections(), 1);
    const Row row = engine.database.Server(id);
    EXPECT_EQ(row.at("strDesc"), Value("renamed"));
    EXPECT_EQ(row.at("nTries"), Value(7));
    EXPECT_EQ(row.at("nSuccess"), Value(1));
}

}  // namespace
}  // namespace korvane
