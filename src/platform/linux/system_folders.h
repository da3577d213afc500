// The folders where the kernel publishes its figures: the real ones, or a test's copy from another machine.
#pragma once

#include <optional>
#include <string>

namespace korvane {

struct SystemFolders {
    std::string proc = "/proc";
    std::string sys = "/sys";
    std::string dev = "/dev";
};

/// Reads a file of the kernel, whose length is not known in advance. Returns nothing when it cannot be read.
std::optional<std::string> ReadKernelFile(const std::string& path);

}  // namespace korvane
