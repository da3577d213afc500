// What an operator typed as a web address, made fit to be sent.
#pragma once

#include <string>
#include <string_view>

namespace korvane {

/// Without blanks and line ends around it; blanks, quotes, angle brackets and bytes beyond ASCII after the host are
/// percent-encoded as a browser does (RFC 3986, section 2.1), and what is encoded already stays. The host is left as it is: a
/// mistake in it is an error of the transfer.
std::string EncodeUrl(std::string_view typed);

}  // namespace korvane
