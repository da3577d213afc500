// With the safeguard WatchMachine on, this machine is watched from the start by the settings files of the four monitors, without a
// window: at the levels that they contain, and unless their marks disable it. A change of a file counts from the next look on.
#pragma once

#include <memory>
#include <vector>

#include "platform/events.h"
#include "platform/services.h"
#include "platform/system_info.h"
#include "resources/alert_monitor.h"

namespace korvane {

class MachineWatch {
public:
    /// `events`, `system` and `services` must outlive this.
    MachineWatch(const MonitorPorts& ports, Events& events, const SystemInfo& system, Services& services);

    /// Begins or ends the watch as the safeguard says. Called at the start, and when the settings have changed.
    void Follow();

private:
    MonitorPorts ports_;
    Events& events_;
    const SystemInfo& system_;
    Services& services_;
    std::vector<std::unique_ptr<AlertMonitor>> monitors_;  ///< none while the safeguard is off
};

}  // namespace korvane
