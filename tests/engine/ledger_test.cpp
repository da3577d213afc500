// Servers and mail servers that fail and recover at random, for hours: what people, traces and commands get, and what the store
// holds, is compared check by check with a ledger that knows only what the servers answered, what the mail servers took and that
// the store refused. Half of the runs have all safeguards on, and this machine's own network fails too. KORVANE_LEDGER plays a thousand
// runs, of as many hours as it says (876: a hundred years).
#include <algorithm>
#include <array>
#include <cstdlib>
#include <random>
#include <set>

#include "engine/down_time.h"
#include "engine/engine_test.h"

namespace korvane::ledger_test {

using std::chrono::hours;
using std::chrono::seconds;

const char* const kLong = std::getenv("KORVANE_LEDGER");
const hours kTime(kLong ? std::atoi(kLong) : 6);
constexpr seconds kLongestCheck = 23s;                                 ///< of a server that says nothing more
const int kSlower = 1 + static_cast<int>(std::min(kTime / 24h, 11L));  ///< long runs have fewer checks

struct Trial {
    DateTime start;
    std::string ServerBackup, SMTPUser1;  ///< without a user: the plain mailer
    bool usesBackup;
    enum { Works, Refuses, Errs } store;  ///< refuses what is written, or breaks at any operation
    hours jumpAfter, jump;
    void (VirtualWorld::*move)(seconds);
    bool guarded = false;  ///< by all safeguards: then nothing is lost
};

/// A mail server that has good and bad times.
struct MoodyServer {
    explicit MoodyServer(VirtualServer& of) : port(of) {}

    VirtualServer& port;
    VirtualMailServer server{port};
    bool takes = true;
    int connections = 0;  ///< that were seen before

    void ChangeMood(int mood) {
        takes = mood < 6;
        server.refuse = [mood](const std::string& line) { return mood == 6 && ToLower(line).starts_with("rcpt to:"); };
        if (mood < 7) server.Serve(port);
        if (mood == 5) port.Accept(4s);
        if (mood == 7) port.Anew().Refuse();
        if (mood == 8) port.Anew().Silent();
        if (mood == 9) port.Anew().Speak("220 ready\r\n").ExpectAnyLine().Speak("250 ok\r\n", 1ms).ExpectAnyLine().Reset(1ms);
    }
};

/// An entry as it was set up, and its page in the ledger.
struct Account {
    std::string Text(const std::string& column) const { return row.at(column).Text(); }
    std::string To() const { return ": '" + Text("strEmailList1") + " " + Text("strEmailList2") + "'"; }

    Row row;
    std::int64_t id, nTries;
    std::array<std::int64_t, 3> stored;     ///< nTriesCur, nSuccess, nFail
    int troubles = 0;                       ///< checks that are still to fail
    bool toldDown = false, toldUp = false;  ///< of what is not stored yet
    std::string strAction = "None.";        ///< of the outage
    std::multiset<std::string> failures = {};
    std::array<std::size_t, 2> mails{};  ///< that are due for outages and returns
    std::chrono::milliseconds asked{-1};
};

class Ledger {
public:
    /// Adds to `told` how the mails went: through the primary server, the backup, and nowhere.
    Ledger(const Trial& trial, unsigned seed, std::array<int, 3>& told)
        : trial_(trial), told_(told), random_(static_cast<unsigned>(trial.start.Seconds()) + seed) {
        engine_.person.keepOnlyCounts = true;
        engine_.store.staysOpen = true;
        for (const char* watcher : {"CPUMon.dat", "MemoryMon.dat", "DiskMon.dat", "SvcMon.dat"})
            engine_.Write(watcher, "DISABLE=1\n");
        gateway_.Echo(1ms);
        if (trial.guarded) CutLater();
        accounts_.reserve(12);
        while (accounts_.size() < accounts_.capacity())
            Enter(static_cast<int>(accounts_.size()));
        engine_.world.After(trial.jumpAfter, [this] { Jump(); });
        Look();
    }

    void Play() {
        engine_.world.RunUntil([] { return testing::Test::HasFailure(); }, kTime);
        if (trial_.guarded) End();
        CloseCheck();
        if (trial_.guarded) CompareMails();
        EXPECT_GT(checks_, 20);
        if (trial_.store == Trial::Errs) return;
        std::map<std::int64_t, std::multiset<std::string>> failures;
        for (const Row& row : engine_.rows.Query("SELECT * FROM Failures ORDER BY dateFail, ID")) {
            const Account& account = accounts_.at(static_cast<std::size_t>(row.at("IDParent").Int64() - 1));
            std::string action = row.at("strAction").Text();
            for (const std::string& told : {std::string("FAILED"), SentTo(account)})
                if (Holds(action, told)) action = told;
            EXPECT_EQ(row.at("nFailMax"), Value(account.nTries));
            failures[account.id].insert(row.at("nFailCount").Text() + action);
        }
        for (const Account& account : accounts_) {
            EXPECT_EQ(failures[account.id], account.failures) << account.id;
            const auto bad = static_cast<double>(account.stored[2]), all = bad + static_cast<double>(account.stored[1]);
            EXPECT_EQ(all > 0 ? engine_.Of(account.id, "nPercentUp") : "",
                      all > 0 ? Value(100.0 - bad / all * 100.0).Text() : "");
        }
        std::erase_if(engine_.serviceManager.told, [](const std::string& text) { return !text.starts_with("Outcomes"); });
        for (bool stored = true; const std::string& text : engine_.serviceManager.told)
            EXPECT_EQ(text == "Outcomes of checks are stored again.", stored = !stored) << text;
        EXPECT_EQ(engine_.serviceManager.told.empty(), trial_.store == Trial::Works);
    }

private:
    int Pick(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }

    void Enter(int i) {
        const std::string name = "e" + std::to_string(i), address = "10.1.0." + std::to_string(i + 1);
        const int nTries = i == 7 ? 3 : 1 + Pick(4),
                  nTriesCur = i % 4 == 1 ? nTries + 1 : 0;  // some are down since before this start
        accounts_.push_back(
            {.row = Columns(
                 "idCustomer strDesc strAddress_IP nTries nTriesCur nIntervalSeconds bIsMonitoring strDownTime1 nDownDuration1 "
                 "strDownTime2 nDownDuration2 strCMD strCMDUP strEmailList1 strEmailList2 strEmailText bSendUpNotify",
                 Value(), name, address, i == 7 ? Value() : nTries, nTriesCur, 600 * kSlower * (1 + Pick(6)), i % 11 != 10,
                 i % 12 == 3 ? "3:30" : "", 90, i % 12 == 9 ? "9:30 PM" : "", 70, i % 2 == 0 ? "" : "mend " + name,
                 i % 3 == 0 ? "" : "greet " + name, i % 10 == 9 && !trial_.guarded ? "" : name + "@x",
                 i % 3 == 2 ? name + "@y" : "", "alarm", i % 5 != 3),
             .id = i + 1,
             .nTries = nTries,
             .stored = {nTriesCur, 0, 0}});
        Account& account = accounts_.back();
        engine_.net.Host(address).DecideEcho([&] {
            const VirtualHost::EchoAnswer bad[] = {{false, 0, 0ms}, {true, 769, 1ms}, {true, 0, 1500ms}};
            return Ask(account) ? VirtualHost::EchoAnswer{} : bad[Pick(3)];
        });
        engine_.net.Host(address).Port(25).Speak("220 hello\r\n", 20ms).Answer([&](const std::string&) {
            return Ask(account) ? "221 bye\r\n" : Pick(9) == 0 ? "" : "500 no\r\n";
        });
        engine_.net.Page("http://" + address).Decide([&] {
            using enum PageAnswer::Kind;
            if (Ask(account)) return PageAnswer{Body, "all ok", 20ms};
            if (trial_.guarded && Pick(3) == 0) return PageAnswer{Pick(2) == 0 ? Body : OtherHost, "all ok", 20ms, 503};
            // A page without its text fails without the step that makes up for a row that the store refused.
            const bool page = trial_.store == Trial::Works && Pick(2) == 0;
            return page ? PageAnswer{Body, "an error", 20ms} : PageAnswer{Failure, "refused", 600ms};
        });
        const Entry kinds[] = {{.strExpectedText = "1000"},
                               {.strType = "SMTP", .strPort = "25", .strExpectedText = "220,QUIT,221"},
                               {.strType = "HTTP", .strPort = "80", .strExpectedText = "ok"}};
        engine_.Add(With(account.row, kinds[i % 3]));
    }

    // A check asks a server; all that is seen from here to the next one follows from the answer.
    bool Ask(Account& account) {
        CloseCheck();
        if (!ends_) ExpectItsTurn(account);
        account.asked = engine_.world.Ticks();
        if (cut_ && account.troubles > 0) return false;  // not counted
        checked_ = &account;
        cutsBefore_ = cuts_;
        ++checks_;
        EXPECT_TRUE(account.row.at("bIsMonitoring").Bool());
        for (const std::string window : {"1", "2"}) {
            const std::string start = account.Text("strDownTime" + window), minutes = account.Text("nDownDuration" + window);
            EXPECT_FALSE(IsDownTime(start, minutes, engine_.world.clock.Now() - kLongestCheck).bIsDown &&
                         IsDownTime(start, minutes, engine_.world.clock.Now()).bIsDown);
        }
        if (ends_) account.troubles = 0;
        good_ = account.troubles == 0 || JustCut();
        if (!good_) --account.troubles;
        if (good_ && Pick(6) == 0 && !ends_) account.troubles = 1 + (Pick(40) == 0 ? 60 : Pick(Pick(2) == 0 ? 4 : 20));
        const std::int64_t before = account.stored[0];
        count_ = good_ ? 0 : before + 1;
        return_ = good_ && (before >= account.nTries || account.toldDown) && !account.toldUp;
        if (!good_ && (count_ != account.nTries || account.toldUp)) account.toldDown = account.toldUp = false;  // another outage
        outage_ = !good_ && count_ == account.nTries && !account.toldDown;
        account.toldDown |= outage_;
        account.toldUp |= return_;
        refusals_ = engine_.store.faults.Failures();
        if (trial_.store != Trial::Works && Pick(6) == 0 && !ends_) BreakStore();
        if (Pick(4) == 0 && !ends_) (Pick(2) == 0 ? primary_ : backup_).ChangeMood(Pick(10));
        return good_;
    }

    void BreakStore() {
        using enum StoreOperation;
        const bool full = Pick(4) == 0, any = trial_.store == Trial::Errs;
        const StoreOperation once[] = {Connect, Open, Update, Commit, AddNew, MoveNext, Read, Write, Read, Write};
        engine_.store.faults.Heal();
        engine_.store.faults.Add(
            {.operation = full ? Update : once[Pick(any ? 10 : 6)], .nth = full ? 1 : 1 + Pick(any ? 30 : 4), .forever = full});
        if (full) engine_.world.After(seconds(10 + Pick(200)), [this] { engine_.store.faults.Heal(); });
    }

    // Compares what was seen since the answer with what had to follow from it.
    void CloseCheck() {
        if (checked_ == nullptr) return;
        Account& account = *std::exchange(checked_, nullptr);
        SCOPED_TRACE(account.Text("strDesc") + " before " + engine_.world.clock.Now().Text());
        if (trial_.store == Trial::Errs) return;  // nothing is known but that nobody is forgotten
        const bool wanted = outage_ || (return_ && account.row.at("bSendUpNotify").Bool());
        const bool asked = wanted && !account.Text("strEmailList1").empty();
        const bool waits = asked && trial_.guarded;
        account.mails[outage_ ? 0 : 1] += waits ? 1 : 0;
        const bool byPrimary = !trial_.guarded && Took(primary_, asked, account);
        const bool byBackup = !trial_.guarded && Took(backup_, asked && !byPrimary && trial_.usesBackup, account);
        if (asked && !waits) ++told_[byPrimary ? 0 : byBackup ? 1 : 2];
        if (outage_) account.strAction = waits || byPrimary || byBackup ? SentTo(account) : "FAILED";
        const std::string trace = outage_ ? "/bin/sh '~/kvlogs/KvTR" + std::to_string(account.id) + ".bat'" : "";
        Texts started{trace, outage_ || return_ ? account.Text(outage_ ? "strCMD" : "strCMDUP") : ""};
        std::erase(started, "");
        EXPECT_EQ(engine_.TakeStarted(), started);

        const auto text = [](std::int64_t tries, std::int64_t good, std::int64_t bad) {
            return std::to_string(tries) + "," + std::to_string(good) + "," + std::to_string(bad);
        };
        auto& [nTriesCur, nSuccess, nFail] = account.stored;
        const std::string now = engine_.Of(account.id, "nTriesCur,nSuccess,nFail");
        const bool refused = engine_.store.faults.Failures() > refusals_;
        if (now == text(nTriesCur, nSuccess, nFail) && refused && !trial_.guarded) return;  // lost, and still due
        nTriesCur = count_;
        ++(good_ ? nSuccess : nFail);
        if (!refused || !trial_.guarded) {
            EXPECT_EQ(now, text(nTriesCur, nSuccess, nFail));
            const bool hasWindow = !(account.Text("strDownTime1") + account.Text("strDownTime2")).empty();
            const bool another = cut_ || cuts_ != cutsBefore_ || hasWindow;  // it may be under way by now
            if (another) return Counted(account);
            EXPECT_EQ(engine_.Of(account.id, "strCurStatus"), good_ ? "UP" : count_ < account.nTries ? "Failing" : "DOWN");
        }
        Counted(account);
    }
    void Counted(Account& account) const {
        account.toldDown = account.toldUp = false;
        if (!good_) account.failures.insert(std::to_string(count_) + (count_ == account.nTries ? account.strAction : "None."));
    }

    /// Whether the server took the mail to everybody.
    bool Took(MoodyServer& server, bool asked, const Account& account) const {
        Texts to{account.Text("strEmailList1"), account.Text("strEmailList2")};
        std::erase(to, "");
        const auto mails = std::exchange(server.server.mails, {});
        const int before = std::exchange(server.connections, server.port.Connections());
        EXPECT_EQ(server.connections - before, !asked ? 0 : server.takes ? std::ssize(to) : 1);
        EXPECT_EQ(mails.size(), asked && server.takes ? to.size() : 0);
        const std::string name = account.Text("strDesc");
        for (std::size_t i = 0; i < std::min(mails.size(), to.size()); ++i) {
            EXPECT_EQ(mails[i].recipients, Texts{"<" + to[i] + ">"});
            EXPECT_TRUE(Holds(mails[i].text,
                              outage_ ? "\r\nSubject: alarm (" + name + ") " : "\r\nSubject: SERVER BACK UP (alarm) " + name));
        }
        return !mails.empty();
    }

    std::string SentTo(const Account& account) const {
        return (trial_.guarded ? "is in the outbox for" : "successfully sent to") + account.To();
    }

    // All is well at last, so that whatever waits is written and sent.
    void End() {
        ends_ = true;
        engine_.store.faults.Heal();
        if (cut_) Cut();
        primary_.ChangeMood(0);
        backup_.ChangeMood(0);
        engine_.RunFor(1h);
        const auto& outbox = engine_.run.TheDesk().outbox.State();
        const auto done = [&] { return outbox.waiting == 0 && !JustAsked(); };
        EXPECT_TRUE(engine_.world.RunUntil(done, 1h)) << outbox.waiting << " mails still wait.";
        EXPECT_EQ(outbox.givenUp, 0);
    }

    // Each recipient has one mail for each outage and one for each return, or one for both.
    void CompareMails() const {
        std::map<std::string, std::array<std::size_t, 2>> got;
        std::set<std::string> all, network;
        for (const MoodyServer* server : {&primary_, &backup_})
            for (const auto& [from, to, text] : server->server.mails) {
                const auto header = [&text = text](const std::string& name) {
                    const auto at = text.find("\r\n" + name) + name.size() + 2;
                    return text.substr(at, text.find("\r\n", at) - at);
                };
                const std::string subject = header("Subject: ");
                ++told_[server == &primary_ ? 0 : 1];
                EXPECT_TRUE(all.insert(to.at(0) + header("Message-ID: ")).second) << "twice to " << to[0] << ": " << subject;
                const bool down = subject.starts_with("alarm ("), up = subject.starts_with("SERVER BACK UP (alarm) ");
                got[to[0]][0] += down || (up && Holds(text, "The outage is over.")) ? 1 : 0;
                got[to[0]][1] += up ? 1 : 0;
                if (subject.starts_with("OWN NETWORK BACK UP")) network.insert(header("Message-ID: "));
            }
        if (trial_.store == Trial::Errs) return;
        EXPECT_EQ(network.size(), blamed_);
        for (const Account& account : accounts_)
            for (const std::string list : {"strEmailList1", "strEmailList2"})
                if (const std::string to = account.Text(list); !to.empty()) {
                    EXPECT_EQ(got["<" + to + ">"], account.mails) << to;
                }
    }

    // This machine's own network fails now and then, as a whole or only towards the addresses that tell.
    void CutLater() {
        engine_.world.After(std::chrono::minutes(20 + Pick(cut_ ? 100 : 120 * kSlower)), [this] { Cut(); });
    }
    void Cut() {
        if (ends_ && !cut_) return;
        if (JustAsked() && !ends_) return static_cast<void>(engine_.world.After(5s, [this] { Cut(); }));
        cut_ = !cut_;
        ++cuts_;
        cutAt_ = engine_.world.Ticks();
        const auto& counts = engine_.run.TheDesk().safeguards.Counts();
        const std::size_t excused = counts.contains("OwnNetwork") ? counts.at("OwnNetwork") : 0;
        if (std::exchange(excused_, excused) != excused && !cut_) ++blamed_;
        engine_.net.SetNetworkThere(!cut_ || Pick(2) == 0);
        cut_ ? gateway_.Down() : gateway_.Up();
        CutLater();
    }
    bool JustAsked() const {
        return std::any_of(accounts_.begin(), accounts_.end(),
                           [&](const Account& each) { return each.asked >= engine_.world.Ticks() - kLongestCheck; });
    }
    bool JustCut() const { return cuts_ > 0 && engine_.world.Ticks() - cutAt_ < 20s; }

    // An entry that is due waits for those alone that were due before it, and for the check that is under way.
    void ExpectItsTurn(const Account& account) {
        const bool known = trial_.guarded && trial_.store == Trial::Works && checks_ > 40;
        if (!known || forward_ + back_ > 0s || cut_ || engine_.world.Ticks() - cutAt_ < 10min) return;
        const seconds late = engine_.world.clock.Now() - engine_.rows.Server(account.id).at("dtNextCheck").When();
        const auto ahead = std::count_if(accounts_.begin(), accounts_.end(), [&](const Account& other) {
            return other.asked >= engine_.world.Ticks() - late - kLongestCheck;
        });
        EXPECT_LE(late, kLongestCheck * ahead + 5s) << account.id << " after " << ahead;
    }

    // Nobody is forgotten. Each other entry may go first, with mails to two silent servers, and the cycle may have gone to sleep.
    seconds Backlog() const {
        return trial_.guarded ? 35s * std::ssize(accounts_) + (trial_.store == Trial::Works ? 1min : 5min)
                              : 90s * std::ssize(accounts_) + 10min;
    }
    void Look() {
        for (const Row& row : engine_.rows.Query("SELECT ID, dtNextCheck, nIntervalSeconds FROM Servers")) {
            const seconds late = engine_.world.clock.Now() - row.at("dtNextCheck").When();
            EXPECT_LE(checks_ > 40 ? late : 0s, Backlog() + forward_) << row.at("ID").Text();
            EXPECT_LE(-late, std::max<seconds>(5 * seconds(row.at("nIntervalSeconds").Int64()), 6h) + back_)
                << row.at("ID").Text();
        }
        engine_.world.After(10min * kSlower, [this] { Look(); });
    }
    void Jump() {
        (trial_.jump > 0h ? forward_ : back_) = std::chrono::abs(trial_.jump);
        (engine_.world.*trial_.move)(trial_.jump);
        engine_.world.After(Backlog(), [this] { forward_ = 0s; });
        if (trial_.guarded) engine_.world.After(1min, [this] { back_ = 0s; });
    }

    const Trial trial_;
    std::array<int, 3>& told_;
    std::mt19937 random_;
    Engine engine_{
        {},
        "GlobalRetryDuration=300\nServerBackup=" + trial_.ServerBackup + "\nSMTPUser1=" + trial_.SMTPUser1 +
            (trial_.guarded ? "\nOwnNetwork=10.9.9.1\n" + RecommendedSettings().substr(std::string("[Settings]\n").size()) : ""),
        trial_.start};
    MoodyServer primary_{engine_.net.Host("mail.example").Port(25)}, backup_{engine_.net.Host(trial_.ServerBackup).Port(25)};
    VirtualHost& gateway_ = engine_.net.Host("10.9.9.1");
    std::vector<Account> accounts_;

    // The check under way.
    Account* checked_ = nullptr;
    bool good_ = false, outage_ = false, return_ = false;
    std::int64_t count_ = 0;
    std::uint64_t refusals_ = 0;
    int cutsBefore_ = 0;

    bool cut_ = false;  ///< the own network
    int cuts_ = 0;      ///< its changes
    std::chrono::milliseconds cutAt_{0};
    std::size_t excused_ = 0, blamed_ = 0;  ///< checks, and cuts in which there were some

    int checks_ = 0;
    bool ends_ = false;
    seconds forward_{0}, back_{0};
};

struct Ledgers : testing::TestWithParam<unsigned> {
    static void TearDownTestSuite() {
        const auto& [primary, backup, nowhere] = told;
        EXPECT_TRUE(played < 10 || (primary > 0 && backup > 0 && nowhere > 0)) << primary << "," << backup << "," << nowhere;
    }
    static inline std::array<int, 3> told{};
    static inline int played = 0;
};

TEST_P(Ledgers, EachOutageIsToldOnceAndNobodyIsForgotten) {
    const Trial trials[] = {
        {DateTime::Of(2027, 3, 28, 1, 0, 0), "mail12", "watch", true, Trial::Works, 1h, 1h, &VirtualWorld::MoveZone},
        {DateTime::Of(2027, 10, 31, 1, 0, 0), "mail2", "", false, Trial::Works, 2h, -1h, &VirtualWorld::MoveZone},
        {DateTime::Of(2028, 2, 28, 21, 0, 0), "backup.example", "", true, Trial::Refuses, 2h, -2h, &VirtualWorld::MoveClock},
        {DateTime::Of(2026, 11, 21, 20, 0, 0), "backup.example", "", true, Trial::Refuses, 3h, 960h, &VirtualWorld::MoveClock},
        {DateTime::Of(2026, 11, 22, 20, 0, 0), "backup.example", "", true, Trial::Errs, 2h, 1h, &VirtualWorld::MoveClock},
    };
    Trial trial = trials[GetParam() % 5];
    trial.guarded = GetParam() % 10 < 5;
    SCOPED_TRACE(trial.start.Text());
    ++played;
    Ledger(trial, GetParam() / 10, told).Play();
}
// The short run has seeds in which the store refuses at the moments that matter: at the end of the transaction of a return, and
// when the good statuses are read.
INSTANTIATE_TEST_SUITE_P(Seed, Ledgers, kLong ? testing::Range(0U, 1000U) : testing::Range(40U, 50U));

}  // namespace korvane::ledger_test
