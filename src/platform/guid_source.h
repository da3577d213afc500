// Port: globally unique identifiers.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace korvane {

/// The fields of a GUID (RFC 9562, section 5).
struct Guid {
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::array<std::uint8_t, 8> data4{};
};

class GuidSource {
public:
    virtual ~GuidSource() = default;

    /// Returns a new random GUID (version 4), or nothing when the system provides no random bytes.
    virtual std::optional<Guid> CoCreateGuid() = 0;
};

}  // namespace korvane
