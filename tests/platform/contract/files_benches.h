// The files that the contract suite runs on: in memory, behind a fault plan without faults, and on the disk.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "platform/linux/linux_files.h"
#include "support/faulty_files.h"
#include "support/memory_files.h"
#include "support/temporary_folder.h"

namespace korvane::contract {

struct MemoryBench {
    std::string folder = "/home";
    MemoryFiles files;
    MemoryBench() { files.CreateFolder(folder); }
};

struct FaultyBench {
    MemoryBench memory;
    std::string folder = memory.folder;
    FaultyFiles files{memory.files};
};

struct DiskBench {
    TemporaryFolder temporary;
    std::string folder = temporary.Path();
    LinuxFiles files;
};

using FilesBenches = testing::Types<MemoryBench, FaultyBench, DiskBench>;

struct FilesBenchNames {
    template <class Bench>
    static std::string GetName(int) {
        if (std::is_same_v<Bench, MemoryBench>) return "Memory";
        return std::is_same_v<Bench, FaultyBench> ? "Faulty" : "Disk";
    }
};

}  // namespace korvane::contract
