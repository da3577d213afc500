#include "reports/format_seconds.h"

#include <cmath>

#include "base/ignore_errors.h"
#include "base/numbers.h"

namespace korvane {
namespace {

constexpr double kPerUnit = 60;

// The next comparison uses the written value.
double InLargerUnit(double value) {
    return ParseNumber(FormatFixed(value / kPerUnit, 2));
}

std::string InSeconds(std::string_view asGiven, double value) {
    if (value >= 10) return FormatGrouped(value, 0) + " secs.";
    return (value == std::floor(value) ? std::string(asGiven) : FormatGrouped(value, 2)) + " secs.";
}

std::string Formatted(std::string_view asGiven) {
    double value = ParseNumber(asGiven);
    if (value < 1) return FormatGrouped(value * 1000, 0) + " ms.";
    if (static_cast<double>(RoundHalfEven(value)) <= kPerUnit) return InSeconds(asGiven, value);
    value = InLargerUnit(value);
    if (value <= kPerUnit) return FormatGrouped(value, 2) + " min.";
    return FormatGrouped(InLargerUnit(value), 2) + " hrs.";
}

}  // namespace

std::string FormatSeconds(std::string_view seconds) {
    std::string text = "N/A";
    IgnoreErrors([&] { text = Formatted(seconds); });
    return text;
}

std::string AverageText(double sum, int count) {
    constexpr double kMillisecondsUpTo = 1000;
    if (sum <= kMillisecondsUpTo) return FormatGrouped(sum / count, 2) + "</b> ms.";
    return FormatGrouped(sum / count / 1000, 2) + "</b> sec.";
}

}  // namespace korvane
