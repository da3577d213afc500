// Logs off, shuts down and reboots through systemd and its login manager if they are running, else with the system's shutdown
// command.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/power.h"

namespace korvane {

class LinuxPower : public Power {
public:
    /// Starts the program named by the first word without waiting for its end. Throws Error with its name and the reason.
    using Start = std::function<void(const std::vector<std::string>& words)>;

    struct Machine {
        PowerSystem system = PowerSystem::Unknown;
        std::string shutdownPath = {};  ///< the system's `shutdown`
        std::string session = {};       ///< this program's session in the login manager; empty if it has none, as a service
        uid_t user = 0;
    };

    LinuxPower(Start start, Machine machine) : start_(std::move(start)), machine_(std::move(machine)) {}

    PowerSystem System() const override { return machine_.system; }
    void Request(PowerAction action) override;

private:
    /// Returns an empty command if nothing on this machine can do it. A program without a session logs off all sessions of its
    /// user.
    std::vector<std::string> CommandFor(PowerAction action) const;

    Start start_;
    Machine machine_;
};

/// Reads the disk and the environment.
LinuxPower::Machine ThisMachine(const std::string& shutdownPath);

}  // namespace korvane
