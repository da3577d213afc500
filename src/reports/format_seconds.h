// A duration as people read it: "250 ms.", "30 secs.", "1.50 min.", "2.00 hrs.".
#pragma once

#include <string>
#include <string_view>

namespace korvane {

/// `seconds` is a text that holds a number; "N/A" for any other. Whole seconds below 10 stand as they were given.
std::string FormatSeconds(std::string_view seconds);

/// "0.20" of 0.2: an average with two decimals, closed by "</b>" and its unit. The unit follows from the sum of the values, which
/// is how people know these pages: ten times 200 ms is "0.20 sec.". `count` is at least 1.
std::string AverageText(double sum, int count);

}  // namespace korvane
