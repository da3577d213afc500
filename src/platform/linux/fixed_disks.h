// The space of this machine's fixed disks. Each disk is asked by a thread of its own, since one that has died keeps whoever asks
// it inside the kernel for as long as it likes.
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

/// The space of the disk, where it is mounted and in sight. May block for ever; called from other threads, also after the object
/// that it was given to has gone.
using AskDisk = std::function<std::optional<DiskSpace>(const MountedDisk& disk)>;
std::optional<DiskSpace> AskKernel(const MountedDisk& disk);

class FixedDisks {
public:
    explicit FixedDisks(SystemFolders folders, AskDisk ask = AskKernel);
    ~FixedDisks();

    /// Waits for `limit` at most, and for no disk that kept it waiting before and has not answered since. A late answer counts
    /// from the next call on, and until then what the disk said last; a disk is not asked again before it has answered.
    DiskSpace Sum(std::chrono::milliseconds limit = std::chrono::milliseconds(100));

private:
    struct Answers;

    SystemFolders folders_;
    AskDisk ask_;
    std::shared_ptr<Answers> answers_;  ///< shared with the threads, which may outlive this
};

}  // namespace korvane
