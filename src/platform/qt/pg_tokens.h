// The words of a statement in SQLite's form.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvane {

struct PgToken {
    enum class Kind { Blank, Word, Text, Name, Mark, Symbol };
    Kind kind;
    std::string text;  ///< a name without its quotes, everything else as it stands; a comment is a blank
};

std::vector<PgToken> PgTokens(std::string_view sql);

/// Returns the token in PostgreSQL's form.
std::string PgForm(const PgToken& token);

/// Reads tokens from the first to the last; blanks count only in what Rest and TakeUntil return.
class PgReader {
public:
    explicit PgReader(std::vector<PgToken> tokens) : tokens_(std::move(tokens)) { SkipBlanks(); }

    bool AtEnd() const { return at_ == tokens_.size(); }
    /// Case-insensitive; the words are separated by one blank. Returns whether they are next, and goes beyond them.
    bool Take(std::string_view words);
    std::string TakeName();
    /// Returns what stands before the next of these symbols or words outside parentheses, in PostgreSQL's form.
    std::string TakeUntil(std::initializer_list<std::string_view> ends);
    void Skip();

private:
    bool Is(std::string_view word) const;
    void SkipBlanks();

    std::vector<PgToken> tokens_;
    std::size_t at_ = 0;
};

}  // namespace korvane
