// The name and version of the kernel, as it gives them.
#pragma once

#include <string_view>

#include "platform/system_info.h"

namespace korvane {

class LinuxSystemInfo : public SystemInfo {
public:
    /// All blank when the kernel does not say.
    SystemVersion Version() const override;
};

/// "6.1.0-13-amd64" as version "6.1" and build "0-13-amd64": the first two numbers, and what stands behind the sign after them.
SystemVersion VersionOfRelease(std::string_view platform, std::string_view release);

}  // namespace korvane
