// Programs that are run to their end while the event pump goes on.
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>

#include "base/error.h"
#include "base/text.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/program_runner.h"
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_timer.h"
#include "platform/wait.h"
#include "support/qt_application.h"
#include "support/temporary_folder.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

class ProgramRunnerTest : public testing::Test {
protected:
    ProgramResult Shell(const std::string& line) { return run({"sh", "-c", line}, 30s); }

    const bool application = (NeedQtApplication(), true);
    QtEvents events;
    SystemClock clock;
    RunProgram run = ProgramRunner(events, clock);
};

TEST_F(ProgramRunnerTest, GivesTheStatusAndWhatWasSaid) {
    EXPECT_EQ(Shell("echo out; echo err >&2; exit 3").output, "out\nerr\n");
    EXPECT_EQ(Shell("exit 3").status, 3);
    EXPECT_EQ(Shell("kill -9 $$").status, 137);
    EXPECT_EQ(Shell("cat; echo read").output, "read\n");
    EXPECT_EQ(run({"printf", "%s|", "a b", "$HOME"}, 30s).output, "a b|$HOME|");
    EXPECT_EQ(Shell("head -c 200000 /dev/zero").output.size(), 65536u);
    const int leftBehind = std::stoi(Shell("sleep 600 & echo $!").output);  // it holds the pipe, and does not hold us up
    EXPECT_EQ(::kill(leftBehind, SIGKILL), 0);
    EXPECT_THROW(run({"no-such-program"}, 30s), Error);
}

TEST_F(ProgramRunnerTest, TheLimitEndsItWithAllThatItStarted) {
    const TemporaryFolder folder;
    const std::string pid = folder.Path() + "/pid";
    QtTimers timers;
    const auto timer = timers.NewTimer("tick");
    int ticks = 0;
    timer->OnTick([&] { ++ticks; });
    timer->SetInterval(10ms);
    timer->SetEnabled(true);
    try {
        run({"sh", "-c", "sleep 600 & echo $! > " + pid + "; wait"}, 2s);
        ADD_FAILURE() << "it has not ended";
    } catch (const Error& error) {
        EXPECT_STREQ(error.what(), "sh did not answer within 2 s");
    }
    EXPECT_GT(ticks, 0);
    const std::string stat = "/proc/" + TrimAll(ReadAll(pid)) + "/stat";  // its end is the business of whoever inherits it
    const auto ended = [&] {
        const std::string text = ReadAll(stat);
        return text.empty() || Holds(text, ") Z ");
    };
    EXPECT_TRUE(WaitFor(events, clock, 30s, ended));
}

}  // namespace
}  // namespace korvane
