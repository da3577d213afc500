#include "platform/linux/proc_figures.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <vector>

namespace korvane {
namespace {

constexpr std::size_t kIdle = 3;
constexpr std::size_t kIoWait = 4;
/// user, nice, system, idle, iowait, irq, softirq, steal
constexpr std::size_t kColumns = 8;

std::string_view TakeLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

std::string_view WithoutBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    return text;
}

/// Reads numbers up to the first text that is not a number.
std::vector<std::uint64_t> NumbersOf(std::string_view text, std::size_t most) {
    std::vector<std::uint64_t> numbers;
    while (numbers.size() < most) {
        text = WithoutBlanks(text);
        std::uint64_t number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc()) break;
        numbers.push_back(number);
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    }
    return numbers;
}

bool IsOneProcessor(std::string_view line) {
    return line.size() > 3 && line.starts_with("cpu") && line[3] >= '0' && line[3] <= '9';
}

/// Returns the value of a line "MemTotal:  24684084 kB", in bytes.
std::optional<std::uint64_t> Bytes(std::string_view meminfo, std::string_view key) {
    while (!meminfo.empty()) {
        const std::string_view line = TakeLine(meminfo);
        if (!line.starts_with(key)) continue;
        const std::vector<std::uint64_t> number = NumbersOf(line.substr(key.size()), 1);
        if (number.empty()) return std::nullopt;
        return number.front() * 1024;
    }
    return std::nullopt;
}

}  // namespace

std::optional<ProcessorTimes> ProcessorsOf(std::string_view stat) {
    std::vector<std::uint64_t> all;
    int processors = 0;
    while (!stat.empty()) {
        const std::string_view line = TakeLine(stat);
        if (line.starts_with("cpu ")) all = NumbersOf(line.substr(4), kColumns);
        if (IsOneProcessor(line)) ++processors;
        if (!line.starts_with("cpu")) break;  // they come first, and the rest is long
    }
    if (all.size() <= kIdle) return std::nullopt;
    ProcessorTimes times{.idle = all[kIdle], .total = 0, .processors = std::max(1, processors)};
    if (all.size() > kIoWait) times.idle += all[kIoWait];
    for (const std::uint64_t part : all)
        times.total += part;
    return times;
}

std::optional<PhysicalMemory> MemoryOf(std::string_view meminfo) {
    const auto total = Bytes(meminfo, "MemTotal:");
    auto available = Bytes(meminfo, "MemAvailable:");
    if (!available) {
        available = Bytes(meminfo, "MemFree:");
        if (available) *available += Bytes(meminfo, "Buffers:").value_or(0) + Bytes(meminfo, "Cached:").value_or(0);
    }
    if (!total || !available) return std::nullopt;
    return PhysicalMemory{*total, std::min(*available, *total)};
}

}  // namespace korvane
