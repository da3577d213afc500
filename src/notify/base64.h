// Base64 (RFC 4648, section 4) on the bytes of a text, for mail: encodes and decodes login tokens, and encodes attachments in
// lines.
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

}  // namespace korvane
