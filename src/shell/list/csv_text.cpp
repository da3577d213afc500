#include "shell/list/csv_text.h"

#include <algorithm>
#include <utility>

#include "base/error.h"
#include "base/text.h"

namespace korvane {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kSeparators = ",;\t";
constexpr std::string_view kFormulaSigns = "=+-@\t\r\n";

[[noreturn]] void Refuse(int line, const std::string& why) {
    throw Error("Line " + std::to_string(line) + ": " + why);
}

void CheckEncoding(std::string_view text) {
    int line = 1;
    for (std::size_t at = 0; at < text.size(); ++line) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string one(text.substr(at, end - at));
        if (Holds(one, std::string_view("\0", 1)) || ToUtf8(one) != one)
            Refuse(line, "this is not UTF-8. Save the file as UTF-8.");
        at = end + 1;
    }
}

char SeparatorOf(std::string_view text) {
    const std::string_view first = text.substr(0, text.find_first_of("\r\n"));
    return *std::ranges::max_element(kSeparators, {}, [&](char separator) { return std::ranges::count(first, separator); });
}

bool LooksLikeFormula(std::string_view cell) {
    const auto first = cell.find_first_not_of('\'');
    return first != std::string_view::npos && Holds(kFormulaSigns, cell.substr(first, 1));
}

class CsvReader {
public:
    explicit CsvReader(std::string_view text) : text_(text), separator_(SeparatorOf(text)) {}

    bool AtEnd() const { return at_ >= text_.size(); }
    int Line() const { return line_; }

    CsvRecord Record() {
        CsvRecord record{line_, {}};
        for (bool more = true; more;) {
            record.cells.push_back(Cell());
            more = !AtEnd() && text_[at_] == separator_;
            if (more) ++at_;
        }
        EndLine();
        return record;
    }

private:
    bool AtEndOfCell() const { return AtEnd() || text_[at_] == separator_ || text_[at_] == '\r' || text_[at_] == '\n'; }

    void EndLine() {
        if (AtEnd()) return;
        if (text_.substr(at_, 2) == "\r\n") ++at_;
        ++at_;
        ++line_;
    }

    std::string Cell() {
        std::string cell = !AtEnd() && text_[at_] == '"' ? QuotedCell() : PlainCell();
        if (cell.starts_with('\'') && LooksLikeFormula(cell)) cell.erase(0, 1);
        return cell;
    }

    std::string PlainCell() {
        const std::size_t begin = at_;
        for (; !AtEndOfCell(); ++at_)
            if (text_[at_] == '"') Refuse(line_, "there is a quote in a cell that does not begin with one.");
        return std::string(text_.substr(begin, at_ - begin));
    }

    std::string QuotedCell() {
        const int begin = line_;
        std::string cell;
        for (++at_;; cell += text_[at_++]) {
            if (AtEnd()) Refuse(begin, "a quote is not closed.");
            if (text_[at_] == '\n') ++line_;
            if (text_[at_] != '"') continue;
            if (text_.substr(++at_, 1) != "\"") break;
        }
        if (!AtEndOfCell()) Refuse(line_, "there is text after a closing quote.");
        return cell;
    }

    std::string_view text_;
    char separator_;
    std::size_t at_ = 0;
    int line_ = 1;
};

}  // namespace

std::vector<CsvRecord> ReadCsv(std::string_view text, std::size_t most) {
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    CheckEncoding(text);
    std::vector<CsvRecord> records;
    for (CsvReader reader(text); !reader.AtEnd();) {
        CsvRecord record = reader.Record();
        if (record.cells.size() == 1 && record.cells[0].empty()) continue;
        records.push_back(std::move(record));
        if (records.size() > most + 1)
            throw Error("The file has " + std::to_string(std::ranges::count(text, '\n')) + " lines, and no more than " +
                        std::to_string(most) + " entries are possible.");
    }
    return records;
}

std::string CsvLine(const std::vector<std::string>& cells) {
    std::string line;
    for (bool first = true; const std::string& cell : cells) {
        const std::string safe = (LooksLikeFormula(cell) ? "'" : "") + cell;
        const bool quotes = safe.find_first_of(",;\t\"\r\n") != std::string::npos || Trim(safe) != safe;
        line += std::exchange(first, false) ? "" : ",";
        line += quotes ? '"' + ReplaceAll(safe, "\"", "\"\"") + '"' : safe;
    }
    return line + "\r\n";
}

}  // namespace korvane
