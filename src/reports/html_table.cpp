#include "reports/html_table.h"

namespace korvane {

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

}  // namespace korvane
