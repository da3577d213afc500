// Reads processor times and memory from the kernel's proc(5) files.
#pragma once

#include <optional>
#include <string_view>

#include "platform/system_info.h"

namespace korvane {

/// Reads /proc/stat. iowait counts as idle, since the processor waits for a disk; everything else counts as work, including steal
/// time. The times of guests are already part of those of their hosts. Returns nothing when the line of all processors is missing
/// or has no idle time; older kernels have fewer columns. In a container these are the figures of the whole machine.
std::optional<ProcessorTimes> ProcessorsOf(std::string_view stat);

/// Reads /proc/meminfo. Before Linux 3.14 there is no MemAvailable; free memory, buffers and page cache are then added up
/// instead.
std::optional<PhysicalMemory> MemoryOf(std::string_view meminfo);

}  // namespace korvane
