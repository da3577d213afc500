#include "platform/linux/linux_power.h"

#include <unistd.h>

#include <filesystem>

#include "base/error.h"
#include "platform/linux/default_program.h"

namespace korvane {
namespace {

using Words = std::vector<std::string>;

/// Exists as long as systemd is the machine's first process: sd_booted(3).
constexpr const char* kRunsWithSystemd = "/run/systemd/system";

}  // namespace

void LinuxPower::Request(PowerAction action) {
    const Words command = CommandFor(action);
    if (command.empty()) throw Error("Nothing on this machine can do it");
    try {
        start_(command);
    } catch (const Error& error) {
        throw Error(command.front() + ": " + error.what(), error.Number());
    }
}

Words LinuxPower::CommandFor(PowerAction action) const {
    const bool managed = machine_.system == PowerSystem::ServiceManager;
    if (machine_.system == PowerSystem::Unknown) return {};
    switch (action) {
        case PowerAction::LogOff:
            return managed ? EndSession() : Words{};
        case PowerAction::ForcedLogOff:
            return managed ? KillSession() : Words{};
        case PowerAction::ShutDown:
            return managed ? Words{"systemctl", "poweroff"} : Words{machine_.shutdownPath, "-h", "-P", "now"};
        case PowerAction::ForcedShutDown:  // the command has no separate forced form
            return managed ? Words{"systemctl", "poweroff", "--force"} : Words{machine_.shutdownPath, "-h", "-P", "now"};
        case PowerAction::Reboot:
            return managed ? Words{"systemctl", "reboot"} : Words{machine_.shutdownPath, "-r", "now"};
    }
    return {};
}

Words LinuxPower::EndSession() const {
    if (machine_.session.empty()) return {"loginctl", "terminate-user", std::to_string(machine_.user)};
    return {"loginctl", "terminate-session", machine_.session};
}

Words LinuxPower::KillSession() const {
    if (machine_.session.empty()) return {"loginctl", "kill-user", "--signal=SIGKILL", std::to_string(machine_.user)};
    return {"loginctl", "kill-session", "--signal=SIGKILL", machine_.session};
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
