#include "platform/linux/linux_guid_source.h"

#include <systemd/sd-id128.h>

#include <algorithm>
#include <iterator>

namespace korvane {

std::optional<Guid> LinuxGuidSource::CoCreateGuid() {
    sd_id128_t id;
    if (::sd_id128_randomize(&id) < 0) return std::nullopt;
    const auto& bytes = id.bytes;
    Guid guid;
    guid.data1 = std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
    guid.data2 = static_cast<std::uint16_t>(bytes[4] << 8 | bytes[5]);
    guid.data3 = static_cast<std::uint16_t>(bytes[6] << 8 | bytes[7]);
    std::copy(std::begin(bytes) + 8, std::end(bytes), guid.data4.begin());
    return guid;
}

}  // namespace korvane
