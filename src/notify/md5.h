// MD5 (RFC 1321) and HMAC-MD5 (RFC 2104), which answer the challenge of CRAM-MD5 (RFC 2195). Not secure for any other purpose
// today.
#pragma once

#include <string>
#include <string_view>

namespace korvane {

/// Returns the 16 bytes of the digest.
std::string Md5(std::string_view bytes);

/// Returns 32 lower-case hexadecimal digits.
std::string HmacMd5Hex(std::string_view key, std::string_view text);

/// Returns two lower-case hexadecimal digits per byte.
std::string HexOf(std::string_view bytes);

}  // namespace korvane
