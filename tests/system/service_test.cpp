// The whole program as a service: what it tells the manager that started it, what it keeps to itself, and its start.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/text.h"
#include "support/loopback_server.h"
#include "system/service_run.h"

namespace korvane::test {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using std::chrono::steady_clock;

constexpr const char* kStarted = "STATUS=Service Started.";

std::string OldEntries(int count) {
    std::string text = "[Settings]\nBegin=1\nNumURLs=" + std::to_string(count) + "\n";
    for (int n = 1; n <= count; ++n)
        text +=
            "[Settings" + std::to_string(n) + "]\nURL=127.0.0.1\nPRETTY=entry\nType=PING\nServPort=ICMP\nTries=3\nTimeout=10\n";
    return text;
}

TEST_F(Service, TellsWhenItIsReadyAndThatItIsAliveAndFollowsPauses) {
    const LoopbackServer silent([](LoopbackServer::Peer& peer) { peer.ReadToEnd(); });
    Prepare("Begin=0\n", DueEntry("TCP", "127.0.0.1", silent.Port(), ", strExpectedText, nTimeout", ", '220', 300"));
    Start({"WATCHDOG_USEC=2000000"});
    ASSERT_TRUE(Waited([&] { return silent.Connections() > 0; })) << home.Read("output");
    // While the check waits, well before the manager would lose its patience.
    ASSERT_TRUE(manager->Hears("WATCHDOG=1", kLimit, manager->Count("WATCHDOG=1") + 4));
    auto last = steady_clock::time_point::max();  // nothing came before the first
    for (const auto& word : manager->Told()) {
        if (word.text != "WATCHDOG=1") continue;
        EXPECT_LT(word.came - std::exchange(last, word.came), 2s);
    }
    EXPECT_EQ(manager->Told()[0].text, kStarted);
    EXPECT_EQ(manager->Told()[1].text, kReady);

    struct Case {
        int signal;
        std::string status;
    };
    for (const auto& [signal, status] :
         {Case{SIGUSR1, "Service Paused."}, Case{SIGUSR1, "Service Already Paused."},
          Case{SIGUSR2, "Service Continuing (monitoring again)"}, Case{SIGUSR2, "Service Still Continuing."}}) {
        process->Signal(signal);
        EXPECT_TRUE(manager->Hears("STATUS=" + status, kLimit)) << status;
    }
    EXPECT_EQ(manager->Count(kReady), 1);
}

TEST_F(Service, GreetingCountsForThisProcessAndNotForItsChildren) {
    struct Case {
        std::string execPid;
        bool service;
    };
    for (const auto& [execPid, service] : {Case{"1", false}, Case{"$$", true}}) {
        SCOPED_TRACE(execPid);
        const std::string dump = home.Path("dump.sh");
        home.Write("dump.sh",
                   "#!/bin/sh\nenv > " + home.Path("new") + "\nmv " + home.Path("new") + " " + home.Path("env") + "\n");
        fs::permissions(dump, fs::perms::owner_all);
        Prepare("Begin=0\nServer=127.0.0.9\n",
                DueEntry("TCP", "127.0.0.1", RefusingPort(), ", nTries, strCMD", ", 1, '" + dump + "'"));
        manager = std::make_unique<ServiceManagerEnd>();
        StartBy({"NOTIFY_SOCKET=" + manager->Address(), "WATCHDOG_USEC=1000000", "KORVANE_TEST=1", "sh", "-c",
                 "SYSTEMD_EXEC_PID=" + execPid + " WATCHDOG_PID=$$ exec env \"$0\" \"$@\""},
                home);
        // The failure takes an id, which is the last thing that is written to the settings file.
        const auto done = [&] { return fs::exists(home.Path("env")) && Query("SELECT count(*) FROM Failures") == "1\n"; };
        ASSERT_TRUE(Waited(done)) << home.Read("output");
        const std::string environment = "\n" + home.Read("env");
        EXPECT_TRUE(Holds(environment, "\nKORVANE_TEST=1\n"));
        for (const char* variable : {"NOTIFY_SOCKET", "WATCHDOG_USEC", "WATCHDOG_PID", "SYSTEMD_EXEC_PID"})
            EXPECT_FALSE(Holds(environment, std::string("\n") + variable + "=")) << variable;
        fs::remove(home.Path("env"));

        // What a service is told while it runs lasts as long as its run; a program that was started by hand saves.
        const std::string before = home.Read("kvurlwatchn.ini");
        process->Signal(SIGTERM);
        ASSERT_TRUE(process->Ended(kLimit));
        EXPECT_EQ(process->ExitStatus(), 0);
        EXPECT_EQ(home.Read("kvurlwatchn.ini") == before, service);
        EXPECT_EQ(Holds(home.Read("kvurlwatchn.ini"), "SuccessLT="), !service);
        EXPECT_EQ(manager->Told().empty(), !service);
    }
}

TEST_F(Service, IsReadyBehindItsStartAndStopsBeforeIt) {
    constexpr int kEntries = 500;
    const std::string all = std::to_string(kEntries) + "\n";
    for (const bool stopped : {true, false}) {
        SCOPED_TRACE(stopped);
        if (stopped) home.Write("kvurlwatchn.ini", OldEntries(kEntries));
        Start();
        ASSERT_TRUE(manager->Hears(kStarted, kLimit));
        if (stopped) {
            EXPECT_EQ(manager->Count(kReady), 0);
            Stop();
            EXPECT_NE(Query("SELECT count(*) FROM Servers"), all) << "it did not wait for the rest";
        } else {
            ASSERT_TRUE(manager->Hears(kReady, kLimit)) << home.Read("output");
            EXPECT_EQ(Query("SELECT count(*) FROM Servers"), all);
        }
    }
}

TEST_F(Service, SaysThatItsHomeCannotBeWritten) {
    std::vector<std::string> words;
    if (geteuid() == 0) words = {"setpriv", "--bounding-set=-dac_override", "env"};  // not even root may then
    const std::string path = fs::path(home.Path()).parent_path();
    for (const bool setUpBefore : {false, true}) {
        SCOPED_TRACE(setUpBefore);
        if (setUpBefore) Prepare("Begin=0\n");
        const PrivateFolder elsewhere;
        fs::permissions(path, fs::perms::owner_read | fs::perms::owner_exec);
        StartBy(words, elsewhere);
        ASSERT_TRUE(process->Ended(kLimit));
        fs::permissions(path, fs::perms::owner_all);
        EXPECT_EQ(process->ExitStatus(), 1);
        EXPECT_EQ(elsewhere.Read("output"),
                  "Korvane: Korvane can't start: The folder " + path + " cannot be written: Permission denied\n");
    }
}

}  // namespace
}  // namespace korvane::test
