// This machine according to the kernel: its name and version, processors, memory and disks.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/fixed_disks.h"
#include "platform/system_info.h"

namespace korvane {

class LinuxSystemInfo : public SystemInfo {
public:
    /// `root` is the folder that holds proc, sys and dev: empty, or the copy of another machine.
    explicit LinuxSystemInfo(const std::string& root = "") : root_(root), disks_(root) {}

    /// All fields are empty when the kernel does not report them.
    SystemVersion Version() const override;

    std::optional<ProcessorTimes> Processors() const override;
    std::optional<PhysicalMemory> Memory() const override;
    DiskSpace FixedDisks() const override { return disks_.Sum(); }

private:
    std::string root_;
    korvane::FixedDisks disks_;
};

/// Splits "6.1.0-13-amd64" into version "6.1" and build "0-13-amd64": the first two numbers, and what follows the next separator.
SystemVersion VersionOfRelease(std::string_view platform, std::string_view release);

/// Reads /proc/stat. iowait counts as idle, since the processor waits for a disk; everything else counts as work, including steal
/// time. The times of guests are already part of those of their hosts. Returns nothing when the line of all processors is missing
/// or has no idle time; older kernels have fewer columns. In a container these are the figures of the whole machine.
std::optional<ProcessorTimes> ProcessorsOf(const std::string& stat);

/// Reads /proc/meminfo. Before Linux 3.14 there is no MemAvailable; free memory, buffers and page cache are then added up
/// instead.
std::optional<PhysicalMemory> MemoryOf(const std::string& meminfo);

}  // namespace korvane
