// The tables of the report pages, cell by cell. Other tools read these pages, so the mark-up stays as it has always been,
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

}  // namespace korvane
