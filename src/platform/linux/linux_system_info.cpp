#include "platform/linux/linux_system_info.h"

#include <sys/utsname.h>

#include <algorithm>
#include <utility>

#include "platform/linux/proc_figures.h"

namespace korvane {

LinuxSystemInfo::LinuxSystemInfo(SystemFolders folders)
    : folders_(std::move(folders)), disks_(std::make_unique<korvane::FixedDisks>(folders_)) {}

SystemVersion LinuxSystemInfo::Version() const {
    utsname names{};
    if (::uname(&names) != 0) return {};
    return VersionOfRelease(names.sysname, names.release);
}

std::optional<ProcessorTimes> LinuxSystemInfo::Processors() const {
    return ProcessorsOf(ReadKernelFile(folders_.proc + "/stat").value_or(""));
}

std::optional<PhysicalMemory> LinuxSystemInfo::Memory() const {
    return MemoryOf(ReadKernelFile(folders_.proc + "/meminfo").value_or(""));
}

DiskSpace LinuxSystemInfo::FixedDisks() const {
    return disks_->Sum();
}

SystemVersion VersionOfRelease(std::string_view platform, std::string_view release) {
    constexpr std::string_view kDigits = "0123456789";
    std::size_t end = std::min(release.find_first_not_of(kDigits), release.size());
    if (end < release.size() && release[end] == '.') end = std::min(release.find_first_not_of(kDigits, end + 1), release.size());
    return {std::string(platform), std::string(release.substr(0, end)),
            std::string(release.substr(std::min(end + 1, release.size())))};
}

}  // namespace korvane
