// The accounts of an entry: every short sequence of successes and failures, the numbers, and the times of the next check.
#include "engine/outcome.h"

#include <gtest/gtest.h>

#include <limits>

#include "base/text.h"
#include "engine/engine_world.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::seconds;

/// One entry whose checks the test decides, without a cycle.
struct Account {
    explicit Account(const Entry& entry = {}) {
        engine.TimerMonitorDB->SetEnabled(false);
        id = engine.database.Add(entry);
    }

    void Check(bool success, std::chrono::milliseconds took = 100ms, const std::string& reason = "no answer") {
        const auto conn = engine.store.NewConnection();
        conn->SetConnectionString(engine.database.DriverString());
        conn->Open();
        const auto rs = engine.store.NewRecordset();
        rs->Open("SELECT * from servers where id=" + std::to_string(id), *conn, CursorType::Keyset, LockType::Pessimistic);
        if (success) {
            engine.accounting.DoSuccess(*rs, took);
        } else {
            engine.accounting.DoFailure(*rs, *conn, "", reason);
        }
        row = engine.database.Server(id);
    }

    seconds UntilNext() { return row.at("dtNextCheck").When() - engine.world.clock.Now(); }
    std::string Status() { return row.at("strCurStatus").Text(); }

    EngineWorld engine;
    std::int64_t id = 0;
    Row row;
};

TEST(Accounting, FollowsTheStateTableForEveryShortSequence) {
    constexpr int kLength = 6;
    for (int nTries = 1; nTries <= 3; ++nTries) {
        for (int sequence = 0; sequence < (1 << kLength); ++sequence) {
            Account account({.strDesc = "x", .nTries = nTries});
            std::vector<std::string> expectedCalls;
            int inARow = 0;
            int failures = 0;
            for (int i = 0; i < kLength; ++i) {
                const bool success = ((sequence >> i) & 1) != 0;
                account.Check(success);
                if (success) {
                    if (inARow >= nTries) expectedCalls.push_back("up x");
                    inARow = 0;
                } else {
                    ++failures;
                    if (++inARow == nTries) expectedCalls.push_back("down x");
                }
                const std::string expected = inARow == 0 ? "UP" : inARow < nTries ? "Failing" : "DOWN";
                ASSERT_EQ(account.Status(), expected) << "sequence " << sequence << " step " << i << " nTries " << nTries;
                ASSERT_EQ(account.row.at("nTriesCur"), Value(inARow));
            }
            ASSERT_EQ(account.engine.actions.calls, expectedCalls) << "sequence " << sequence << " nTries " << nTries;
            ASSERT_EQ(account.engine.database.Count("Failures"), failures);
        }
    }
}

TEST(Accounting, KeepsTheAverages) {
    Account account;
    account.Check(true, 200ms);
    EXPECT_EQ(account.row.at("nPercentUp"), Value(100.0));
    EXPECT_EQ(account.row.at("nAveResponse"), Value(200.0));
    account.Check(false);
    EXPECT_EQ(account.row.at("nPercentUp"), Value(50.0));
    EXPECT_EQ(account.row.at("nAveResponse"), Value(200.0));
    account.Check(true, 100ms);
    EXPECT_DOUBLE_EQ(account.row.at("nPercentUp").Double(), 100.0 - 1.0 / 3 * 100);
    EXPECT_DOUBLE_EQ(account.row.at("nAveResponse").Double(), (2 * 200.0 + 100) / 3);  // the failure counts in the divisor
    EXPECT_DOUBLE_EQ(account.row.at("nAveSession").Double(), 150.0);
    EXPECT_EQ(account.row.at("nTotalSession"), Value(2));

    Account failedFirst;
    failedFirst.Check(false);
    EXPECT_EQ(failedFirst.row.at("nPercentUp"), Value(0.0));
}

TEST(Accounting, ChoosesTheNextCheck) {
    struct Case {
        const char* name;
        int interval, nTries, nTriesCur;
        bool success;
        int earliest, latest;
    };
    const Case cases[] = {
        {"success", 300, 3, 0, true, 299, 300},
        {"no interval", 0, 3, 0, true, 14999, 15000},
        {"retry at the global pace", 300, 3, 0, false, 60, 60},
        {"the failure that makes it DOWN", 300, 3, 2, false, 60, 60},
        {"DOWN for longer", 300, 3, 3, false, 300, 300},
        {"fiftieth failure", 300, 3, 49, false, 300, 300},
        {"long outage", 300, 3, 50, false, 1500, 1500},
        {"own interval shorter than the global pace", 30, 3, 0, false, 30, 30},
        {"own interval equal to it", 60, 3, 0, false, 60, 60},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Account account({.nTries = c.nTries, .nTriesCur = c.nTriesCur, .nIntervalSeconds = c.interval});
        account.Check(c.success);
        EXPECT_GE(account.UntilNext(), seconds(c.earliest));
        EXPECT_LE(account.UntilNext(), seconds(c.latest));
    }
    Account never;
    never.engine.database.Change("Servers", never.id, {{"nIntervalSeconds", std::int64_t{300000000000}}});
    never.Check(true);
    EXPECT_EQ(never.row.at("dtNextCheck"), Value(DateTime::Last()));
    Account clamped({.nIntervalSeconds = 0});
    clamped.Check(true);
    EXPECT_EQ(clamped.row.at("nIntervalSeconds"), Value(15000));
}

TEST(Accounting, BlankTriesCountAsThree) {
    Account account({.strDesc = "x"});
    account.engine.database.Change("Servers", account.id, {{"nTries", Value()}, {"nIntervalSeconds", 300}});
    for (const bool success : {false, false, false, true})
        account.Check(success);
    EXPECT_EQ(account.engine.actions.calls, (std::vector<std::string>{"down x", "up x"}));
    EXPECT_EQ(account.engine.database.Count("Failures", "nFailMax = 3"), 3);
}

TEST(Accounting, RecordsEachFailureWithACopyOfTheEntry) {
    Account account(
        {.strGroup = "G", .strDesc = "web", .strAddress_IP = "10.9.9.9", .strType = "HTTP", .strPort = "8080", .nTries = 2});
    account.Check(false, 0ms, std::string(300, 'r'));
    account.Check(false, 0ms, "second");
    const auto failures = account.engine.database.Rows("Failures");
    ASSERT_EQ(failures.size(), 2u);
    EXPECT_EQ(failures[0].at("IDParent"), Value(account.id));
    EXPECT_EQ(failures[0].at("strReason"), Value(std::string(249, 'r')));
    EXPECT_EQ(failures[0].at("strAction"), Value("None."));
    EXPECT_EQ(failures[1].at("strAction"), Value(account.engine.actions.strAction));
    EXPECT_EQ(failures[1].at("strAddress_IP"), Value("10.9.9.9"));
    EXPECT_EQ(failures[1].at("nFailCount"), Value(2));
    EXPECT_EQ(failures[1].at("nFailMax"), Value(2));
    EXPECT_EQ(account.row.at("strLastResponse"), Value("second "));
}

TEST(Accounting, CountersOverflowAsErrors) {
    EngineWorld engine;
    engine.net.Host("10.0.0.1").EchoSilent();
    engine.database.Add({.nTriesCur = std::numeric_limits<std::int16_t>::max(), .strExpectedText = "1000"});
    engine.RunFor(10s);
    EXPECT_TRUE(engine.person.Said("DoFailure: Error: Overflow"));
    EXPECT_EQ(engine.database.Count("Failures"), 0);
    EXPECT_EQ(engine.settingsFile.Read("KEYGEN", "LASTID", "none"), "none");

    Account failures({.nFail = std::numeric_limits<std::int32_t>::max()});
    failures.Check(false);
    EXPECT_TRUE(failures.engine.person.Said("DoFailure: Error: Overflow"));
}

TEST(Accounting, SuccessGoesOnPastAColumnThatCannotBeWritten) {
    Account account({.nTries = 1, .nTriesCur = 1});
    account.engine.store.faults.Add({.operation = StoreOperation::Write, .forever = true, .about = "nAveSession"});
    account.engine.store.faults.Add({.operation = StoreOperation::Write, .forever = true, .about = "nSuccess"});
    account.Check(true);
    EXPECT_EQ(account.Status(), "UP");
    EXPECT_EQ(account.row.at("nTriesCur"), Value(0));
    EXPECT_EQ(account.engine.actions.calls, (std::vector<std::string>{"up entry"}));
}

TEST(Accounting, ActionsAreNotRepeatedWhileTheRowCannotBeWritten) {
    using Calls = std::vector<std::string>;
    Account account({.nTries = 1});
    const auto breakUpdates = [&] {
        account.engine.store.faults.Add(
            {.operation = StoreOperation::Update, .forever = true, .about = "Servers", .description = "disk full"});
    };
    breakUpdates();
    for (int i = 0; i < 3; ++i)
        account.Check(false);
    EXPECT_EQ(account.engine.actions.calls, Calls{"down entry"});
    account.engine.store.faults.Heal();
    account.Check(false);
    EXPECT_EQ(account.engine.actions.calls, Calls{"down entry"});
    EXPECT_EQ(account.engine.database.Query("SELECT strAction FROM Failures ORDER BY dateFail DESC").at(0).at("strAction"),
              Value(account.engine.actions.strAction));

    breakUpdates();
    for (int i = 0; i < 3; ++i)
        account.Check(true);
    account.engine.store.faults.Heal();
    account.Check(true);
    EXPECT_EQ(account.engine.actions.calls, (Calls{"down entry", "up entry"}));
    account.Check(false);  // and the next outage is one of its own
    EXPECT_EQ(account.engine.actions.calls, (Calls{"down entry", "up entry", "down entry"}));
}

}  // namespace
}  // namespace korvane
