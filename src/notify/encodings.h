// The encodings of mail, on the bytes of a text: Base64 (RFC 4648, section 4) for login tokens and attachments, and MD5 (RFC 1321)
// with HMAC-MD5 (RFC 2104), which answer the challenge of CRAM-MD5 (RFC 2195) and are not secure for any other purpose today.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace korvane {

/// Returns one line without breaks; empty for the empty text.
std::string Base64Encode(std::string_view text);

/// Returns an empty text unless the input consists of whole groups of four characters of the alphabet, where the last group may
/// end in "=" or "==".
std::string Base64Decode(std::string_view text);

/// Returns lines of 72 characters, each followed by CR LF. If the number of bytes in the last line leaves a remainder of one when
/// divided by three, that line has no CR LF: this has always been the form, and the mail's reader adds one anyway. `afterLine` is
/// called after each line.
std::string Base64EncodeLines(std::string_view contents, const std::function<void()>& afterLine);

/// Returns the 16 bytes of the digest.
std::string Md5(std::string_view bytes);

/// Returns 32 lower-case hexadecimal digits.
std::string HmacMd5Hex(std::string_view key, std::string_view text);

/// Returns two lower-case hexadecimal digits per byte.
std::string HexOf(std::string_view bytes);

}  // namespace korvane
