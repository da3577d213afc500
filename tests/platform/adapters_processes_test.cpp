// Commands as real processes: what they are given, what becomes of them, and that nothing of them stays. And what the kernel is
// asked beside.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "base/error.h"
#include "base/text.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_guid_source.h"
#include "platform/linux/linux_processes.h"
#include "platform/linux/linux_system_info.h"
#include "platform/qt/qt_events.h"
#include "platform/wait.h"
#include "support/qt_application.h"
#include "support/temporary_folder.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

fs::path ProcessFolder(int pid) {
    return fs::path("/proc") / std::to_string(pid);
}

std::size_t OpenDescriptors() {
    const fs::directory_iterator all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(fs::begin(all), fs::end(all)));
}

class ProcessesTest : public testing::Test {
protected:
    int Start(const std::string& command) { return processes.Shell(command, WindowStyle::Normal); }
    /// For what happens outside of this process and so raises no event in it.
    template <class Condition>
    bool Eventually(Condition condition) {
        const auto deadline = clock.GetTickCount() + 30s;
        while (!condition()) {
            if (clock.GetTickCount() > deadline) return false;
            events.WaitForEvent(5ms);
        }
        return true;
    }
    /// Ended, and taken out of the system's table.
    bool Vanishes(int pid) {
        return WaitFor(events, clock, 30s, [&] { return !fs::exists(ProcessFolder(pid)); });
    }
    /// What a command wrote into the file "out", which it moves to its place as a whole.
    std::string Output() {
        Eventually([&] { return fs::exists(folder.Path() + "/out"); });
        return ReadAll(folder.Path() + "/out");
    }
    std::string InFolder(const std::string& command) {
        return "cd " + folder.Path() + "; { " + command + "; } > new; mv new out";
    }

    const bool application = (NeedQtApplication(), true);
    SystemClock clock;
    QtEvents events;
    LinuxProcesses processes{events};
    TemporaryFolder folder;
};

TEST_F(ProcessesTest, SaysWhyACommandCannotStart) {
    const std::string data = folder.Path() + "/data";
    std::ofstream(data) << "nothing to run";
    const std::pair<std::string, std::string> cases[] = {
        {"no-such-program -x", "No such file or directory"},
        {folder.Path() + "/missing", "No such file or directory"},
        {data, "Permission denied"},
        {" \t\r\n", "The command is blank"},
    };
    for (const auto& [command, reason] : cases) {
        try {
            Start(command);
            ADD_FAILURE() << command;
        } catch (const Error& error) {
            EXPECT_EQ(error.what(), reason) << command;
        }
    }
}

TEST_F(ProcessesTest, ACommandHasNothingOfOurs) {
    const int ours = ::open("/dev/zero", O_RDONLY);  // without O_CLOEXEC, as a careless library would leave it
    sigset_t blocked, before;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto pipes = ::signal(SIGPIPE, SIG_IGN);
    const int pid = Start("sleep 1000");
    ::signal(SIGPIPE, pipes);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    ::close(ours);

    // What the program itself has open while it is being loaded comes and goes; what it had from us would stay.
    std::set<std::string> open;
    const bool onlyItsOwn = Eventually([&] {
        open.clear();
        std::error_code gone;
        for (const auto& file : fs::directory_iterator(ProcessFolder(pid) / "fd", gone))
            open.insert(file.path().filename().string() + " " + fs::read_symlink(file, gone).string());
        return open == std::set<std::string>{"0 /dev/null", "1 /dev/null", "2 /dev/null"};
    });
    EXPECT_TRUE(onlyItsOwn) << testing::PrintToString(open);
    const std::string status = ReadAll(ProcessFolder(pid) / "status");
    EXPECT_TRUE(Holds(status, "SigBlk:\t0000000000000000\n")) << status;
    const std::string ignored = status.substr(status.find("SigIgn:") + 8, 16);
    EXPECT_EQ(std::stoull(ignored, nullptr, 16) & 0x7FFFFFFF, 0U) << ignored;  // above are the C library's own two
    EXPECT_EQ(::getsid(pid), pid);
    EXPECT_EQ(fs::read_symlink(ProcessFolder(pid) / "cwd"), fs::current_path());

    ::kill(pid, SIGKILL);
    EXPECT_TRUE(Vanishes(pid));
}

TEST_F(ProcessesTest, AFloodOfOutputGoesNowhereAndHoldsNothingUp) {
    const int pid = Start("yes");
    const bool flooded = Eventually([&] {
        const std::string io = ReadAll(ProcessFolder(pid) / "io");
        return std::stoull(io.substr(io.find("wchar:") + 6)) > 10'000'000;
    });
    ::kill(pid, SIGTERM);
    EXPECT_TRUE(flooded);
    EXPECT_TRUE(Vanishes(pid));
}

TEST_F(ProcessesTest, TheShellReadsWhatIsWrittenForIt) {
    std::ofstream(folder.Path() + "/script")
        << "echo from the script > " + folder.Path() + "/new; mv " + folder.Path() + "/new " + folder.Path() + "/out";
    fs::permissions(folder.Path() + "/script", fs::perms::owner_all);
    const std::pair<std::string, std::string> cases[] = {
        {InFolder("echo 'two  blanks' \"$((1 + 1))\" | tr b B"), "two  Blanks 2\n"},
        {InFolder("no-such-program; echo $?"), "127\n"},
        {folder.Path() + "/script", "from the script\n"},  // which names no interpreter
    };
    for (const auto& [command, output] : cases) {
        const int pid = Start(command);
        EXPECT_EQ(Output(), output) << command;
        EXPECT_TRUE(Vanishes(pid)) << command;
        fs::remove(folder.Path() + "/out");
    }
}

TEST_F(ProcessesTest, ThousandsOfCommandsLeaveNothing) {
    const std::size_t before = OpenDescriptors();
    std::vector<int> pids;
    for (int i = 0; i < 1000; ++i)
        pids.push_back(Start("true"));
    EXPECT_LT(OpenDescriptors(), before + 150);  // also while none of them has been reaped
    for (const int pid : pids)
        ASSERT_TRUE(Vanishes(pid));
    EXPECT_LE(OpenDescriptors(), before + 1);
}

TEST(LinuxGuidSourceTest, GivesRandomOnesOfVersion4) {
    LinuxGuidSource guids;
    std::set<std::uint32_t> firsts;
    for (int i = 0; i < 100; ++i) {
        const auto guid = guids.CoCreateGuid();
        ASSERT_TRUE(guid);
        EXPECT_EQ(guid->data3 >> 12, 4);
        EXPECT_EQ(guid->data4[0] >> 6, 2);
        firsts.insert(guid->data1);
    }
    EXPECT_GT(firsts.size(), 95U);
}

TEST(LinuxSystemInfoTest, SplitsTheRelease) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"6.1.0-13-amd64", "6.1", "0-13-amd64"}, {"6.12-rc1", "6.12", "rc1"}, {"6", "6", ""}, {"6.1", "6.1", ""}, {"", "", ""},
    };
    for (const auto& [release, version, build] : cases) {
        const SystemVersion split = VersionOfRelease("Linux", release);
        EXPECT_EQ(split.version, version) << release;
        EXPECT_EQ(split.build, build) << release;
    }
    EXPECT_EQ(LinuxSystemInfo().Version().platform, "Linux");
}

}  // namespace
}  // namespace korvane
