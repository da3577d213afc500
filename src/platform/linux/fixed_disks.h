// The disk space of this machine's fixed disks, which the kernel's mount table and device tree show. Each disk is queried by a
// thread of its own, since a broken disk may keep the caller inside the kernel for any length of time.
#pragma once

#include <memory>
#include <string>

#include "platform/system_info.h"

namespace korvane {

/// Reads a file of the kernel, whose length is not known in advance. Returns an empty text when it cannot be read.
std::string ReadKernelFile(const std::string& path);

class FixedDisks {
public:
    /// `root` is the folder that holds proc, sys and dev: empty, or the copy of another machine.
    explicit FixedDisks(std::string root);

    /// Leaves out everything removable, on a network, in memory, in a file, or served by a program (fuse). Waits for 100 ms at
    /// most. A disk that exceeded an earlier limit and has not answered since is neither waited for nor queried again; its last
    /// answer counts until the new one arrives, which the next call then uses.
    DiskSpace Sum() const;

private:
    struct Answers;

    std::string root_;
    std::shared_ptr<Answers> answers_;  ///< shared with the threads, which may outlive this
};

}  // namespace korvane
