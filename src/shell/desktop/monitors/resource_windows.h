// The four windows on this machine's own resources, hidden from the start: which of them are there, and which are seen.
#pragma once

#include <array>
#include <functional>
#include <memory>

#include "resources/alert_monitor.h"
#include "shell/desktop/monitors/resource_form.h"
#include "shell/options/global_email_walk.h"
#include "shell/run/desk.h"

namespace korvane {

/// What a monitor of resources needs of the desk.
MonitorPorts MonitorPortsOf(const Desk& desk);

class ResourceWindows {
public:
    /// `hidden` is called when the operator has closed a window.
    ResourceWindows(Desk desk, std::function<void(ResourceMonitor monitor)> hidden);
    ~ResourceWindows();
    ResourceWindows(const ResourceWindows&) = delete;
    ResourceWindows& operator=(const ResourceWindows&) = delete;

    /// Makes all of them, hidden. Watching begins, as far as each of them watches before it was opened.
    void Load();

    /// A window that is gone is made anew.
    void Show(ResourceMonitor monitor, bool shown);

    /// Those that are there read their settings files again.
    void LoadData();

    /// Null when it is gone.
    ResourceForm* Form(ResourceMonitor monitor) const { return forms_[Index(monitor)].get(); }

private:
    static std::size_t Index(ResourceMonitor monitor) { return static_cast<std::size_t>(monitor); }
    std::unique_ptr<ResourceForm> NewForm(ResourceMonitor monitor);
    void Make(ResourceMonitor monitor);
    void Hidden(ResourceMonitor monitor);

    Desk desk_;
    std::function<void(ResourceMonitor monitor)> hidden_;
    std::array<std::unique_ptr<ResourceForm>, 4> forms_;
};

/// In the order in which they stand in the main window.
inline constexpr std::array kResourceMonitors{ResourceMonitor::CPU, ResourceMonitor::Disk, ResourceMonitor::Memory,
                                              ResourceMonitor::Services};

}  // namespace korvane
