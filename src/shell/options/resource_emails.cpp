#include "shell/options/resource_emails.h"

#include <utility>

#include "resources/alert_settings.h"

namespace korvane {
namespace {

const MonitorKind& KindOf(ResourceMonitor monitor) {
    switch (monitor) {
        case ResourceMonitor::CPU:
            return kCpuMonitor;
        case ResourceMonitor::Disk:
            return kDiskMonitor;
        case ResourceMonitor::Memory:
            return kMemoryMonitor;
        case ResourceMonitor::Services:
            break;
    }
    return kServiceMonitor;
}

}  // namespace

ResourceEmailFiles::ResourceEmailFiles(Files& files, std::string dir, std::function<void()> loadData)
    : files_(files), dir_(std::move(dir)), loadData_(std::move(loadData)) {}

std::string ResourceEmailFiles::getEmail(ResourceMonitor monitor) {
    return ReadAlertSettings(files_, dir_, KindOf(monitor)).email;
}

void ResourceEmailFiles::setEmail(ResourceMonitor monitor, const std::string& email) {
    AlertSettings settings = ReadAlertSettings(files_, dir_, KindOf(monitor));
    settings.email = email;
    WriteAlertSettings(files_, dir_, KindOf(monitor), settings);
}

void ResourceEmailFiles::LoadData() {
    if (loadData_) loadData_();
}

}  // namespace korvane
