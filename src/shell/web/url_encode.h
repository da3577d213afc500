// Encodes a text as a value in the address of a page of the website, in the encoding that its pages expect.
#pragma once

#include <string>
#include <string_view>

#include "platform/events.h"

namespace korvane {

/// Replaces each CR LF by the letters "DA", then "%", ",", space, "/", "~", ":", "$" and "&" by "%" and their hexadecimal form.
/// Every other byte stays. Long texts let the pump run in between.
std::string URLEncodeText(std::string_view text, Events& events);

}  // namespace korvane
