#include "engine/invariants.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "base/text.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::seconds;

constexpr auto kLookEvery = 10min;

std::map<std::int64_t, std::vector<Row>> FailuresByParent(EngineWorld& engine) {
    std::map<std::int64_t, std::vector<Row>> rows;
    for (Row& row : engine.database.Query("SELECT * FROM Failures ORDER BY dateFail, ID")) {
        const auto parent = row.at("IDParent").Int64();
        rows[parent].push_back(std::move(row));
    }
    return rows;
}

void ExpectCounters(const Row& row) {
    const double failed = row.at("nFail").Double();
    const double total = failed + row.at("nSuccess").Double();
    if (total > 0) {
        EXPECT_DOUBLE_EQ(row.at("nPercentUp").Double(), 100.0 - failed / total * 100.0);
    }
    EXPECT_GE(row.at("nAveResponse").Double(), 0.0);
}

void ExpectState(const Row& row) {
    const auto inARow = row.at("nTriesCur").Int64();
    const std::string status = row.at("strCurStatus").Text();
    if (status == "Down-Time" || status == "Inactive") return;
    EXPECT_EQ(status, inARow == 0 ? "UP" : inARow < row.at("nTries").Int64() ? "Failing" : "DOWN");
}

// The rows of one entry in the order of time: counts go up by one or start anew, and only the nTries-th fired the actions.
int ExpectFailureHistory(const Row& server, const std::vector<Row>& rows, const std::string& firedAction) {
    std::int64_t before = 0;
    int outages = 0;
    for (const Row& row : rows) {
        const auto count = row.at("nFailCount").Int64();
        EXPECT_TRUE(count == before + 1 || count == 1) << count << " after " << before;
        const bool fires = count == row.at("nFailMax").Int64();
        EXPECT_EQ(row.at("strAction").Text(), fires ? firedAction : "None.");
        outages += fires ? 1 : 0;
        before = count;
    }
    if (server.at("nTriesCur").Int64() > 0 && !rows.empty()) {
        EXPECT_EQ(server.at("nTriesCur").Int64(), before);
    }
    return outages;
}

}  // namespace

RunCounts ExpectWholeAccounts(EngineWorld& engine) {
    RunCounts counts;
    auto failures = FailuresByParent(engine);
    for (const Row& server : engine.database.Rows("Servers")) {
        SCOPED_TRACE("entry " + server.at("strDesc").Text());
        const auto& rows = failures[server.at("ID").Int64()];
        EXPECT_EQ(server.at("nFail").Int64(), static_cast<std::int64_t>(rows.size()));
        ExpectCounters(server);
        ExpectState(server);
        const int outages = ExpectFailureHistory(server, rows, engine.actions.strAction);
        const std::string desc = server.at("strDesc").Text();
        const auto calls = [&](const std::string& what) {
            return static_cast<int>(std::count(engine.actions.calls.begin(), engine.actions.calls.end(), what + " " + desc));
        };
        const bool stillDown = server.at("nTriesCur").Int64() >= server.at("nTries").Int64();
        EXPECT_EQ(calls("down"), outages);
        EXPECT_EQ(calls("up"), outages - (stillDown ? 1 : 0));
        ++counts.entries;
        counts.checks += server.at("nSuccess").Int64() + server.at("nFail").Int64();
        counts.failures += server.at("nFail").Int64();
        counts.outages += outages;
    }
    return counts;
}

NobodyIsForgotten::NobodyIsForgotten(EngineWorld& engine, seconds longestCheck) : engine_(engine), longestCheck_(longestCheck) {
    engine_.world.After(kLookEvery, [this] { Look(); });
}

void NobodyIsForgotten::ClockJumps(seconds by) {
    forward_ = std::max(forward_, by);
    back_ = std::max(back_, -by);
}

void NobodyIsForgotten::Look() {
    const DateTime now = engine_.world.clock.Now();
    const auto rows = engine_.database.Query("SELECT ID, strDesc, dtNextCheck, nIntervalSeconds FROM Servers");
    // Each other entry may go first, with a tick of its own, and the cycle may just have gone to sleep.
    const seconds backlog = (longestCheck_ + 1s) * static_cast<int>(rows.size()) + 121s;
    for (const Row& row : rows) {
        const seconds late = now - row.at("dtNextCheck").When();
        const seconds farthest = std::max<seconds>(seconds(row.at("nIntervalSeconds").Int64()) * 5, 21600s);
        EXPECT_LE(late, backlog + forward_) << row.at("strDesc").Text() << " at " << now.Text();
        EXPECT_LE(-late, farthest + back_) << row.at("strDesc").Text() << " at " << now.Text();
    }
    engine_.world.After(kLookEvery, [this] { Look(); });
}

}  // namespace korvane
