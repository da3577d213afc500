// Processors and memory, from the texts of the kernel's proc(5) files.
#pragma once

#include <optional>
#include <string_view>

#include "platform/system_info.h"

namespace korvane {

/// From /proc/stat. A processor that waits for a disk is idle: iowait counts as idle, everything else, stolen time too, as work.
/// The time of guests is in that of their hosts already. Nothing when the line of all processors is missing or has no idle time;
/// kernels that count less have fewer columns. In a container these are the figures of the whole machine.
std::optional<ProcessorTimes> ProcessorsOf(std::string_view stat);

/// From /proc/meminfo. Before Linux 3.14 there is no MemAvailable; what is free, in buffers and in the page cache stands in for
/// it.
std::optional<PhysicalMemory> MemoryOf(std::string_view meminfo);

}  // namespace korvane
