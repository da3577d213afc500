// What the status line of the settings dialog says on its pages and inputs.
#pragma once

#include <string_view>

namespace korvane {

/// By the title of the page; blank for anything else.
std::string_view HelpOnOptionsPage(std::string_view page);

/// By the name of the control; blank for one without help.
std::string_view HelpOnOptionsInput(std::string_view control);

}  // namespace korvane
