// Finds the mounted file systems on fixed disks of this machine, in the kernel's mount table and device tree.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/system_folders.h"

namespace korvane {

/// A device with all the places where it, or a part of it, is mounted.
struct MountedDisk {
    std::string device;  ///< "8:1"
    /// The device of its files according to stat(2), 0 where each part has its own (btrfs).
    std::uint64_t statDevice = 0;
    std::vector<std::string> paths;
    bool operator==(const MountedDisk&) const = default;
};

/// Reads the text of /proc/self/mountinfo (proc(5)) and leaves out everything removable, on a network, in memory, in a file, or
/// served by a program (fuse). Malformed lines are ignored.
std::vector<MountedDisk> FixedDisksOf(std::string_view mountinfo, const SystemFolders& folders);

}  // namespace korvane
