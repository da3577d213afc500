// Several instances work on one list. What happens is compared with a ledger that knows only what the servers answered.
#include "engine/engine_test.h"
#include "support/cluster.h"

namespace korvane::shared_list_test {

using std::chrono::seconds;

/// What the servers answered to checks of an entry, and what must have followed.
struct Account {
    struct Check {
        bool good;
        PlayedInstance* by;
        bool maybe = false;  ///< the instance was killed, or the store refused the outcome
    };
    int nTries;
    std::array<std::int64_t, 3> stored{};  ///< nTriesCur, nSuccess, nFail
    std::optional<Check> last = {};
    int downs = 0, ups = 0, troubles = 0;
};

class Ledger {
public:
    Ledger(int instances, unsigned seed)
        : cluster_(instances, seed, "GlobalRetryDuration=60\n" + (seed % 2 == 0 ? "" : RecommendedSettings().substr(11))) {
        cluster_.answers = [this](PlayedInstance& by, int entry) { return Ask(by, entry); };
        cluster_.onKill = [this](PlayedInstance& by) { MayBeLost(by); };
        for (int i = 0; i < 10; ++i) {
            const std::string name = "e" + std::to_string(i);
            accounts_.push_back({.nTries = 1 + i % 4});
            Entry entry{.strDesc = name,
                        .strAddress_IP = "10.1.0." + std::to_string(i + 1),
                        .nTries = 1 + i % 4,
                        .nIntervalSeconds = 300,
                        .dtNextCheck = kStart};
            entry.strExpectedText = i % 2 == 0 ? "1000" : "220,QUIT,221";
            if (i % 2 != 0) entry.strType = "SMTP", entry.strPort = "25";
            cluster_.Add(With(Columns("strCMD strCMDUP strEmailList1 strEmailText bSendUpNotify", "mend " + name, "greet " + name,
                                      name + "@x", "alarm", true),
                              entry),
                         i);
        }
    }

    void Play() {
        cluster_.kills = true;
        cluster_.RunUntil(kTime + 30min);
        for (int i = 0; i < static_cast<int>(accounts_.size()); ++i) {
            Account& account = accounts_[static_cast<std::size_t>(i)];
            Close(i);
            const std::string name = "e" + std::to_string(i);
            SCOPED_TRACE(name);
            EXPECT_EQ(cluster_.rows.Count("Failures", "IDParent = " + std::to_string(i + 1)), account.stored[2]);
            EXPECT_EQ(Mails("alarm (" + name + ") "), account.downs);
            EXPECT_EQ(Mails("SERVER BACK UP (alarm) " + name), account.ups);
            EXPECT_EQ(cluster_.commands.count("mend " + name), account.downs);
            EXPECT_EQ(cluster_.commands.count("greet " + name), account.ups);
            downs += account.downs;
        }
    }
    int downs = 0;
    int Killed() const { return cluster_.killed; }

private:
    static constexpr auto kTime = 1h;

    bool Ask(PlayedInstance& by, int entry) {
        Account& account = accounts_[static_cast<std::size_t>(entry)];
        Close(entry);
        const bool ends = cluster_.Time() > kTime;
        if (ends) cluster_.kills = false;
        const seconds late = cluster_.Now() - cluster_.rows.Server(entry + 1).at("dtNextCheck").When();
        if (asked_.contains(entry)) {
            EXPECT_LE(late, 5min) << entry;
        }
        asked_.insert(entry);
        if (account.troubles == 0 && !ends && cluster_.Pick(4) == 0) account.troubles = 1 + cluster_.Pick(6);
        const bool good = ends || account.troubles == 0;
        if (!good) --account.troubles;
        account.last = {good, &by};
        by.world->store.faults.Heal();
        if (!ends && cluster_.Pick(8) == 0) {
            using enum StoreOperation;
            const StoreOperation steps[] = {Update, Commit, AddNew};
            by.world->store.faults.Add({.operation = steps[cluster_.Pick(3)], .nth = 1 + cluster_.Pick(2)});
            account.last->maybe = true;
        }
        return good;
    }
    void MayBeLost(PlayedInstance& by) {
        for (Account& account : accounts_)
            if (account.last && account.last->by == &by) account.last->maybe = true;
    }

    // Before the next check of an entry the last one must be stored.
    void Close(int entry) {
        Account& account = accounts_[static_cast<std::size_t>(entry)];
        if (!account.last) return;
        const Account::Check check = *std::exchange(account.last, std::nullopt);
        const auto [before, good, bad] = account.stored;
        const Row row = cluster_.rows.Server(entry + 1);
        const std::array now{row.at("nTriesCur").Int64(), row.at("nSuccess").Int64(), row.at("nFail").Int64()};
        if (check.maybe && now == account.stored) return;
        account.stored = check.good ? std::array<std::int64_t, 3>{0, good + 1, bad} : std::array{before + 1, good, bad + 1};
        EXPECT_EQ(now, account.stored) << "e" << entry << " at " << cluster_.Now().Text() << " by " << check.by->name;
        account.stored = now;
        account.downs += !check.good && before + 1 == account.nTries ? 1 : 0;
        account.ups += check.good && before >= account.nTries ? 1 : 0;
    }

    // A mail that was on its way when its instance was killed may go out once more, as the same mail.
    int Mails(const std::string& subject) const {
        std::set<std::string> ids;
        for (const auto& mail : cluster_.mails) {
            const bool both =
                subject.starts_with("alarm") && Holds(mail.text, "The outage is over.") && Holds(mail.text, subject);
            if (!both && !Holds(mail.text, "\r\nSubject: " + subject)) continue;
            const auto at = mail.text.find("Message-ID: ");
            ids.insert(mail.text.substr(at, mail.text.find("\r\n", at) - at));
        }
        return static_cast<int>(ids.size());
    }

    Cluster cluster_;
    std::vector<Account> accounts_;
    std::set<int> asked_;
};

struct SharedLists : testing::TestWithParam<int> {};

TEST_P(SharedLists, EachOutageIsToldOnceAndNobodyIsForgotten) {
    int downs = 0, killed = 0;
    for (unsigned seed = GetParam() > 2 ? 1 : 0; seed < 2 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Ledger ledger(GetParam(), seed);
        ledger.Play();
        downs += ledger.downs;
        killed += ledger.Killed();
    }
    EXPECT_GT(downs, 5);
    EXPECT_GT(killed, 0);
}
INSTANTIATE_TEST_SUITE_P(Instances, SharedLists, testing::Values(1, 2, 5));

TEST(Witnesses, OneCutLineAlarmsNobody) {
    Cluster cluster(3, 1, "Witnesses=2\nGlobalRetryDuration=60");
    for (int i = 0; i < 2; ++i)
        cluster.Add(
            With(Columns("strEmailList1 strEmailText", "a@x", "alarm"), {.strAddress_IP = "10.1.0." + std::to_string(i + 1),
                                                                         .nTries = 1 + 2 * i,
                                                                         .nIntervalSeconds = 120,
                                                                         .strExpectedText = "1000"}),
            i);
    int unseen = 0;
    cluster.answers = [&](PlayedInstance& by, int) {
        const bool good = by.name != "i0" && cluster.Time() < 30min;
        unseen += by.name == "i0" && cluster.Time() < 30min ? 1 : 0;
        if (cluster.Time() < 30min) {
            EXPECT_EQ(cluster.mails.size(), 0);
            EXPECT_EQ(cluster.rows.Count("Servers", "strCurStatus = 'DOWN'"), 0);
        }
        return good;
    };
    cluster.RunUntil(45min);
    EXPECT_GT(unseen, 3);
    ASSERT_EQ(cluster.mails.size(), 2);
    for (const auto& mail : cluster.mails)
        EXPECT_TRUE(Holds(mail.text, "Seen by 2 instances:\r\ni")) << mail.text;
}

TEST(ServerAway, IsToldOnceMailedOnceAndWaitedFor) {
    QtSqlStore store(KindOfColumn);
    TemporaryFolder folder;
    TestDatabase rows(folder.Path(), store);
    std::filesystem::copy_file(KORVANE_DIST_DIR "/kvempty.mdb", rows.Path());
    PlayedServer server{.file = rows.Path(), .now = [] { return kStart; }, .away = true};
    World world({.server = &server, .rows = &store, .instance = "one"});
    server.now = [&] { return world.world.clock.Now(); };
    world.Write("GlobalEmail.dat", "TO_LIST1=all@x\r\n");
    world.world.After(100s, [&] { server.away = false; });
    world.Start();
    EXPECT_EQ(world.started, Run::Started::Running);
    EXPECT_EQ(world.world.Ticks() / 1s, 123);  // 1 + 2 + 4 + 8 + 16 + 32 + 60
    world.RunFor(1min);
    server.away = true;
    world.RunFor(20min);
    server.away = false;
    world.RunFor(2min);
    std::vector<std::string> told = world.serviceManager.told;
    std::erase_if(told, [](const std::string& text) { return !text.starts_with("The database server is"); });
    ASSERT_EQ(told.size(), 4);
    EXPECT_EQ(told[1], "The database server is back. It was away for 123 seconds.");
    EXPECT_TRUE(told[2].ends_with("the server is away")) << told[2];
    EXPECT_EQ(world.mail.mails.size(), 1);
    EXPECT_FALSE(world.Logged("Monitor Timer Error"));

    server.away = true;
    World second({.server = &server, .rows = &store, .instance = "two"});
    second.world.After(30s, [&] { EXPECT_FALSE(second.run.MayExit()); });
    second.Start();
    EXPECT_EQ(second.started, Run::Started::Stopped);
}

}  // namespace korvane::shared_list_test
