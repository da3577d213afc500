// Port: facts about this machine.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace korvane {

/// "Linux", "6.1" and "0-13-amd64" for a kernel 6.1.0-13-amd64; any of them may be empty.
struct SystemVersion {
    std::string platform;
    std::string version;
    std::string build;
};

/// The total and idle time of all processors together since the machine started, in any one unit of time. Each processor has
/// existed for `total / processors`.
struct ProcessorTimes {
    std::uint64_t idle = 0;
    std::uint64_t total = 0;
    int processors = 1;
    bool operator==(const ProcessorTimes&) const = default;
};

/// In bytes.
struct PhysicalMemory {
    std::uint64_t total = 0;
    std::uint64_t available = 0;  ///< what programs can still get without others being paged out
    bool operator==(const PhysicalMemory&) const = default;
};

/// In bytes.
struct DiskSpace {
    double total = 0;
    double free = 0;  ///< for ordinary users
    bool operator==(const DiskSpace&) const = default;
};

/// None of the calls throws or waits for longer than about 100 ms.
class SystemInfo {
public:
    virtual ~SystemInfo() = default;
    virtual SystemVersion Version() const = 0;

    /// Returns nothing when the machine does not report it.
    virtual std::optional<ProcessorTimes> Processors() const { return std::nullopt; }
    virtual std::optional<PhysicalMemory> Memory() const { return std::nullopt; }

    /// Returns the sums over all local fixed disks in use: each counts once; removable, network and memory disks do not count.
    /// All 0 when there is none. A disk that does not answer in time counts with its last answer.
    virtual DiskSpace FixedDisks() const { return {}; }
};

}  // namespace korvane
