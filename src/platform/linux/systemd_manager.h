// The service manager systemd: its notifications for the process that it started, its unit files, and its own commands for
// everything else.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "platform/files.h"
#include "platform/linux/environment.h"
#include "platform/linux/program_runner.h"
#include "platform/linux/systemd_unit.h"
#include "platform/service_manager.h"

namespace korvane {

/// The paths that systemd uses, and whose services these are.
struct SystemdPlace {
    UnitScope scope = UnitScope::User;
    std::string unitFolder;                   ///< units created by this user
    std::vector<std::string> otherFolders;    ///< other folders of units, whose names are taken
    std::vector<std::string> signsOfManager;  ///< files that exist while the manager runs
    std::string lingerFile;                   ///< exists if the user's services run without a session; empty: they always do
};

/// root installs services of the system, every other user installs their own.
SystemdPlace SystemdPlaceOfThisUser(const Environment& environment);

/// What the manager passed to this process at its start, in the variables of sd_notify(3) and sd_watchdog_enabled(3).
struct SystemdGreeting {
    /// `pid` is this process. Variables inherited from a parent and meant for that parent are ignored.
    SystemdGreeting(const Environment& environment, int pid);

    std::string notifyAddress;  ///< the manager's socket; empty when the manager did not start this process
    std::optional<std::chrono::milliseconds> aliveInterval;
};

/// Removes the greeting from this process's environment, so that child processes do not take it for theirs. Must be called before
/// any thread is started.
void KeepGreetingFromChildren();

class SystemdManager : public ServiceManager {
public:
    struct Ports {
        Files& files;
        RunProgram run;
    };

    SystemdManager(Ports ports, SystemdPlace place, const SystemdGreeting& greeting);

    bool IsPresent() const override;

    bool StartedThis() const override { return !greeting_.notifyAddress.empty(); }
    void Ready() override { Notify("READY=1"); }
    std::optional<std::chrono::milliseconds> AliveInterval() const override { return greeting_.aliveInterval; }
    void Alive() override { Notify("WATCHDOG=1"); }
    void Stopping() override { Notify("STOPPING=1"); }
    void Status(const std::string& text) override;

    bool IsShuttingDown() override;
    bool IsInstalled(const std::string& name) override;
    ManagerAnswer Install(const std::string& name, const ServiceProgram& program) override;
    ManagerAnswer Update(const std::string& name, const ServiceProgram& program) override;
    ManagerAnswer Uninstall(const std::string& name, const std::string& home) override;
    ManagerAnswer Start(const std::string& name) override;

private:
    void Notify(const std::string& line) const;
    std::string PathOf(const std::string& unit) const { return place_.unitFolder + "/" + unit; }
    std::string OwnUnitText(const std::string& unit);
    bool IsEnabled(const std::string& unit);
    void CheckNameIsFree(const std::string& unit, const std::string& home);
    ProgramResult Ask(std::vector<std::string> words, std::chrono::milliseconds limit);
    void Order(std::vector<std::string> words, std::chrono::milliseconds limit = std::chrono::seconds(10));
    void TryOrder(std::vector<std::string> words);
    void EnableNew(const std::string& unit, const std::string& text);
    std::string Linger(const std::string& unit, const std::string& text);

    Ports ports_;
    SystemdPlace place_;
    SystemdGreeting greeting_;
};

}  // namespace korvane
