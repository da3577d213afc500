#include "platform/qt/sql_text.h"

#include <algorithm>
#include <initializer_list>
#include <iomanip>
#include <sstream>

#include "base/datetime.h"
#include "base/error.h"
#include "base/text.h"

namespace korvane {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kNameCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";

// Returns the character that closes a quotation opened by `open`, 0 when `open` begins none.
char ClosingOf(char open) {
    if (open == '[') return ']';
    return open == '\'' || open == '"' || open == '`' ? open : '\0';
}

// Reads the words of a query from its front.
class Words {
public:
    explicit Words(std::string_view text) : rest_(text) { SkipBlanks(); }

    std::string_view Rest() const { return rest_; }

    bool Take(std::string_view symbol) {
        if (!rest_.starts_with(symbol)) return false;
        rest_.remove_prefix(symbol.size());
        SkipBlanks();
        return true;
    }

    bool TakeKeyword(std::string_view keyword) {
        if (!EqualsNoCase(Word(), keyword)) return false;
        return Take(Word());
    }

    bool AtKeyword(std::string_view keyword) const { return EqualsNoCase(Word(), keyword); }

    /// Skips a word, a quotation, a group in parentheses, or one symbol.
    void Skip() {
        if (Word().empty() && rest_.starts_with('(')) return SkipParentheses();
        const char closing = rest_.empty() ? '\0' : ClosingOf(rest_.front());
        std::size_t length = std::max<std::size_t>(Word().size(), 1);
        if (closing != '\0') length = std::min(rest_.find(closing, 1), rest_.size() - 1) + 1;
        rest_.remove_prefix(std::min(length, rest_.size()));
        SkipBlanks();
    }

    /// Returns a name, plain or between brackets or quotes; empty when there is none.
    std::string TakeName() {
        const char closing = rest_.empty() ? '\0' : ClosingOf(rest_.front());
        std::string name;
        if (closing != '\0' && closing != '\'') {
            const auto end = rest_.find(closing, 1);
            if (end == std::string_view::npos) return {};
            name = rest_.substr(1, end - 1);
            rest_.remove_prefix(end + 1);
        } else {
            name = Word();
            rest_.remove_prefix(name.size());
        }
        SkipBlanks();
        return name;
    }

private:
    std::string_view Word() const { return rest_.substr(0, rest_.find_first_not_of(kNameCharacters)); }

    void SkipParentheses() {
        for (Take("("); !rest_.empty() && !Take(")");)
            Skip();
    }

    void SkipBlanks() {
        const auto start = rest_.find_first_not_of(kBlanks);
        rest_.remove_prefix(start == std::string_view::npos ? rest_.size() : start);
    }

    std::string_view rest_;
};

// Takes "*" or a list of column names. `hasRows`: "*" or ID is among them.
bool TakeList(Words& words, bool& hasRows) {
    hasRows = words.Take("*");
    if (hasRows) return true;
    do {
        const std::string name = words.TakeName();
        if (name.empty()) return false;
        hasRows = hasRows || EqualsNoCase(name, "ID");
    } while (words.Take(","));
    return true;
}

// Returns the position of the first of the keywords outside quotations and parentheses, or the length of the text when there is
// none.
std::size_t PlaceOf(std::initializer_list<std::string_view> keywords, std::string_view text) {
    Words words(text);
    const auto found = [&] {
        return std::any_of(keywords.begin(), keywords.end(), [&](std::string_view each) { return words.AtKeyword(each); });
    };
    while (!words.Rest().empty() && !found())
        words.Skip();
    return text.size() - words.Rest().size();
}

// Removes the moments from a query and returns what is left, with a "?" in the place of each.
std::string TakeMoments(std::string_view query, std::vector<std::string>& moments) {
    std::string result;
    while (!query.empty()) {
        const auto special = query.find_first_of("#'\"`[");
        result += query.substr(0, special);
        if (special == std::string_view::npos) break;
        query.remove_prefix(special);
        const bool isMoment = query.front() == '#';
        const auto end = query.find(isMoment ? '#' : ClosingOf(query.front()), 1);
        if (isMoment && end == std::string_view::npos)
            throw Error("The query holds a date without its closing #: " + std::string(query));
        const std::string_view quotation = query.substr(0, std::min(end, query.size() - 1) + 1);
        query.remove_prefix(quotation.size());
        if (!isMoment) {
            result += quotation;
            continue;
        }
        try {
            moments.push_back(ParseDateTime(quotation.substr(1, quotation.size() - 2)).Stored());
            result += '?';
        } catch (const Error&) {
            throw Error("The query holds a date that cannot be read: " + std::string(quotation));
        }
    }
    return result;
}

}  // namespace

std::string DatabaseFileOf(const std::string& connectionString) {
    const std::size_t key = std::min(connectionString.find("DBQ="), connectionString.find("Data Source="));
    if (key == std::string::npos) throw Error("The connection string names no database file.");
    std::string file = connectionString.substr(connectionString.find('=', key) + 1);
    if (!file.starts_with('"')) return file.substr(0, file.find(';'));
    std::istringstream(file) >> std::quoted(file);
    return file;
}

std::string QuotedName(std::string_view name) {
    return '`' + ReplaceAll(name, "`", "``") + '`';
}

std::string SelectText::Selecting(std::string_view list) const {
    std::string text = "SELECT ";
    text += list;
    if (IsOneTable()) return text + " FROM " + QuotedName(table) + ' ' + rest;
    return text + " FROM (" + query + ')';
}

bool SelectText::LacksOrder() const {
    return !table.empty() && PlaceOf({"ORDER", "GROUP", "UNION", "EXCEPT", "INTERSECT"}, rest) == rest.size();
}

void SelectText::OrderBy(std::string_view list) {
    const std::size_t place = PlaceOf({"LIMIT"}, rest);
    const std::string order = " ORDER BY " + std::string(list) + ' ';
    query.insert(query.size() - rest.size() + place, order);
    rest.insert(place, order);
}

void SelectText::OrderAlsoBy(std::string_view name) {
    const std::size_t place = PlaceOf({"LIMIT"}, rest);
    const std::string order = TrimAll(std::string_view(rest).substr(PlaceOf({"ORDER"}, rest), place - PlaceOf({"ORDER"}, rest)));
    const bool descends = ToLower(order).ends_with(" desc") && order.find(',') == std::string::npos;
    const std::string also = "," + std::string(name) + (descends ? " DESC " : " ");
    query.insert(query.size() - rest.size() + place, also);
    rest.insert(place, also);
}

SelectText ParseSelect(std::string_view source) {
    SelectText select;
    select.query = TakeMoments(source, select.moments);
    select.query.erase(select.query.find_last_not_of(" \t\r\n;") + 1);
    Words words(select.query);
    bool hasRows = false;
    if (!words.TakeKeyword("SELECT") || !TakeList(words, hasRows) || !words.TakeKeyword("FROM")) return select;
    std::string table = words.TakeName();
    const bool ends = words.Rest().empty() || words.AtKeyword("WHERE") || words.AtKeyword("ORDER") || words.AtKeyword("LIMIT");
    if (!ends) return select;
    select.rest = words.Rest();
    select.table = std::move(table);
    select.hasRows = hasRows;
    return select;
}

}  // namespace korvane
