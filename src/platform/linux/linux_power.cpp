#include "platform/linux/linux_power.h"

#include <unistd.h>

#include <filesystem>

#include "base/error.h"
#include "base/text.h"
#include "platform/linux/environment.h"

namespace korvane {
namespace {

using Words = std::vector<std::string>;

/// Exists as long as systemd is the machine's first process: sd_booted(3).
constexpr const char* kRunsWithSystemd = "/run/systemd/system";

}  // namespace

void LinuxPower::Request(PowerAction action) {
    const Words command = CommandFor(action);
    if (command.empty()) throw Error("Nothing on this machine can do it");
    start_(command);
}

Words LinuxPower::CommandFor(PowerAction action) const {
    if (machine_.system == PowerSystem::Unknown) return {};
    const bool managed = machine_.system == PowerSystem::ServiceManager;
    const std::string kind = machine_.session.empty() ? "user" : "session";
    const std::string whom = Or(machine_.session, std::to_string(machine_.user));
    switch (action) {
        case PowerAction::LogOff:
            return managed ? Words{"loginctl", "terminate-" + kind, whom} : Words{};
        case PowerAction::ForcedLogOff:
            return managed ? Words{"loginctl", "kill-" + kind, "--signal=SIGKILL", whom} : Words{};
        case PowerAction::ShutDown:
            return managed ? Words{"systemctl", "poweroff"} : Words{machine_.shutdownPath, "-h", "-P", "now"};
        case PowerAction::ForcedShutDown:  // the command has no separate forced form
            return managed ? Words{"systemctl", "poweroff", "--force"} : Words{machine_.shutdownPath, "-h", "-P", "now"};
        case PowerAction::Reboot:
            return managed ? Words{"systemctl", "reboot"} : Words{machine_.shutdownPath, "-r", "now"};
    }
    return {};
}

LinuxPower::Machine ThisMachine(const std::string& shutdownPath) {
    namespace fs = std::filesystem;
    LinuxPower::Machine machine{
        .shutdownPath = shutdownPath, .session = EnvironmentVariable("XDG_SESSION_ID"), .user = ::getuid()};
    std::error_code ignored;
    if (fs::is_directory(kRunsWithSystemd, ignored)) {
        machine.system = PowerSystem::ServiceManager;
    } else if (fs::exists(shutdownPath, ignored)) {
        machine.system = PowerSystem::ShutdownCommand;
    }
    return machine;
}

}  // namespace korvane
