// Text as a value in the address of a page of the website, in the encoding that its pages read.
#pragma once

#include <string>
#include <string_view>

#include "platform/events.h"

namespace korvane {

/// Each CR LF becomes the letters "DA", then "%", ",", blank, "/", "~", ":", "$" and "&" their hexadecimal form behind "%". Every
/// other byte stays. Long texts let the pump run in between.
std::string URLEncodeText(std::string_view text, Events& events);

}  // namespace korvane
