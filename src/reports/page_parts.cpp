#include "reports/page_parts.h"

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

std::string TableHead(const std::vector<std::string>& headings) {
    return "<table width=90% border=1 cellpadding=2 cellspacing=1>" + GreyRow(headings);
}

std::string BoldCell(std::string_view contents, std::string_view width) {
    return "\r\n<td " + std::string(width) + " align=center><b>" + std::string(contents) + "</b></td>";
}

std::string Cell(std::string_view contents, std::string_view opening) {
    return "\r\n" + std::string(opening) + "\r\n<font size=1 face=verdana>" + std::string(contents) + "\r\n</td>";
}

std::string AverageCell(std::string_view average) {
    return "\r\n<td  align=center><font face=verdana size=2>Average: <b>" + std::string(average) + "</td>";
}

std::string GreyRow(const std::vector<std::string>& cells) {
    std::string row = "\r\n<tr bgcolor=#CCCCCC>";
    for (const std::string& cell : cells)
        row += cell;
    return row.append(kRowEnd);
}

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
