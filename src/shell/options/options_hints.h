// The status line's texts about the pages and inputs of the settings dialog.
#pragma once

#include <string_view>

namespace korvane {

/// Help by the title of the page; empty for anything else.
std::string_view HelpOnOptionsPage(std::string_view page);

/// Help by the name of the control; empty if there is none.
std::string_view HelpOnOptionsInput(std::string_view control);

}  // namespace korvane
