// What the kernel says of this machine: its name and version, its processors, its memory and its disks.
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "platform/linux/fixed_disks.h"
#include "platform/linux/system_folders.h"
#include "platform/system_info.h"

namespace korvane {

class LinuxSystemInfo : public SystemInfo {
public:
    explicit LinuxSystemInfo(SystemFolders folders = {});

    /// All blank when the kernel does not say.
    SystemVersion Version() const override;

    std::optional<ProcessorTimes> Processors() const override;
    std::optional<PhysicalMemory> Memory() const override;
    DiskSpace FixedDisks() const override;

private:
    SystemFolders folders_;
    std::unique_ptr<korvane::FixedDisks> disks_;
};

/// "6.1.0-13-amd64" as version "6.1" and build "0-13-amd64": the first two numbers, and what stands behind the sign after them.
SystemVersion VersionOfRelease(std::string_view platform, std::string_view release);

}  // namespace korvane
