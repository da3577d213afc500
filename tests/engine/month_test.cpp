// A month in which hosts and mail servers fail at random, with the program's own failure actions. What people, traces and
// commands should have got is known from a ledger beside the engine: of what the hosts answered and what the mail servers saw,
// never of what the engine says.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <random>
#include <utility>

#include "base/text.h"
#include "engine/engine_world.h"
#include "engine/failure_actions.h"
#include "notify/mail_world.h"
#include "support/recording_processes.h"
#include "support/virtual_mail_server.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

#ifdef __SANITIZE_ADDRESS__
constexpr int kMostDays = 3;
#else
constexpr int kMostDays = 30;
#endif
constexpr std::size_t kEntries = 500;
constexpr std::size_t kHostsPerNet = 250;
constexpr const char* kHome = "/home/korvane";

struct Run {
    unsigned seed;
    int days;
    const char* ServerBackup;
    bool bUsesBackup;
    const char* SMTPUser1;  ///< blank: the plain mailer
    const char* SMTPUser2;
};

/// A mail server that has good and bad times.
class MoodyMailServer {
public:
    struct News {
        int connections;  ///< tried
        std::vector<VirtualMailServer::Mail> mails;
    };

    explicit MoodyMailServer(VirtualServer& port) : port_(port), server_(port) {
        server_.refuse = [this](const std::string& line) { return !relays_ && ToLower(line).starts_with("rcpt to:"); };
    }

    void ChangeMood(std::mt19937& random) {
        const auto mood = random() % 10;
        takesMail_ = mood < 6;
        relays_ = mood != 6;
        if (mood <= 6) server_.Serve(port_);
        if (mood == 5) port_.Accept(4s);
        if (mood == 7) port_.Anew().Refuse();
        if (mood == 8) port_.Anew().Silent();
        if (mood == 9) BreakOff(random() % 5);
    }
    bool TakesMail() const { return takesMail_; }

    /// What came since the last call.
    News TakeNews() {
        const int before = std::exchange(connections_, port_.Connections());
        return {connections_ - before, std::exchange(server_.mails, {})};
    }

private:
    void BreakOff(std::size_t answers) {
        port_.Anew().Speak("220 mail.example ready\r\n");
        for (const char* answer : {"250 ok\r\n", "250 ok\r\n", "250 ok\r\n", "354 go on\r\n"}) {
            if (answers-- == 0) break;
            port_.ExpectAnyLine().Speak(answer, 1ms);
        }
        port_.Reset(1ms);
    }

    VirtualServer& port_;
    VirtualMailServer server_;
    int connections_ = 0;
    bool takesMail_ = true;
    bool relays_ = true;
};

/// An entry as it was set up, and its page in the ledger.
struct Watched {
    std::string Text(const char* column) const { return row.at(column).Text(); }
    bool Is(const char* column) const { return row.at(column).Bool(); }

    Row row = {};
    int nTries = 0;
    int troubles = 0;  ///< echoes that are still to fail
    int inARow = 0;
    std::vector<std::pair<int, std::string>> failures = {};  ///< the count of each failed check, and what its strAction must hold
};

struct MailCounts {
    int primary = 0, backup = 0, nowhere = 0, noRecipient = 0, notWanted = 0;
    int Sum() const { return primary + backup + nowhere + noRecipient + notWanted; }
};

class Month {
public:
    explicit Month(const Run& run) : run_(run), days_(std::min(run.days, kMostDays)), random_(run.seed) {
        engine_.person.keepOnlyCounts = true;
        engine_.sound.keep = false;
        engine_.actions.doer = &actions_;
        for (const auto& [key, value] : {std::pair{"Server", "mail.example"},
                                         {"SMTPUser1", run.SMTPUser1},
                                         {"ServerBackup", run.ServerBackup},
                                         {"SMTPUser2", run.SMTPUser2},
                                         {"Reboot", "True"},
                                         {"RebootAny", "False"}}) {
            engine_.settings.setKvSettingsColValue(key, value);
        }
        for (std::size_t i = 0; i < kEntries; ++i)
            AddEntry(i);
        engine_.echo.listener = [this](Ipv4Address address, const EchoReply& reply) { Hear(address, reply); };
        engine_.world.After(24h * days_ / 2, [this] {  // a router fails, and many hosts with it
            for (std::size_t i = 0; i < watched_.size(); i += 4)
                BeginTrouble(i, 3);
        });
        SweepLog();
    }

    void Play() {
        const bool wrong = engine_.world.RunUntil([] { return testing::Test::HasFailure(); }, 24h * days_);
        CloseCheck();
        ExpectRows();
        if (wrong) return;
        EXPECT_GT(checks_, 2 * days_ * static_cast<int>(kEntries));  // no interval is longer than half a day
        EXPECT_EQ(engine_.actions.calls.size(), static_cast<std::size_t>(down_.Sum() + up_.Sum()));
        for (const MailCounts* counts : {&down_, &up_}) {
            EXPECT_GT(counts->primary, 0);
            EXPECT_GT(counts->nowhere, 0);
            EXPECT_GT(counts->noRecipient, 0);
            EXPECT_EQ(counts->backup > 0, run_.bUsesBackup);
        }
    }

private:
    int Pick(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }
    static std::int64_t IdOf(std::size_t i) { return static_cast<std::int64_t>(i) + 1; }
    static std::string AddressOf(std::size_t i) {
        return "10.1." + std::to_string(i / kHostsPerNet) + "." + std::to_string(i % kHostsPerNet + 1);
    }
    VirtualHost& HostOf(std::size_t i) { return engine_.net.Host(AddressOf(i)); }

    void AddEntry(std::size_t i) {
        const std::string name = "e" + std::to_string(i);
        const int nTries = 1 + Pick(4);
        watched_.push_back({.row = {{"ID", IdOf(i)},
                                    {"strDesc", name},
                                    {"strType", "PING"},
                                    {"strAddress_IP", AddressOf(i)},
                                    {"strExpectedText", "1000"},
                                    {"bIsMonitoring", true},
                                    {"nTries", nTries},
                                    {"nIntervalSeconds", 3600 * (6 + Pick(7))},
                                    {"dtNextCheck", engine_.world.clock.Now() + std::chrono::seconds(Pick(6 * 3600))},
                                    {"strDownTime1", i % 13 == 12 ? "3:30" : ""},
                                    {"nDownDuration1", 90},
                                    {"strCMD", i % 2 == 0 ? "" : "mend " + name},
                                    {"strCMDUP", i % 3 == 0 ? "" : "greet " + name},
                                    {"strEmailList1", i % 10 == 9 ? "" : name + "@x"},
                                    {"strEmailFrom", "watch@x"},
                                    {"strEmailText", "alarm"},
                                    {"bSendUpNotify", i % 5 != 3},
                                    {"bNotSendBody", i % 7 == 6}},
                            .nTries = nTries});
        engine_.database.AddRow("Servers", watched_.back().row);
        HostOf(i).Echo(10ms);
    }

    // The answer to one check has come; all that is seen from here to the next one follows from it.
    void Hear(Ipv4Address address, const EchoReply& reply) {
        CloseCheck();
        const auto bytes = std::bit_cast<std::array<std::uint8_t, 4>>(address);
        const std::size_t i = bytes[2] * kHostsPerNet + bytes[3] - 1;
        Watched& entry = watched_.at(i);
        const bool good = reply.answered && reply.status == 0 && reply.roundTripTime <= 1000ms;
        checked_ = i;
        recovered_ = good && entry.inARow >= entry.nTries;
        entry.inARow = good ? 0 : entry.inARow + 1;
        reached_ = entry.inARow == entry.nTries;
        ++checks_;
        if (!good) entry.failures.emplace_back(entry.inARow, "None.");
        Continue(i, good);
        if (engine_.world.Ticks() < moodUntil_) return;
        moodUntil_ = engine_.world.Ticks() + std::chrono::minutes(10 + Pick(200));
        (Pick(2) == 0 ? primary_ : backup_).ChangeMood(random_);
    }

    void Continue(std::size_t i, bool good) {
        if (!good && --watched_[i].troubles == 0) HostOf(i).Echo(10ms);
        if (good && Pick(15) == 0) BeginTrouble(i, 1 + (Pick(50) == 0 ? 60 : Pick(Pick(2) == 0 ? 4 : 30)));
    }

    void BeginTrouble(std::size_t i, int troubles) {
        watched_[i].troubles = troubles;
        const int kind = Pick(3);
        if (kind == 0) HostOf(i).EchoSilent();
        if (kind == 1) HostOf(i).EchoStatus(3 * 256 + 1);
        if (kind == 2) HostOf(i).Echo(1500ms);
    }

    // Compares what was seen since the answer with what had to follow from it.
    void CloseCheck() {
        if (checked_ >= watched_.size()) return;
        Watched& entry = watched_[checked_];
        const std::string to = entry.Text("strEmailList1");
        SCOPED_TRACE(entry.Text("strDesc") + " before " + engine_.world.clock.Now().Text());
        const bool wanted = reached_ || (recovered_ && entry.Is("bSendUpNotify"));
        const bool asked = wanted && !to.empty();
        const bool byPrimary = Saw(primary_, asked);
        const bool byBackup = Saw(backup_, asked && !primary_.TakesMail() && run_.bUsesBackup);
        if (reached_) entry.failures.back().second = byPrimary || byBackup ? "successfully sent to: '" + to + " '" : "FAILED";
        if (reached_ || recovered_) {
            MailCounts& counts = reached_ ? down_ : up_;
            ++(byPrimary  ? counts.primary
               : byBackup ? counts.backup
               : asked    ? counts.nowhere
               : wanted   ? counts.noRecipient
                          : counts.notWanted);
        }
        ExpectStarted(entry);
    }

    /// Whether the server took a mail.
    bool Saw(MoodyMailServer& server, bool asked) {
        const MoodyMailServer::News news = server.TakeNews();
        EXPECT_EQ(news.connections, asked ? 1 : 0);
        EXPECT_EQ(news.mails.size(), asked && server.TakesMail() ? 1u : 0u);
        for (const VirtualMailServer::Mail& mail : news.mails)
            ExpectMail(mail);
        return !news.mails.empty();
    }

    void ExpectMail(const VirtualMailServer::Mail& mail) {
        const Watched& entry = watched_[checked_];
        const std::string name = entry.Text("strDesc");
        const std::string subject = reached_ ? "alarm (" + name + ") " : "SERVER BACK UP (alarm) " + name + " ";
        EXPECT_EQ(mail.recipients, std::vector<std::string>{"<" + entry.Text("strEmailList1") + ">"});
        EXPECT_TRUE(Holds(mail.text, "\r\nSubject: " + subject)) << mail.text;
        EXPECT_EQ(Holds(mail.text, reached_ ? "could not be reached" : "can be reached again!"), !entry.Is("bNotSendBody"))
            << mail.text;
    }

    void ExpectStarted(const Watched& entry) {
        const std::string trace = "/bin/sh '" + std::string(kHome) + "/kvlogs/KvTR" + std::to_string(IdOf(checked_)) + ".bat'";
        const std::string command = reached_ ? entry.Text("strCMD") : recovered_ ? entry.Text("strCMDUP") : "";
        std::vector<std::string> expected;
        if (reached_) expected.push_back(trace);
        if (!command.empty()) expected.push_back(command);
        std::vector<std::string> started;
        for (const auto& [line, style] : std::exchange(processes_.started, {}))
            started.push_back(line);
        EXPECT_EQ(started, expected);
    }

    void ExpectRows() {
        std::vector<std::size_t> seen(watched_.size());
        for (const Row& row : engine_.database.Query("SELECT IDParent, nFailCount, strAction FROM Failures ORDER BY dateFail")) {
            const auto i = static_cast<std::size_t>(row.at("IDParent").Int64()) - 1;
            const Watched& entry = watched_.at(i);
            SCOPED_TRACE(entry.Text("strDesc"));
            ASSERT_LT(seen[i], entry.failures.size());
            const auto& [count, told] = entry.failures[seen[i]++];
            const std::string strAction = row.at("strAction").Text();
            EXPECT_EQ(row.at("nFailCount").Int64(), count);
            EXPECT_EQ(strAction == "None.", count != entry.nTries) << strAction;
            EXPECT_TRUE(Holds(strAction, told)) << strAction;
        }
        for (std::size_t i = 0; i < seen.size(); ++i)
            EXPECT_EQ(seen[i], watched_[i].failures.size()) << watched_[i].Text("strDesc");
    }

    void SweepLog() {
        for (const std::string& path : engine_.files.Paths()) {
            if (path.starts_with(std::string(kHome) + "/Logs/")) engine_.files.Remove(path);
        }
        engine_.world.After(6h, [this] { SweepLog(); });
    }

    const Run run_;
    const int days_;
    std::mt19937 random_;
    EngineWorld engine_{DateTime::Of(2026, 11, 21, 15, 0, 0)};
    MoodyMailServer primary_{engine_.net.Host("mail.example").Port(25)};
    MoodyMailServer backup_{engine_.net.Host(run_.ServerBackup).Port(25)};
    VirtualTcpSocket sckesmtp_{engine_.net};
    VirtualTcpSocket plainSocket_{engine_.net};
    CountingGuids guids_;
    RecordingProcesses processes_;
    ServerEntries entries_{{engine_.store, engine_.world.clock, engine_.world.events, engine_.log, engine_.status,
                            engine_.settingsFile, engine_.ids, engine_.settings},
                           kHome};
    Dispatcher mail_{{sckesmtp_,
                      plainSocket_,
                      engine_.world.clock,
                      engine_.world.events,
                      engine_.person,
                      engine_.files,
                      guids_,
                      engine_.status,
                      engine_.log,
                      engine_.settings,
                      {}},
                     {}};
    TraceRoute trace_{{engine_.files, processes_, engine_.status, engine_.log}, kHome};
    CommandRunner runner_{{processes_, engine_.status, engine_.log}};
    ServerActions actions_{
        {engine_.store, engine_.world.clock, engine_.status, engine_.log, engine_.settings, entries_, mail_, trace_, runner_}};

    std::vector<Watched> watched_;
    std::chrono::milliseconds moodUntil_{0};

    // The check under way.
    std::size_t checked_ = kEntries;  ///< none yet
    bool reached_ = false;
    bool recovered_ = false;

    int checks_ = 0;
    MailCounts down_;
    MailCounts up_;
};

TEST(EachOutageIsToldOnce, InAMonthWithABackup) {
    Month({1, 30, "backup.example", true, "watch", ""}).Play();
}

TEST(EachOutageIsToldOnce, InFiveDaysWithTheShortestNameOfABackup) {
    Month({2, 5, "mail12", true, "", "watch"}).Play();
}

TEST(EachOutageIsToldOnce, InFiveDaysWithANameTooShortForABackup) {
    Month({3, 5, "mail2", false, "", ""}).Play();
}

}  // namespace
}  // namespace korvane
