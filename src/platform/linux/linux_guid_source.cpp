#include "platform/linux/linux_guid_source.h"

#include <sys/random.h>

#include <algorithm>
#include <iterator>

namespace korvane {
namespace {

// RFC 9562, section 5.4: the version is in the upper four bits of data3, the variant in the upper two of data4.
constexpr unsigned kVersion4 = 0x4000;
constexpr unsigned kVariant = 0x80;

}  // namespace

std::optional<Guid> LinuxGuidSource::CoCreateGuid() {
    std::array<std::uint8_t, 16> bytes{};
    // So few bytes are returned all at once or not at all.
    if (::getrandom(bytes.data(), bytes.size(), GRND_NONBLOCK) != static_cast<ssize_t>(bytes.size())) return std::nullopt;
    Guid guid;
    guid.data1 = std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
    guid.data2 = static_cast<std::uint16_t>(bytes[4] << 8 | bytes[5]);
    guid.data3 = static_cast<std::uint16_t>(((bytes[6] << 8 | bytes[7]) & 0x0FFF) | kVersion4);
    std::copy(std::next(bytes.begin(), 8), bytes.end(), guid.data4.begin());
    guid.data4[0] = static_cast<std::uint8_t>((guid.data4[0] & 0x3F) | kVariant);
    return guid;
}

}  // namespace korvane
