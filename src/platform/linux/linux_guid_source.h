// Identifiers from the kernel's random numbers.
#pragma once

#include "platform/guid_source.h"

namespace korvane {

class LinuxGuidSource : public GuidSource {
public:
    std::optional<Guid> CoCreateGuid() override;
};

}  // namespace korvane
