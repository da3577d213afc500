// Comma-separated values (RFC 4180): records of cells, in which quotes protect separators, line ends and quotes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace korvane {

struct CsvRecord {
    int line = 1;  ///< of the file, where the record begins
    std::vector<std::string> cells;
};

/// Reads UTF-8 with or without a byte order mark, with any line ends. The separator is the comma, semicolon or tab that is the most
/// frequent in the first line. Empty lines are skipped. Throws Error with the line for anything else, such as another encoding, a
/// quote that is never closed, and for more than `most` records after the first.
std::vector<CsvRecord> ReadCsv(std::string_view text, std::size_t most);

/// Returns the record with commas and its line end.
///
/// Spreadsheets take a cell that begins with =, +, -, @ or a control character for a formula. Such a cell gets an apostrophe in
/// front, which ReadCsv takes away; so does one whose apostrophes ReadCsv would take for that. All cells come back as they were.
std::string CsvLine(const std::vector<std::string>& cells);

}  // namespace korvane
