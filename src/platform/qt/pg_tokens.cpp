#include "platform/qt/pg_tokens.h"

#include <algorithm>

#include "base/text.h"
#include "platform/qt/pg_text.h"

namespace korvane {
namespace {

using Kind = PgToken::Kind;

constexpr std::string_view kBlankCharacters = " \t\r\n";
constexpr std::string_view kWordCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";
constexpr std::string_view kOperatorCharacters = "<>=|!:";

// A quote within a quotation is doubled.
PgToken Quotation(std::string_view sql) {
    const char closing = sql.front() == '[' ? ']' : sql.front();
    std::string content;
    std::size_t at = 1;
    for (; at < sql.size(); ++at) {
        if (sql[at] == closing && (at + 1 == sql.size() || sql[at + 1] != closing || closing == ']')) break;
        if (sql[at] == closing) ++at;
        content += sql[at];
    }
    if (closing == '\'') return {Kind::Text, std::string(sql.substr(0, at + 1))};
    return {Kind::Name, content};
}

std::size_t LengthOf(const PgToken& token, std::string_view sql) {
    if (token.kind != Kind::Name) return token.text.size();
    const std::size_t quotes =
        sql.front() == '[' ? 0 : static_cast<std::size_t>(std::count(token.text.begin(), token.text.end(), sql.front()));
    return token.text.size() + quotes + 2;
}

PgToken First(std::string_view sql) {
    const auto run = [&](Kind kind, std::string_view characters) {
        return PgToken{kind, std::string(sql.substr(0, sql.find_first_not_of(characters)))};
    };
    const char first = sql.front();
    if (kBlankCharacters.find(first) != std::string_view::npos) return run(Kind::Blank, kBlankCharacters);
    if (sql.starts_with("--")) return {Kind::Blank, std::string(sql.substr(0, sql.find('\n')))};
    if (kWordCharacters.find(first) != std::string_view::npos) return run(Kind::Word, kWordCharacters);
    if (kOperatorCharacters.find(first) != std::string_view::npos) return run(Kind::Symbol, kOperatorCharacters);
    if (first == '\'' || first == '"' || first == '`' || first == '[') return Quotation(sql);
    return {first == '?' ? Kind::Mark : Kind::Symbol, std::string(1, first)};
}

}  // namespace

std::vector<PgToken> PgTokens(std::string_view sql) {
    std::vector<PgToken> tokens;
    while (!sql.empty()) {
        tokens.push_back(First(sql));
        sql.remove_prefix(std::min(LengthOf(tokens.back(), sql), sql.size()));
        if (tokens.back().kind == Kind::Blank && tokens.back().text.starts_with("--")) tokens.back().text = " ";
    }
    return tokens;
}

std::string PgForm(const PgToken& token) {
    if (token.kind == Kind::Name) return PgName(token.text);
    if (token.kind == Kind::Word && EqualsNoCase(token.text, "ifnull")) return "coalesce";
    return token.text;
}

bool PgReader::Take(std::string_view words) {
    const std::size_t start = at_;
    for (const std::string& word : Split(words, ' ')) {
        if (!Is(word)) {
            at_ = start;
            return false;
        }
        Skip();
    }
    return true;
}

std::string PgReader::TakeName() {
    std::string name = AtEnd() ? "" : ToLower(tokens_[at_].text);
    Skip();
    return name;
}

std::string PgReader::TakeUntil(std::initializer_list<std::string_view> ends) {
    std::string taken;
    int depth = 0;
    const auto ended = [&] { return std::any_of(ends.begin(), ends.end(), [&](auto end) { return Is(end); }); };
    for (; !AtEnd() && (depth > 0 || !ended()); ++at_) {
        depth += Is("(") ? 1 : Is(")") ? -1 : 0;
        taken += PgForm(tokens_[at_]);
    }
    return TrimAll(taken);
}

void PgReader::Skip() {
    if (!AtEnd()) ++at_;
    SkipBlanks();
}

bool PgReader::Is(std::string_view word) const {
    if (AtEnd()) return false;
    const PgToken& token = tokens_[at_];
    return (token.kind == Kind::Word || token.kind == Kind::Symbol) && EqualsNoCase(token.text, word);
}

void PgReader::SkipBlanks() {
    while (!AtEnd() && tokens_[at_].kind == Kind::Blank)
        ++at_;
}

}  // namespace korvane
