// Prepares a typed web address for sending.
#pragma once

#include <string>
#include <string_view>

namespace korvane {

/// Removes spaces and line ends around the address and percent-encodes spaces, quotes, angle brackets and non-ASCII bytes after
/// the host, as a browser does (RFC 3986, section 2.1); existing encodings stay. The host stays unchanged: a mistake in it is an
/// error of the transfer.
std::string EncodeUrl(std::string_view typed);

}  // namespace korvane
