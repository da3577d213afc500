#include "reports/html_table.h"

namespace korvane {
namespace {

constexpr std::string_view kLine = "\r\n";
constexpr std::string_view kGreyRowBegin = "\r\n<tr bgcolor=#CCCCCC>";

}  // namespace

std::string TableHead(const std::vector<std::string_view>& headings) {
    std::string head = "<table width=90% border=1 cellpadding=2 cellspacing=1>";
    head += kGreyRowBegin;
    for (const std::string_view heading : headings)
        head.append(kLine).append(heading);
    return head.append(kRowEnd);
}

std::string Cell(std::string_view contents, std::string_view opening) {
    std::string cell(kLine);
    cell.append(opening).append("\r\n<font size=1 face=verdana>").append(contents).append("\r\n</td>");
    return cell;
}

std::string CentredCell(std::string_view contents) {
    return "\r\n<td  align=center><b>" + std::string(contents) + "</b></td>";
}

std::string AverageCell(std::string_view average) {
    return "\r\n<td  align=center><font face=verdana size=2>Average: <b>" + std::string(average) + "</td>";
}

std::string GreyRow(const std::vector<std::string>& cells) {
    std::string row(kGreyRowBegin);
    for (const std::string& cell : cells)
        row += cell;
    return row.append(kRowEnd);
}

}  // namespace korvane
