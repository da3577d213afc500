#include "platform/linux/linux_system_info.h"

#include <sys/utsname.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <numeric>
#include <sstream>
#include <vector>

namespace korvane {
namespace {

constexpr std::size_t kIdle = 3;
constexpr std::size_t kIoWait = 4;
/// user, nice, system, idle, iowait, irq, softirq, steal
constexpr std::size_t kColumns = 8;
/// The lines that matter come first.
constexpr std::size_t kMemoryLines = 5;

}  // namespace

SystemVersion LinuxSystemInfo::Version() const {
    utsname names{};
    if (::uname(&names) != 0) return {};
    return VersionOfRelease(names.sysname, names.release);
}

std::optional<ProcessorTimes> LinuxSystemInfo::Processors() const {
    return ProcessorsOf(ReadKernelFile(root_ + "/proc/stat"));
}

std::optional<PhysicalMemory> LinuxSystemInfo::Memory() const {
    return MemoryOf(ReadKernelFile(root_ + "/proc/meminfo"));
}

SystemVersion VersionOfRelease(std::string_view platform, std::string_view release) {
    constexpr std::string_view kDigits = "0123456789";
    std::size_t end = std::min(release.find_first_not_of(kDigits), release.size());
    if (end < release.size() && release[end] == '.') end = std::min(release.find_first_not_of(kDigits, end + 1), release.size());
    return {std::string(platform), std::string(release.substr(0, end)),
            std::string(release.substr(std::min(end + 1, release.size())))};
}

std::optional<ProcessorTimes> ProcessorsOf(const std::string& stat) {
    std::vector<std::uint64_t> all;
    int processors = 0;
    std::istringstream lines(stat);
    std::string line;
    while (std::getline(lines, line) && line.starts_with("cpu")) {  // they come first, and the rest is long
        if (!line.starts_with("cpu ")) {
            ++processors;
            continue;
        }
        std::istringstream columns(line.substr(4));
        all.assign(std::istream_iterator<std::uint64_t>(columns), {});
    }
    if (all.size() <= kIdle) return std::nullopt;
    all.resize(kColumns);
    return ProcessorTimes{.idle = all[kIdle] + all[kIoWait],
                          .total = std::accumulate(all.begin(), all.end(), std::uint64_t{0}),
                          .processors = std::max(1, processors)};
}

std::optional<PhysicalMemory> MemoryOf(const std::string& meminfo) {
    std::map<std::string, std::uint64_t> bytes;
    std::istringstream lines(meminfo);
    std::string key;
    std::string unit;
    for (std::uint64_t kilobytes = 0; bytes.size() < kMemoryLines && lines >> key >> kilobytes; std::getline(lines, unit))
        bytes.emplace(key, kilobytes * 1024);  // "MemTotal:  24684084 kB"
    if (!bytes.contains("MemAvailable:") && bytes.contains("MemFree:"))
        bytes["MemAvailable:"] = bytes["MemFree:"] + bytes["Buffers:"] + bytes["Cached:"];
    if (!bytes.contains("MemTotal:") || !bytes.contains("MemAvailable:")) return std::nullopt;
    return PhysicalMemory{bytes["MemTotal:"], std::min(bytes["MemAvailable:"], bytes["MemTotal:"])};
}

}  // namespace korvane
