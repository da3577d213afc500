// The accounts of an entry: the numbers, what is stored of a failure, and the times of the next check.
#include <limits>

#include "engine/engine_test.h"
#include "engine/once_an_outage.h"

namespace korvane::outcome_test {

TEST(OnceAnOutage, ActsOnceOnEachOutageAndItsEndUntilItIsForgotten) {
    OnceAnOutage once;
    int acts = 0;
    const auto act = [&] { return std::to_string(++acts); };
    for (const auto& [id, expected] : {std::pair(7, "1"), {7, "1"}, {8, "3"}, {7, "1"}}) {
        EXPECT_EQ(once.OnOutage(id, act), expected);
        once.OnRecovery(id, act);
    }
    once.Forget(7);
    EXPECT_FALSE(once.ActedOnOutage(7) || once.ActedOnRecovery(7));
    EXPECT_TRUE(once.ActedOnOutage(8) && once.ActedOnRecovery(8));
}

TEST(Accounting, KeepsTheAverages) {
    Engine engine({Web({{"nIntervalSeconds", 3}})});
    engine.page.Answer("ok", 200ms).Fail("no", 500ms).Answer("ok", 150ms).Silent();
    engine.RunFor(6s);
    EXPECT_EQ(engine.Of(1, "nPercentUp,nAveResponse"), "50,200");
    engine.RunFor(4s);  // the failure counts in the divisor
    EXPECT_EQ(engine.Of(1, "nAveSession,nTotalSession,nAveResponse,nPercentUp"),
              "175,2," + Value(550 / 3.0).Text() + "," + Value(100.0 - 1.0 / 3 * 100).Text());
}

TEST(Accounting, ChoosesTheNextCheck) {
    const std::tuple<const char*, int, int, std::int64_t> cases[] = {
        // the server, failures, interval, and what follows
        {"10.0.0.1", 0, 300, 300}, {"10.0.0.1", 0, 0, 15000},  {"10.0.0.9", 0, 300, 60},    {"10.0.0.9", 2, 300, 60},
        {"10.0.0.9", 3, 300, 300}, {"10.0.0.9", 49, 300, 300}, {"10.0.0.9", 50, 300, 1500}, {"10.0.0.9", 0, 30, 30}};
    Engine engine;
    for (const auto& [server, failures, interval, next] : cases)
        engine.Add(Ping(Columns("strAddress_IP nTriesCur nIntervalSeconds", server, failures, interval)));
    engine.Add(Ping({{"nIntervalSeconds", std::int64_t{300000000000}}}));
    engine.RunFor(40s);
    for (std::int64_t id = 0; const auto& [server, failures, interval, next] : cases) {
        const Row row = engine.rows.Server(++id);
        const auto until = (row.at("dtNextCheck").When() - row.at("datelastcheck").When()).count();
        EXPECT_EQ(std::clamp(until, server[7] == '1' ? next - engine.last : next, next), until) << id;  // successes are spread
    }
    EXPECT_EQ(engine.Of(engine.last, "dtNextCheck"), DateTime::Last().Text());
}

TEST(Accounting, RecordsEachFailureWithACopyOfTheEntry) {
    Engine engine({Web({{"strPort", "8080"}, {"nTries", 2}, {"nIntervalSeconds", 5}})});
    const std::string umlauts = ReplaceAll(std::string(300, 'u'), "u", "ü");
    engine.page.Fail(umlauts, 500ms).Fail("second", 500ms).Silent();
    engine.RunFor(10s);
    const Row row = engine.rows.Rows("Failures").at(0);
    EXPECT_EQ(row.at("strReason").Text(), "Reason '" + umlauts.substr(0, 2 * 241));  // 249 characters, not bytes
    Row expected = Columns("IDParent nFailCount nFailMax strAction", 1, 1, 2, "None.");
    for (const char* column : {"strGroup", "strDesc", "strAddress_IP", "strType", "strPort", "nTimeout"})
        expected[column] = engine.rows.Server(1).at(column);
    for (const auto& [column, value] : expected)
        EXPECT_EQ(row.at(column).Text(), value.Text()) << column;
    EXPECT_EQ(engine.Of(1, "strLastResponse,nTriesCur"), "Reason 'second' ,2");
}

TEST(Accounting, AFailureWhoseCounterOverflowsHasNoRow) {
    for (const Row& full :
         {Row{{"nTriesCur", std::numeric_limits<std::int16_t>::max()}}, {{"nFail", std::numeric_limits<std::int32_t>::max()}}}) {
        Engine engine({Web(full)});
        engine.page.Fail("no", 500ms);
        engine.RunFor(10s);
        EXPECT_TRUE(engine.person.Said("DoFailure: Error: Overflow") && engine.Logged("# DoFailure: Error: Overflow"));
        EXPECT_EQ(engine.rows.Count("Failures"), 0);
        EXPECT_EQ(engine.run.TheDesk().settingsFile.Read("KEYGEN", "LASTID", "none"), "none");
    }
}

TEST(Accounting, SaysOnceThatNothingCanBeStoredAndOnceThatItCanAgain) {
    using Op = StoreOperation;
    for (const auto& [operation, entry] : {std::pair{Op::Update, Ping()},
                                           {Op::Commit, Ping({{"strAddress_IP", "10.0.0.9"}})},
                                           {Op::Update, Web({{"strExpectedText", "Welcome"}})}}) {
        Engine engine({entry});
        engine.person.windowVisible = true;
        engine.page.Answer("an error page", 30ms);
        engine.store.faults.Add({.operation = operation, .forever = true, .description = "disk full"});
        engine.RunFor(20s);
        EXPECT_EQ(engine.person.tray, (Tray{TrayPicture::Error, "Korvane: Outcomes of checks can't be stored! "}));
        engine.store.faults.Heal();
        engine.RunFor(20s);
        EXPECT_NE(engine.person.tray.picture, TrayPicture::Error);
        const std::string begins = "Outcomes of checks can't be stored, and are lost: disk full";
        std::erase_if(engine.serviceManager.told, [](const std::string& text) { return !text.starts_with("Outcomes"); });
        EXPECT_EQ(engine.serviceManager.told, (Texts{begins, "Outcomes of checks are stored again."}));
        EXPECT_TRUE(engine.person.Said(begins) && engine.Logged("# " + begins));
    }
}

}  // namespace korvane::outcome_test
