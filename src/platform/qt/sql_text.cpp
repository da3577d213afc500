#include "platform/qt/sql_text.h"

#include <algorithm>
#include <initializer_list>

#include "base/datetime.h"
#include "base/error.h"
#include "base/text.h"

namespace korvane {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kNameCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";

// Returns the character that closes a quotation opened by `open`, 0 when `open` begins none.
char ClosingOf(char open) {
    switch (open) {
        case '\'':
        case '"':
        case '`':
            return open;
        case '[':
            return ']';
        default:
            return 0;
    }
}

// Removes one value from the front of a connection string, together with the ";" that ends it.
std::string TakeValue(std::string_view& rest) {
    const auto start = rest.find_first_not_of(' ');
    rest.remove_prefix(start == std::string_view::npos ? rest.size() : start);
    std::string value;
    const char quote = rest.starts_with('"') ? '"' : rest.starts_with('{') ? '}' : '\0';
    if (quote != '\0') {
        rest.remove_prefix(1);
        const auto end = rest.find(quote);
        value = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        if (quote == '"' && rest.starts_with(quote)) return value + quote + TakeValue(rest);
    }
    const auto end = rest.find(';');
    if (quote == '\0') value = Trim(rest.substr(0, end));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return value;
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

}  // namespace

std::string DatabaseFileOf(std::string_view connectionString) {
    std::string_view rest = connectionString;
    while (!rest.empty()) {
        const auto end = rest.find_first_of("=;");
        if (end == std::string_view::npos) break;
        const std::string key = Trim(rest.substr(0, end));
        const bool hasValue = rest[end] == '=';
        rest.remove_prefix(end + 1);
        if (!hasValue) continue;
        std::string value = TakeValue(rest);
        const bool namesFile = EqualsNoCase(key, "DBQ") || EqualsNoCase(key, "Data Source");
        if (namesFile && !value.empty()) return value;
    }
    throw Error("The connection string names no database file.");
}

std::string WithStoredDates(std::string_view query) {
    std::string result;
    result.reserve(query.size());
    while (!query.empty()) {
        const auto special = query.find_first_of("#'\"`[");
        result += query.substr(0, special);
        if (special == std::string_view::npos) break;
        query.remove_prefix(special);
        const bool isDate = query.front() == '#';
        const auto end = query.find(isDate ? '#' : ClosingOf(query.front()), 1);
        if (!isDate) {
            const auto length = end == std::string_view::npos ? query.size() : end + 1;
            result += query.substr(0, length);
            query.remove_prefix(length);
            continue;
        }
        if (end == std::string_view::npos) throw Error("The query holds a date without its closing #: " + std::string(query));
        try {
            result += '\'' + ParseDateTime(query.substr(1, end - 1)).Stored() + '\'';
        } catch (const Error&) {
            throw Error("The query holds a date that cannot be read: " + std::string(query.substr(0, end + 1)));
        }
        query.remove_prefix(end + 1);
    }
    return result;
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

SelectText ParseSelect(std::string_view query) {
    SelectText select;
    select.query = query.substr(0, query.find_last_not_of(" \t\r\n;") + 1);
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
