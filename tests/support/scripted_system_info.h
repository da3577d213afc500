// A machine whose figures are what the test says.
#pragma once

#include <optional>

#include "platform/system_info.h"

namespace korvane {

class ScriptedSystemInfo : public SystemInfo {
public:
    std::optional<ProcessorTimes> processors = ProcessorTimes{.idle = 0, .total = 0, .processors = 1};
    std::optional<PhysicalMemory> memory = PhysicalMemory{.total = 4096, .available = 1024};
    DiskSpace disks{.total = 1000, .free = 500};

    /// The processors have been busy for `percent` of another 1000 units of time each.
    void Work(int percent) {
        const auto units = static_cast<std::uint64_t>(processors->processors);
        processors->total += 1000 * units;
        processors->idle += 10 * units * static_cast<std::uint64_t>(100 - percent);
    }

    SystemVersion Version() const override { return {"Linux", "6.1", "0"}; }
    std::optional<ProcessorTimes> Processors() const override { return processors; }
    std::optional<PhysicalMemory> Memory() const override { return memory; }
    DiskSpace FixedDisks() const override { return disks; }
};

}  // namespace korvane
