// Port: what this machine says of itself.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace korvane {

/// "Linux", "6.1" and "0-13-amd64" of a kernel 6.1.0-13-amd64; any of them may be blank.
struct SystemVersion {
    std::string platform;
    std::string version;
    std::string build;
};

/// How long the processors have worked and waited since the machine started, all of them together, in any one unit of time: they
/// idled for `idle` of `total`. Each of them has been there for `total / processors`.
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

/// None of the calls throws or waits for longer than some 100 ms.
class SystemInfo {
public:
    virtual ~SystemInfo() = default;
    virtual SystemVersion Version() const = 0;

    /// Nothing when the machine does not tell.
    virtual std::optional<ProcessorTimes> Processors() const { return std::nullopt; }
    virtual std::optional<PhysicalMemory> Memory() const { return std::nullopt; }

    /// The sums over all local fixed disks that are in use: each once, without removable ones, those of the network and those in
    /// memory. All 0 when there is none. A disk that does not answer in time counts with what it said last.
    virtual DiskSpace FixedDisks() const { return {}; }
};

}  // namespace korvane
