// Log off, shut down and reboot through systemd and its login manager where they run, else through the system's shutdown command.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/power.h"

namespace korvane {

class LinuxPower : public Power {
public:
    /// Starts the program of the first word without waiting for its end. Throws Error with the reason.
    using Start = std::function<void(const std::vector<std::string>& words)>;

    struct Machine {
        PowerSystem system = PowerSystem::Unknown;
        std::string shutdownPath = {};  ///< the system's `shutdown`
        std::string session = {};       ///< of the login manager that this program runs in; blank in none, as a service
        uid_t user = 0;
    };

    LinuxPower(Start start, Machine machine) : start_(std::move(start)), machine_(std::move(machine)) {}

    PowerSystem System() const override { return machine_.system; }
    void Request(PowerAction action) override;

    /// What Request starts. Without a session of its own the program logs off all sessions of its user. Blank: nothing on this
    /// machine can do it.
    std::vector<std::string> CommandFor(PowerAction action) const;

private:
    std::vector<std::string> EndSession() const;
    std::vector<std::string> KillSession() const;

    Start start_;
    Machine machine_;
};

/// Looks at the disk and the environment.
LinuxPower::Machine ThisMachine(const std::string& shutdownPath);

}  // namespace korvane
