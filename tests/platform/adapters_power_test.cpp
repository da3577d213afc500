// What would be run to end the session or the machine's run. Nothing here runs it: the starter is always one that writes down.
#include <gtest/gtest.h>

#include "base/error.h"
#include "platform/linux/linux_power.h"
#include "support/temporary_folder.h"

namespace korvane {
namespace {

using Words = std::vector<std::string>;

void NeverStarted(const Words& words) {
    ADD_FAILURE() << words.front();
}

TEST(LinuxPower, KnowsTheCommandOfEachAction) {
    using enum PowerAction;
    const LinuxPower::Machine atTheDesk{PowerSystem::ServiceManager, "/sbin/shutdown", "c2", 1000};
    const LinuxPower::Machine service{PowerSystem::ServiceManager, "/sbin/shutdown", "", 1000};
    const LinuxPower::Machine without{PowerSystem::ShutdownCommand, "/sbin/shutdown", "", 0};
    const LinuxPower::Machine unknown{PowerSystem::Unknown, "/sbin/shutdown", "c2", 1000};
    struct Case {
        const LinuxPower::Machine& machine;
        PowerAction action;
        Words command;
    };
    const Case cases[] = {
        {atTheDesk, LogOff, {"loginctl", "terminate-session", "c2"}},
        {atTheDesk, ForcedLogOff, {"loginctl", "kill-session", "--signal=SIGKILL", "c2"}},
        {atTheDesk, ShutDown, {"systemctl", "poweroff"}},
        {atTheDesk, ForcedShutDown, {"systemctl", "poweroff", "--force"}},
        {atTheDesk, Reboot, {"systemctl", "reboot"}},
        {service, LogOff, {"loginctl", "terminate-user", "1000"}},
        {service, ForcedLogOff, {"loginctl", "kill-user", "--signal=SIGKILL", "1000"}},
        {without, LogOff, {}},
        {without, ForcedLogOff, {}},
        {without, ShutDown, {"/sbin/shutdown", "-h", "-P", "now"}},
        {without, ForcedShutDown, {"/sbin/shutdown", "-h", "-P", "now"}},
        {without, Reboot, {"/sbin/shutdown", "-r", "now"}},
        {unknown, LogOff, {}},
        {unknown, Reboot, {}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(LinuxPower(NeverStarted, c.machine).CommandFor(c.action), c.command);
}

TEST(LinuxPower, StartsTheCommandOnceAndSaysWhyItCouldNot) {
    std::vector<Words> started;
    LinuxPower managed([&](const Words& words) { started.push_back(words); }, {.system = PowerSystem::ServiceManager});
    managed.Request(PowerAction::Reboot);
    EXPECT_EQ(started, (std::vector<Words>{{"systemctl", "reboot"}}));

    const auto reason = [](LinuxPower power, PowerAction action) -> std::string {
        try {
            power.Request(action);
        } catch (const Error& error) {
            return error.what();
        }
        return "";
    };
    const auto missing = [](const Words&) { throw Error("No such file or directory", 2); };
    EXPECT_EQ(reason({missing, {.system = PowerSystem::ServiceManager}}, PowerAction::ShutDown),
              "systemctl: No such file or directory");
    EXPECT_EQ(reason({NeverStarted, {.system = PowerSystem::ShutdownCommand}}, PowerAction::LogOff),
              "Nothing on this machine can do it");
}

TEST(LinuxPower, FindsWhatThisMachineHas) {
    const TemporaryFolder folder;
    const bool managed = ThisMachine("/no/such/file").system == PowerSystem::ServiceManager;
    EXPECT_EQ(ThisMachine(folder.Path()).system, managed ? PowerSystem::ServiceManager : PowerSystem::ShutdownCommand);
    EXPECT_EQ(ThisMachine("/no/such/file").system, managed ? PowerSystem::ServiceManager : PowerSystem::Unknown);
}

}  // namespace
}  // namespace korvane
