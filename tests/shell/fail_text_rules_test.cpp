// The ten rules of an entry: what is read, which rows are used again, added and deleted, and what a failure leaves.
#include "shell/entry/fail_text_rules.h"

#include <gtest/gtest.h>

#include "support/faulty_store.h"
#include "support/memory_files.h"
#include "support/test_database.h"
#include "support/virtual_world.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

struct RulesWorld {
    RulesWorld() {
        server = database.Add({.strDesc = "shop", .nFailScanText = 7});
        database.AddRow("ResponseFailText", {{"id", 900}, {"idParent", server + 1}, {"strFailText", "of another entry"}});
    }

    void Stored(int id, const std::string& text, const std::string& command) {
        database.AddRow("ResponseFailText",
                        {{"id", id}, {"idParent", server}, {"strFailText", text}, {"strFailCommand", command}});
    }

    FailTextRules RulesOf(std::int64_t id) {
        return FailTextRules({store, world.clock, world.events, log}, database.ProviderString(), std::to_string(id));
    }

    /// "id text|command" of each stored row of the entry.
    std::vector<std::string> Rows() {
        std::vector<std::string> rows;
        for (const Row& row : database.Query("SELECT * FROM ResponseFailText where idParent = " + std::to_string(server))) {
            rows.push_back(row.at("id").Text() + " " + row.at("strFailText").Text() + "|" + row.at("strFailCommand").Text());
        }
        return rows;
    }

    Value Count() { return database.Server(server).at("nFailScanText"); }
    bool Logged(const std::string& text) { return Holds(files.Text("/home/Logs/kvmonlog 2026 11-21.txt"), text); }

    TestDatabase database;
    std::int64_t server = 0;
    FaultyStore store{database.TheStore()};
    VirtualWorld world{DateTime::Of(2026, 11, 21, 15, 4, 5)};
    MemoryFiles files = WithHome();
    Log log{files, world.clock, "/home", "1.0.0"};

private:
    static MemoryFiles WithHome() {
        MemoryFiles files;
        files.CreateFolder("/home");
        return files;
    }
};

FailTextRows RowsOf(const std::vector<std::pair<std::size_t, FailTextRule>>& filled) {
    FailTextRows rows;
    for (const auto& [row, rule] : filled)
        rows[row] = rule;
    return rows;
}

TEST(FailTextRulesOpen, ReadsTheRowsOfTheEntryAndRestsAfterEach) {
    RulesWorld w;
    w.Stored(12, "Error 500", "restart.sh");
    w.Stored(11, "can't be reached", "");
    const FailTextRules::Opened opened = w.RulesOf(w.server).Open();
    EXPECT_TRUE(opened.found);
    EXPECT_EQ(opened.rows, RowsOf({{0, {"can't be reached", ""}}, {1, {"Error 500", "restart.sh"}}}));
    EXPECT_EQ(w.world.clock.GetTickCount(), 200ms);
    EXPECT_FALSE(w.RulesOf(w.server + 50).Open().found);
}

TEST(FailTextRulesOpen, TakesTenRowsAndNoMore) {
    RulesWorld w;
    for (int i = 1; i <= 12; ++i)
        w.Stored(i, "text " + std::to_string(i), "");
    EXPECT_EQ(w.RulesOf(w.server).Open().rows[9].strFailText, "text 10");
    EXPECT_EQ(w.world.clock.GetTickCount(), 1000ms);
}

TEST(FailTextRulesOpen, AFailureEndsTheReadingAndIsLogged) {
    RulesWorld w;
    w.Stored(1, "a", "");
    w.store.faults.Add({.operation = StoreOperation::Open, .about = "ResponseFailText", .description = "disk I/O error"});
    const FailTextRules::Opened opened = w.RulesOf(w.server).Open();
    EXPECT_TRUE(opened.found);
    EXPECT_EQ(opened.rows, FailTextRows());
    EXPECT_TRUE(w.Logged("frmCommands:Form_Load: disk I/O error"));
}

struct Saved {
    const char* name;
    std::vector<std::string> stored;  ///< texts of rows 11, 12, ...
    std::vector<std::pair<std::size_t, FailTextRule>> filled;
    std::vector<std::string> rows;
    int count;
};

// The time stamp of 11/21/2026 3:04:05 PM is 711211545; the number of the row stands behind it.
const Saved kSaved[] = {
    {"new rows", {}, {{3, {"a", " run "}}, {4, {"b", ""}}}, {"7112115453 a|run", "7112115454 b|"}, 2},
    {"all blank", {"a", "b", "c"}, {}, {}, 0},
    {"a blank row in between deletes one and the rest moves up",
     {"a", "b", "c"},
     {{0, {"A", ""}}, {2, {"C", "x"}}},
     {"11 A|", "13 C|x"},
     2},
    {"rows before all others delete what is stored",
     {"a", "b"},
     {{2, {"x", ""}}, {9, {"y", ""}}},
     {"7112115452 x|", "7112115459 y|"},
     2},
    {"more than there were", {"a"}, {{0, {"a", ""}}, {1, {"b", ""}}}, {"11 a|", "7112115451 b|"}, 2},
    {"blanks alone are no blank text, and are stored as one", {"a"}, {{0, {"  ", "x"}}}, {"11 |x"}, 1},
    {"upper and lower case", {"a"}, {{0, {"A", "RUN"}}}, {"11 A|RUN"}, 1},
};

TEST(FailTextRulesSave, StoredRowsAreUsedAgainInTheirOrder) {
    for (const Saved& c : kSaved) {
        SCOPED_TRACE(c.name);
        RulesWorld w;
        for (std::size_t i = 0; i < c.stored.size(); ++i)
            w.Stored(static_cast<int>(11 + i), c.stored[i], "old");
        EXPECT_EQ(w.RulesOf(w.server).Save(RowsOf(c.filled)), "");
        EXPECT_EQ(w.Rows(), c.rows);
        EXPECT_EQ(w.Count(), Value(c.count));
        EXPECT_EQ(w.database.Count("ResponseFailText"), static_cast<int>(c.rows.size()) + 1);
    }
}

TEST(FailTextRulesSave, AnIdThatIsTakenIsPassedOver) {
    RulesWorld w;
    w.database.AddRow("ResponseFailText", {{"id", std::int64_t{7112115450}}, {"idParent", w.server + 1}});
    EXPECT_EQ(w.RulesOf(w.server).Save(RowsOf({{0, {"a", ""}}, {1, {"b", ""}}})), "");
    EXPECT_EQ(w.Rows(), (std::vector<std::string>{"7112115451 a|", "7112115452 b|"}));
}

TEST(FailTextRulesSave, AFailureKeepsWhatWasWrittenBeforeItAndIsToldAndLogged) {
    RulesWorld w;
    w.Stored(11, "a", "old");
    w.Stored(12, "b", "old");
    w.store.faults.Add({.operation = StoreOperation::Update, .nth = 2, .description = "disk I/O error"});
    EXPECT_EQ(w.RulesOf(w.server).Save(RowsOf({{0, {"A", "new"}}, {1, {"B", "new"}}})), "disk I/O error");
    EXPECT_EQ(w.Rows(), (std::vector<std::string>{"11 A|new", "12 b|old"}));
    EXPECT_EQ(w.Count(), Value(7));
    EXPECT_TRUE(w.Logged("frmCommands:cmdOk: disk I/O error"));
}

}  // namespace
}  // namespace korvane
