#include "shell/options/resource_emails.h"

#include <memory>
#include <utility>

#include "resources/cpu_settings.h"
#include "resources/disk_settings.h"
#include "resources/memory_settings.h"
#include "resources/service_settings.h"

namespace korvane {
namespace {

/// The settings of the monitor, as read from its file.
std::unique_ptr<AlertSettings> SettingsOf(ResourceMonitor monitor, Files& files, const std::string& dir) {
    std::unique_ptr<AlertSettings> settings;
    switch (monitor) {
        case ResourceMonitor::CPU:
            settings = std::make_unique<clsCPUMon>(files, dir);
            break;
        case ResourceMonitor::Disk:
            settings = std::make_unique<clsDiskMon>(files, dir);
            break;
        case ResourceMonitor::Memory:
            settings = std::make_unique<clsMemoryMon>(files, dir);
            break;
        case ResourceMonitor::Services:
            settings = std::make_unique<clsSvcMon>(files, dir);
            break;
    }
    settings->OpenFile();
    return settings;
}

}  // namespace

ResourceEmailFiles::ResourceEmailFiles(Files& files, std::string dir, std::function<void()> loadData)
    : files_(files), dir_(std::move(dir)), loadData_(std::move(loadData)) {}

std::string ResourceEmailFiles::getEmail(ResourceMonitor monitor) {
    return SettingsOf(monitor, files_, dir_)->getEmail();
}

void ResourceEmailFiles::setEmail(ResourceMonitor monitor, const std::string& email) {
    const auto settings = SettingsOf(monitor, files_, dir_);
    settings->setEmail(email);
    settings->UpdateData();
}

void ResourceEmailFiles::LoadData() {
    if (loadData_) loadData_();
}

}  // namespace korvane
