// Text helpers for all rooms. Text is std::string in UTF-8; a "character" is a code point. Case folding covers ASCII only, since
// keys, words and addresses are ASCII.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace korvane {

std::string ToLower(std::string_view text);

/// Removes leading and trailing spaces and tabs; line ends stay.
std::string Trim(std::string_view text);

/// Removes leading and trailing spaces, tabs and line ends.
std::string TrimAll(std::string_view text);

bool EqualsNoCase(std::string_view a, std::string_view b);

/// Returns whether `text` contains `part`, case-sensitively. Any text but the empty one contains the empty text.
bool Holds(std::string_view text, std::string_view part);

/// Returns the first `count` characters and never cuts one in two.
std::string Left(std::string_view text, std::size_t count);

/// Returns the pieces between the separators: always one more than there are separators.
std::vector<std::string> Split(std::string_view text, char separator);

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to);

/// Converts bytes from outside to text: UTF-8 stays, anything else is read as ISO 8859-1 (RFC 3629 defines UTF-8).
std::string ToUtf8(std::string bytes);

/// Returns the size of ToUtf8(bytes).
std::size_t Utf8Size(std::string_view bytes);

/// Replaces each control character except tabs and line ends by a space: a terminal would obey it, and a file or a page would
/// break off.
std::string WithoutControls(std::string_view text);

/// Returns the first `most` characters as UTF-8, with a space in place of each control character.
std::string OneLine(std::string_view text, std::size_t most);

/// Case-insensitive order, for maps keyed by names of columns, sections and keys.
struct LessNoCase {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const;
};

/// Returns whether `c` is an ASCII control character.
constexpr bool IsControl(char c) {
    return static_cast<unsigned char>(c) < ' ' || c == '\x7f';
}

/// Returns `text`, or `otherwise` when it is empty.
std::string Or(std::string text, std::string otherwise);

}  // namespace korvane
