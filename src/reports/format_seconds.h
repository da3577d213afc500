// Readable durations: "250 ms.", "30 secs.", "1.50 min.", "2.00 hrs.".
#pragma once

#include <string>
#include <string_view>

namespace korvane {

/// Formats a `seconds` text that contains a number; returns "N/A" for any other. Whole seconds below 10 stay as given.
std::string FormatSeconds(std::string_view seconds);

/// Formats an average with two decimals ("0.20" for 0.2), followed by "</b>" and its unit. The unit follows from the sum of the
/// values, as these pages have always had it: ten times 200 ms is "0.20 sec.". `count` is at least 1.
std::string AverageText(double sum, int count);

}  // namespace korvane
