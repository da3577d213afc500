// The program is stopped or killed at the worst moments: it ends at once, nothing is lost, and the next start goes on.
#include <array>
#include <future>
#include <random>

#include "support/world.h"
#include "system/servers.h"

namespace korvane::test::stops_test {

struct Stop {
    std::string settings, sql;
    std::function<bool(Program&)> amid;
    std::string end;                      ///< what it prints when that is over
    std::function<bool(Program&)> again;  ///< whether the next run is as far, or further
};

std::string OldEntries(int count) {
    std::string text = "bALLInDB=False\nBegin=1\nNumURLs=" + std::to_string(count) + "\n";
    for (int n = 1; n <= count; ++n)
        text += "[Settings" + std::to_string(n) + "]\nURL=127.0.0.1\nType=PING\nServPort=ICMP\nTries=3\nTimeout=10\n";
    return text;
}

void StopAmid(const Stop& stop) {
    SCOPED_TRACE(stop.end);
    Program program(stop.settings, stop.sql);
    const std::string counts =
        "SELECT count(*) FROM Failures; SELECT total(nSuccess + nFail) FROM Servers; "
        "SELECT count(*) FROM Servers WHERE dtNextCheck > datetime('now', 'localtime')";
    const std::string before = program.Query(counts);
    program.StartAsService();
    EXPECT_TRUE(Waited([&] { return stop.amid(program); })) << program.Output();
    program.Stop();
    EXPECT_FALSE(Holds(program.home.Read("output"), stop.end));
    EXPECT_TRUE(Holds(program.manager.Told(), "STOPPING=1\nSTATUS=Service Stopped.\n"));
    EXPECT_EQ(program.Query(counts), before);
    program.StartAsService();
    EXPECT_TRUE(Waited([&] { return stop.again(program); })) << program.Output();
    program.Stop(SIGKILL);
}

TEST(Stop, AmidAnythingLosesNothing) {
    KORVANE_NEEDS("aiosmtpd");
    const std::string port = ":" + std::to_string(kNobody), web = "127.0.1.1", talker = "127.0.2.1", post = "127.0.3.1";
    const Played silent(web + port + "=mute " + talker + port + "='mute 220 there' " + post + ":25=mute");
    const auto heard = [&silent](const std::string& word, std::size_t times) {
        return [&silent, word, times](Program&) { return Count(silent.Output(), word) == times; };
    };
    const auto tells = [](const std::string& word) {
        return [word](Program& program) { return Holds(program.manager.Told(), word); };
    };
    std::vector<std::future<void>> done;
    for (const Stop& stop : std::initializer_list<Stop>{
             {kBegin, Due("HTTP", web + "/page", kNobody, "", ", nTimeout = 300"), heard(web + port + " GET /page", 1),
              "HTTP failure", heard(web + port + " GET /page", 2)},
             {kBegin, Due("TCP", talker, kNobody, "220,HELO here,250", ", nTimeout = 300"),
              heard(talker + port + " HELO here", 1), "TCP Error", heard(talker + port + " HELO here", 2)},
             {"Server=" + post + "\n" + kBegin,
              Due("TCP", "127.0.0.1", kNobody, "", ", nTries = 1, strEmailList1 = 'a@b.example', strEmailFrom = 'c@b.example'"),
              heard("client of " + post, 1), "Trace", heard("client of " + post, 2)},
             {"Begin=0.2\n",
              "WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 300000) INSERT INTO Failures (ID, IDParent, "
              "dateFail, strReason) SELECT i, 1000 + i, '2026-11-21 08:00:00', printf('%0250d', i) FROM n",
              [](Program& program) { return fs::exists(program.home.At("COMPACTkvdata2.mdb")); }, "Done compacting",
              tells("READY=1\n")},
             {OldEntries(500), "", tells("Service Started."), "Waiting 1 minutes",
              [](Program& program) { return program.Query("SELECT count(*) FROM Servers") == "500\n"; }},
         })
        done.push_back(std::async(std::launch::async, StopAmid, stop));
}

// The whole program in time that flies, in a process of its own that is killed at any moment: while it checks, notes, compacts or
// publishes.
TEST(Stop, KillAtAnyMomentLeavesAllWhole) {
    Program program("Begin=1\n");
    for (const char* address : {"10.0.0.1", "10.0.0.2", "10.0.0.1"})
        program.Query(Due("TCP", address, 99, "220", ", nIntervalSeconds = 7"));
    const auto accounts = [&] { return std::stoi(program.Query("SELECT sum(nSuccess + nFail) FROM Servers")); };
    std::mt19937 random(11);
    for (int round = std::getenv("KORVANE_LONG") != nullptr ? 300 : 20; round > 0 && !HasFailure(); --round) {
        SCOPED_TRACE(round);
        int told[2], checks = accounts();
        ASSERT_EQ(pipe(told), 0);
        const int child = fork();
        if (child == 0) {
            World world({.home = program.home.Path()});
            VirtualServer& up = world.net.Host("10.0.0.1").Port(99).Speak("220 there\r\n");
            VirtualServer& down = world.net.Host("10.0.0.2").Port(99).Refuse();
            for (world.Start();; world.RunFor(5s)) {
                const int now = checks + up.Connections() + down.Connections();
                if (write(told[1], &now, sizeof now) != sizeof now) _exit(1);
            }
        }
        close(told[1]);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 400'000));  // any moment will do
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        while (read(told[0], &checks, sizeof checks) == sizeof checks)
            continue;
        close(told[0]);
        EXPECT_GE(accounts(), checks - 1);  // the last may have been under way
        program.ExpectWhole();
        EXPECT_EQ(Answer("sqlite3 " + program.home.At("kvdata2.mdb.BAK") + " 'PRAGMA integrity_check'"), "ok\n");
        EXPECT_EQ(Answer("grep -rLi '</html>' --include='*.htm' " + program.home.At("Reports")), "");
    }
}

// Several programs, each killed again and again while its entries fail and their mails go out.
TEST(Stop, KillAtAnyMomentLosesNoMailOfTheOutbox) {
    KORVANE_NEEDS("aiosmtpd");
    const bool isLong = std::getenv("KORVANE_LONG") != nullptr;
    const Played sink("127.0.0.25:25=login");
    const auto killed = [&](unsigned seed) {
        const std::string subject = "DOWN " + std::to_string(seed) + " of";
        Program program("MailOutbox=True\nServer=127.0.0.25\nSMTPUser1=operator\nSMTPPass1=open sesame\n" + kBegin);
        for (int i = 0; i < 6; ++i)
            program.Query(
                Due("TCP", "127.0.0.1", kNobody, "",
                    ", nTries = 1, nIntervalSeconds = 900, strEmailList1 = 'a@b.example', strEmailFrom = 'c@b.example', "
                    "strEmailText = '" +
                        subject + "'"));
        std::mt19937 random(seed);
        for (int round = isLong ? 125 : 3; round > 0 && !testing::Test::HasFailure(); --round) {
            SCOPED_TRACE(round);
            program.Start();
            std::this_thread::sleep_for(1500ms + std::chrono::milliseconds(random() % 4000));  // any moment will do
            program.Stop(SIGKILL);
            EXPECT_TRUE(Holds(program.Settings(), "MailOutbox=True")) << program.Settings();
            if (round > 1)
                program.Query("UPDATE Servers SET nTriesCur = 0, strCurStatus = 'UP', dtNextCheck = '2026-01-01 00:00:00'");
        }
        program.Start();
        EXPECT_TRUE(
            program.Becomes("SELECT count(*) FROM MailOutbox WHERE strState <> 'sent' UNION ALL SELECT count(*) FROM "
                            "Servers WHERE nTriesCur = 0",
                            "0\n0\n"))
            << program.Query("SELECT * FROM MailOutbox") << program.Output();
        program.Stop(SIGKILL);
        const std::string outages = program.Query("SELECT count(*) FROM Failures WHERE nFailCount = nFailMax");
        EXPECT_GT(std::stoi(outages), 5);
        EXPECT_EQ(program.Query("SELECT count(DISTINCT strMessageID) FROM MailOutbox WHERE strReceipt LIKE '250%'"), outages);
        EXPECT_EQ(Answer("cd " + sink.folder.At("mails") + "; grep -l '" + subject +
                         "' * | xargs grep -hi ^Message-ID: | sort -u | wc -l"),
                  outages);
    };
    std::vector<std::future<void>> done;
    for (unsigned seed = 1; seed <= (isLong ? 8 : 4); ++seed)
        done.push_back(std::async(std::launch::async, killed, seed));
}

}  // namespace korvane::test::stops_test
