// Text helpers that every room uses. Text is std::string in UTF-8; a "character" is a code point, and case folding is that of
// ASCII, since keys, words and addresses are ASCII.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace korvane {

std::string ToLower(std::string_view text);

/// Without leading and trailing blanks and tabs; line ends stay.
std::string Trim(std::string_view text);

/// Without leading and trailing blanks, tabs and line ends.
std::string TrimAll(std::string_view text);

bool EqualsNoCase(std::string_view a, std::string_view b);

/// Whether `text` holds `part`, upper and lower case told apart. The empty text is found in any text but the empty one.
bool Holds(std::string_view text, std::string_view part);

/// The first `count` characters, never cutting one in two.
std::string Left(std::string_view text, std::size_t count);

/// The pieces between the separators: always one more than there are separators.
std::vector<std::string> Split(std::string_view text, char separator);

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to);

/// Bytes from outside as text: UTF-8 stays, anything else is read as ISO 8859-1 (RFC 3629 tells which bytes are UTF-8).
std::string ToUtf8(std::string bytes);

/// The size of ToUtf8(bytes).
std::size_t Utf8Size(std::string_view bytes);

/// Control characters but tabs and line ends become a blank each: a terminal would obey them, a file or a page break off.
std::string WithoutControls(std::string_view text);

/// Order without regard to case, for maps keyed by names of columns, sections and keys.
struct LessNoCase {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const;
};

/// Of ASCII: what no line of text shows.
constexpr bool IsControl(char c) {
    return static_cast<unsigned char>(c) < ' ' || c == '\x7f';
}

/// `text`, or `otherwise` when it is empty.
std::string Or(std::string text, std::string otherwise);

}  // namespace korvane
