#include "resources/machine_watch.h"

#include "resources/cpu_monitor.h"
#include "resources/disk_monitor.h"
#include "resources/memory_monitor.h"
#include "resources/service_monitor.h"

namespace korvane {

MachineWatch::MachineWatch(const MonitorPorts& ports, Events& events, const SystemInfo& system, Services& services)
    : ports_(ports), events_(events), system_(system), services_(services) {
    ports_.ofMachineWatch = true;
}

void MachineWatch::Follow() {
    const bool on = ports_.safeguards.IsOn(kWatchMachine);
    const bool watching = !monitors_.empty();
    if (on == watching) return;
    if (!on) return monitors_.clear();
    monitors_.push_back(std::make_unique<CpuMonitor>(ports_, system_));
    monitors_.push_back(std::make_unique<DiskMonitor>(ports_, system_));
    monitors_.push_back(std::make_unique<MemoryMonitor>(ports_, events_, system_));
    monitors_.push_back(std::make_unique<ServiceMonitor>(ports_, services_));
    for (const auto& monitor : monitors_)
        monitor->LoadData();
}

}  // namespace korvane
