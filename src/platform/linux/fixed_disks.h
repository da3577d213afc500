// The disk space of this machine's fixed disks. Each disk is queried by a thread of its own, since a broken disk may keep the
// caller inside the kernel for any length of time.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/disk_mounts.h"
#include "platform/linux/system_folders.h"
#include "platform/system_info.h"

namespace korvane {

/// Returns the space of the disk at a place where it is mounted and visible. May block for ever; called from other threads, also
/// after the object that it was given to is destroyed.
using AskDisk = std::function<std::optional<DiskSpace>(const MountedDisk& disk)>;
std::optional<DiskSpace> AskKernel(const MountedDisk& disk);

class FixedDisks {
public:
    explicit FixedDisks(SystemFolders folders, AskDisk ask = AskKernel);
    ~FixedDisks();

    /// Waits for `limit` at most. A disk that exceeded an earlier limit and has not answered since is neither waited for nor
    /// queried again; its last answer counts until the new one arrives, which the next call then uses.
    DiskSpace Sum(std::chrono::milliseconds limit = std::chrono::milliseconds(100));

private:
    struct Answers;

    SystemFolders folders_;
    AskDisk ask_;
    std::shared_ptr<Answers> answers_;  ///< shared with the threads, which may outlive this
};

}  // namespace korvane
