// The tables of the report pages, cell by cell. Other tools read these pages, so the mark-up stays as it has always been, in the
// order and with the line ends of old, unclosed rows and attributes without quotes included.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvane {

constexpr std::string_view kTableEnd = "\r\n\r\n</table>";
constexpr std::string_view kRowBegin = "<tr>";
constexpr std::string_view kRowEnd = "\r\n</tr>";

/// The opening of a report table with its row of headings; each heading is a whole cell.
std::string TableHead(const std::vector<std::string_view>& headings);

/// "<td>" or an opening with attributes, the font of all cells, the contents, the closing.
std::string Cell(std::string_view contents, std::string_view opening = "<td>");

/// A cell of the row of averages.
std::string CentredCell(std::string_view contents);

/// "<td  align=center><font face=verdana size=2>Average: <b>", then the text with its own "</b>".
std::string AverageCell(std::string_view average);

/// The grey row at the end of a table.
std::string GreyRow(const std::vector<std::string>& cells);

}  // namespace korvane
