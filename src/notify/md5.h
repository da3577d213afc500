// MD5 (RFC 1321) and HMAC-MD5 (RFC 2104), which answer the challenge of CRAM-MD5 (RFC 2195). Not secure for any other purpose
// today.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace korvane {

using Md5Digest = std::array<std::uint8_t, 16>;

Md5Digest Md5(std::string_view bytes);

/// Returns 32 lower-case hexadecimal digits.
std::string HmacMd5Hex(std::string_view key, std::string_view text);

/// Returns two lower-case hexadecimal digits per byte.
std::string HexOf(const Md5Digest& digest);

}  // namespace korvane
