// Which of the mounted file systems are on fixed disks of this machine, from the kernel's table of mounts and its tree of
// devices.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/system_folders.h"

namespace korvane {

/// One device with all the places where it, or a part of it, is mounted.
struct MountedDisk {
    std::string device;  ///< "8:1"
    /// What stat(2) has as the device of its files, 0 where each part has one of its own (btrfs).
    std::uint64_t statDevice = 0;
    std::vector<std::string> paths;
    bool operator==(const MountedDisk&) const = default;
};

/// The text of /proc/self/mountinfo (proc(5)) without what is removable, comes over a network, lives in memory or in a file, or
/// is served by a program (fuse). Lines that make no sense are passed over.
std::vector<MountedDisk> FixedDisksOf(std::string_view mountinfo, const SystemFolders& folders);

}  // namespace korvane
