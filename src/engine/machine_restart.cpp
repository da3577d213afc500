#include "engine/machine_restart.h"

#include "base/ignore_errors.h"

namespace korvane {

void clsShutdown::Request(PowerAction action, std::string_view routine) {
    try {
        power_.Request(action);
    } catch (const std::exception& error) {
        log_.WriteLog(kLogOrdinary, kLogError, std::string(routine) + ": " + error.what());
    }
}

void MachineRestart::RebootCommand() {
    if (ports_.power.System() == PowerSystem::Unknown)
        ports_.status.setStatusMSG("Can't shutdown because this is an unknown system.");
    clsShutdown(ports_.power, ports_.log).DoReboot();
}

void MachineRestart::TestShutDown(const std::function<void()>& answered) {
    ports_.person.Ask(
        kMessageTitle, "Your computer is about to be rebooted.  Are you sure you want to test the shutdown/restart command?",
        [this, answered] {
            if (ports_.state.bMonitoring) ports_.cmdStopStart();
            ports_.status.setStatusMSG("Testing Shutdown command...");
            RebootCommand();
            answered();
        },
        answered);
}

std::string getShudownEXEPath(Files& files) {
    static constexpr const char* kPlaces[] = {"/usr/sbin/shutdown", "/sbin/shutdown", "/usr/bin/shutdown", "/bin/shutdown"};
    for (const char* place : kPlaces) {
        bool exists = false;
        IgnoreErrors([&] { exists = files.Exists(place); });
        if (exists) return place;
    }
    return kPlaces[0];
}

}  // namespace korvane
