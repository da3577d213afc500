// Text as every mail server takes it: its character set is named, its bytes are ASCII and its lines short (RFC 2045, RFC 2047,
// RFC 5322).
#pragma once

#include <string>
#include <string_view>

namespace korvane {

struct MimeText {
    std::string headers;  ///< Content-Type and Content-Transfer-Encoding, with their line ends
    std::string text;
};

/// `type` is "text/plain" or another text. Text that is ASCII with lines of at most 998 bytes stays as it is; other text becomes
/// quoted-printable. Lines end in CR LF.
MimeText AsMimeText(std::string_view type, std::string_view text);

/// Returns the text of a header field: unchanged if it is short ASCII, otherwise encoded words of UTF-8, one a line.
std::string AsHeaderText(std::string_view text);

/// Returns "\"name\" <address>", or the name as AsHeaderText gives it.
std::string AsMailbox(std::string_view name, std::string_view address);

}  // namespace korvane
