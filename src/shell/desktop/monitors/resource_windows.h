// The four windows on this machine's own resources, hidden at first: which of them exist, and which are visible.
#pragma once

#include <array>
#include <functional>
#include <memory>

#include "resources/alert_monitor.h"
#include "shell/desktop/monitors/resource_form.h"
#include "shell/run/desk.h"

namespace korvane {

/// Returns the parts of the desk that a resource monitor needs.
MonitorPorts MonitorPortsOf(const Desk& desk);

class ResourceWindows {
public:
    /// `hidden` is called when the operator has closed a window.
    ResourceWindows(Desk desk, std::function<void(ResourceMonitor monitor)> hidden);
    ResourceWindows(const ResourceWindows&) = delete;
    ResourceWindows& operator=(const ResourceWindows&) = delete;

    /// Creates all of them, hidden. Watching begins, for those that watch before they are opened.
    void Load();

    /// A destroyed window is created again.
    void Show(ResourceMonitor monitor, bool shown);

    /// Makes the existing ones read their settings files again.
    void LoadData();

    /// Returns null when the window is destroyed.
    ResourceForm* Form(ResourceMonitor monitor) const { return forms_[Index(monitor)].get(); }

private:
    static std::size_t Index(ResourceMonitor monitor) { return static_cast<std::size_t>(monitor); }
    void Make(ResourceMonitor monitor);
    void Hidden(ResourceMonitor monitor);

    Desk desk_;
    std::function<void(ResourceMonitor monitor)> hidden_;
    std::array<std::unique_ptr<ResourceForm>, 4> forms_;
};

/// In the order of their marks in the main window.
inline constexpr std::array kResourceMonitors{ResourceMonitor::CPU, ResourceMonitor::Disk, ResourceMonitor::Memory,
                                              ResourceMonitor::Services};

}  // namespace korvane
