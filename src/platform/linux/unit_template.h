// The text of data/korvane.service.in, which the build embeds in the program; packages make their unit from the same file.
#pragma once

#include <string_view>

namespace korvane {

extern const std::string_view kUnitTemplate;

}  // namespace korvane
