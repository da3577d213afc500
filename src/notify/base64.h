// Base64 (RFC 4648, section 4) on the bytes of a text, in the three forms that mail needs: a token in a login, its way back,
// and the lines of an attachment.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace korvane {

/// One line without breaks; empty for the empty text.
std::string Base64Encode(std::string_view text);

/// Empty for anything that is not whole groups of four characters of the alphabet, the last characters of a group "=" or "==".
std::string Base64Decode(std::string_view text);

/// Lines of 72 characters, each with CR LF behind it. A last line whose bytes leave one over when divided by three goes
/// without its CR LF:
/// so the form has always been, and the reader puts one there anyway. `afterLine` is called after each line.
std::string Base64EncodeLines(std::string_view contents, const std::function<void()>& afterLine);

}  // namespace korvane
