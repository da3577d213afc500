// Where the kernel shows what it knows: the real folders, or a test's copy of those of another machine.
#pragma once

#include <optional>
#include <string>

namespace korvane {

struct SystemFolders {
    std::string proc = "/proc";
    std::string sys = "/sys";
    std::string dev = "/dev";
};

/// A file of the kernel's, whose length nobody knows before it is read. Nothing when it can't be read.
std::optional<std::string> ReadKernelFile(const std::string& path);

}  // namespace korvane
