// Where a service manager runs that this user can install services with: the program as one of its services, from the
// installation to the removal.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/text.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/systemd_manager.h"
#include "platform/qt/qt_events.h"
#include "support/qt_application.h"

namespace korvane::test {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr auto kLimit = 60s;
constexpr auto kLongestStop = 5s;

SystemdPlace PlaceWithoutLinger() {
    SystemdPlace place = SystemdPlaceOfThisUser(EnvironmentVariable);
    place.lingerFile.clear();  // it must not be changed for a test
    return place;
}

class RealManager : public testing::Test {
protected:
    void SetUp() override {
        if (!manager_.IsPresent()) GTEST_SKIP() << "no service manager runs here for this user";
        if (program_.program.starts_with("/tmp/") || program_.program.starts_with("/var/tmp/")) {
            GTEST_SKIP() << "a service has temporary folders of its own and does not see " << program_.program;
        }
        std::string home =
            (place_.scope == UnitScope::System ? "/var/lib" : EnvironmentVariable("HOME")) + "/korvane-test-XXXXXX";
        if (mkdtemp(home.data()) == nullptr) throw std::runtime_error("no folder " + home);
        program_.home = home;
    }
    void TearDown() override {
        if (program_.home.empty()) return;
        manager_.Uninstall(name_, program_.home);
        fs::remove_all(program_.home);
    }

    ProgramResult Ask(std::vector<std::string> words) const {
        if (place_.scope == UnitScope::User) words.insert(words.begin(), "--user");
        words.insert(words.begin(), "systemctl");
        words.push_back(UnitName(name_));
        return run_(words, kLimit);
    }
    std::string Property(const std::string& property) const { return TrimAll(Ask({"show", "-P", property}).output); }
    template <class Condition>
    bool Waited(Condition condition) {
        const auto deadline = clock_.GetTickCount() + kLimit;
        while (!condition()) {
            if (clock_.GetTickCount() > deadline) return false;
            events_.WaitForEvent(100ms);
        }
        return true;
    }

    const bool application_ = (NeedQtApplication(), true);
    SystemClock clock_;
    QtEvents events_;
    LinuxFiles files_;
    const RunProgram run_ = ProgramRunner(events_, clock_);
    const SystemdPlace place_ = PlaceWithoutLinger();
    const std::string name_ = "korvane-test-" + std::to_string(getpid());
    ServiceProgram program_{.program = std::string(KORVANE_DIST_DIR) + "/korvanecore", .home = ""};
    SystemdManager manager_{{files_, run_}, place_, SystemdGreeting([](const std::string&) { return ""; }, getpid())};
};

TEST_F(RealManager, StartsRestartsAndStopsTheProgram) {
    const ManagerAnswer installed = manager_.Install(name_, program_);
    ASSERT_TRUE(installed.done) << installed.words;
    ASSERT_TRUE(manager_.Start(name_).done);
    ASSERT_TRUE(Waited([&] { return Property("ActiveState") == "active"; })) << Ask({"status"}).output;
    EXPECT_EQ(Property("StatusText"), "Service Started.");

    const std::string first = Property("MainPID");
    Ask({"kill", "--signal=KILL"});
    EXPECT_TRUE(Waited([&] { return Property("ActiveState") == "active" && Property("MainPID") != first; }));

    const auto begun = clock_.GetTickCount();
    EXPECT_EQ(Ask({"stop"}).status, 0);
    EXPECT_LT(clock_.GetTickCount() - begun, kLongestStop);
    EXPECT_EQ(Property("Result"), "success");
    EXPECT_EQ(Property("ExecMainStatus"), "0");

    EXPECT_TRUE(manager_.Uninstall(name_, program_.home).done);
    EXPECT_EQ(Property("LoadState"), "not-found");
}

}  // namespace
}  // namespace korvane::test
