// The parts of the report pages: tables, cell by cell, and readable durations ("250 ms.", "30 secs.", "1.50 min.", "2.00 hrs.").
// Other tools read these pages, so the mark-up stays as it has always been,
// including its order, its line ends, unclosed rows and attributes without quotes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvane {

constexpr std::string_view kTableEnd = "\r\n\r\n</table>";
constexpr std::string_view kRowBegin = "<tr>";
constexpr std::string_view kRowEnd = "\r\n</tr>";

/// Returns the opening of a report table with its row of headings.
std::string TableHead(const std::vector<std::string>& headings);

/// Returns a centred bold cell, of the headings or of the row of averages.
std::string BoldCell(std::string_view contents, std::string_view width = "");

/// Returns "<td>" or an opening with attributes, the font of all cells, the contents and the closing tags.
std::string Cell(std::string_view contents, std::string_view opening = "<td>");

/// Returns "<td  align=center><font face=verdana size=2>Average: <b>", followed by the text with its own "</b>".
std::string AverageCell(std::string_view average);

/// Returns the grey row at the end of a table.
std::string GreyRow(const std::vector<std::string>& cells);

/// Formats a `seconds` text that contains a number; returns "N/A" for any other. Whole seconds below 10 stay as given.
std::string FormatSeconds(std::string_view seconds);

/// Formats an average with two decimals ("0.20" for 0.2), followed by "</b>" and its unit. The unit follows from the sum of the
/// values, as these pages have always had it: ten times 200 ms is "0.20 sec.". `count` is at least 1.
std::string AverageText(double sum, int count);

}  // namespace korvane
