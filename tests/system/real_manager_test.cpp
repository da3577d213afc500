// Where a service manager runs that this user can install services with: the program as one of its services, from the
// installation to the removal.
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/program_runner.h"
#include "platform/linux/systemd_manager.h"
#include "platform/qt/qt_events.h"
#include "support/qt_application.h"
#include "system/program.h"

namespace korvane::test {
namespace {

std::string Variable(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value == nullptr ? "" : value;
}

TEST(RealManager, StartsRestartsAndStopsTheProgram) {
    NeedQtApplication();
    const SystemClock clock;
    QtEvents events;
    LinuxFiles files;
    SystemdPlace place = SystemdPlaceOfThisUser(Variable);
    place.lingerFile.clear();  // it must not be changed for a test
    SystemdManager manager{
        {files, ProgramRunner(events, clock)}, place, SystemdGreeting([](const std::string&) { return ""; }, 1)};
    if (!manager.IsPresent()) GTEST_SKIP() << "no service manager runs here for this user";
    if (kDist.starts_with("/tmp/")) GTEST_SKIP() << "a service has temporary folders of its own and does not see " << kDist;
    const bool user = place.scope == UnitScope::User;
    const std::string name = "korvane-test-" + std::to_string(getpid());
    const std::string home = (user ? Variable("HOME") : "/var/lib") + "/" + name;
    fs::create_directory(home);
    const auto ask = [&](const std::string& words) {
        return TrimAll(Answer("systemctl " + std::string(user ? "--user " : "") + words + " " + UnitName(name) + " 2>&1"));
    };
    const auto runsAsNot = [&](const std::string& process) {
        return Waited([&] { return ask("show -P ActiveState") == "active" && ask("show -P MainPID") != process; });
    };

    const ManagerAnswer installed = manager.Install(name, {.program = kDist + "/korvanecore", .home = home});
    EXPECT_TRUE(installed.done) << installed.words;
    EXPECT_TRUE(manager.Start(name).done);
    EXPECT_TRUE(runsAsNot("0")) << ask("status");
    EXPECT_EQ(ask("show -P StatusText"), "Service Started.");
    const std::string first = ask("show -P MainPID");
    ask("kill --signal=KILL");
    EXPECT_TRUE(runsAsNot(first)) << ask("status");
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(ask("stop"), "");
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 5s);
    EXPECT_EQ(ask("show -P Result") + ask("show -P ExecMainStatus"), "success0");
    EXPECT_TRUE(manager.Uninstall(name, home).done);
    EXPECT_EQ(ask("show -P LoadState"), "not-found");
    fs::remove_all(home);
}

}  // namespace
}  // namespace korvane::test
