#include "shell/desktop/monitors/resource_windows.h"

#include <utility>

namespace korvane {

MonitorPorts MonitorPortsOf(const Desk& desk) {
    return {.dir = desk.dir,
            .clock = desk.clock,
            .timers = desk.timers,
            .store = desk.store,
            .person = desk.person,
            .files = desk.files,
            .settings = desk.collection,
            .mails = desk.alertMails,
            .log = desk.log};
}

ResourceWindows::ResourceWindows(Desk desk, std::function<void(ResourceMonitor monitor)> hidden)
    : desk_(std::move(desk)), hidden_(std::move(hidden)) {}

void ResourceWindows::Make(ResourceMonitor monitor) {
    auto& form = forms_[Index(monitor)];
    form = NewResourceForm(monitor, MonitorPortsOf(desk_), desk_.events, desk_.systemInfo, desk_.services);
    form->OnHidden([this, monitor] { Hidden(monitor); });
}

void ResourceWindows::Load() {
    for (const ResourceMonitor monitor : kResourceMonitors)
        Make(monitor);
}

// The memory window is destroyed when it is closed and then stops watching; the others continue in the background.
void ResourceWindows::Hidden(ResourceMonitor monitor) {
    if (monitor == ResourceMonitor::Memory) {
        if (ResourceForm* form = forms_[Index(monitor)].release(); form != nullptr) form->deleteLater();
    }
    hidden_(monitor);
}

void ResourceWindows::Show(ResourceMonitor monitor, bool shown) {
    if (shown && Form(monitor) == nullptr) Make(monitor);
    ResourceForm* form = Form(monitor);
    if (form == nullptr) return;
    if (!shown) {
        form->close();
        return;
    }
    form->showNormal();
    form->raise();
    form->activateWindow();
}

void ResourceWindows::LoadData() {
    for (const auto& form : forms_) {
        if (form != nullptr) form->Monitor().LoadData();
    }
}

}  // namespace korvane
