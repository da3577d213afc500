// This machine according to the kernel: its name and version, processors, memory and disks.
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

    /// All fields are empty when the kernel does not report them.
    SystemVersion Version() const override;

    std::optional<ProcessorTimes> Processors() const override;
    std::optional<PhysicalMemory> Memory() const override;
    DiskSpace FixedDisks() const override;

private:
    SystemFolders folders_;
    std::unique_ptr<korvane::FixedDisks> disks_;
};

/// Splits "6.1.0-13-amd64" into version "6.1" and build "0-13-amd64": the first two numbers, and what follows the next separator.
SystemVersion VersionOfRelease(std::string_view platform, std::string_view release);

}  // namespace korvane
