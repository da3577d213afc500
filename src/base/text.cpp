#include "base/text.h"

#include <algorithm>
#include <utility>

namespace korvane {
namespace {

constexpr char LowerChar(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string TrimOf(std::string_view text, std::string_view dropped) {
    const auto first = text.find_first_not_of(dropped);
    if (first == std::string_view::npos) return {};
    const auto last = text.find_last_not_of(dropped);
    return std::string(text.substr(first, last - first + 1));
}

unsigned char ByteAt(std::string_view bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}

// Returns the length of the well-formed UTF-8 sequence at `at`, or 0 if there is none (RFC 3629, section 4).
std::size_t Utf8SequenceLength(std::string_view bytes, std::size_t at) {
    const unsigned char lead = ByteAt(bytes, at);
    if (lead < 0x80) return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || at + length > bytes.size()) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((ByteAt(bytes, at + i) & 0xC0) != 0x80) return 0;
    }
    const unsigned char second = ByteAt(bytes, at + 1);
    const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool outside = (lead == 0xED && second > 0x9F) || (lead == 0xF4 && second > 0x8F);
    return overlong || outside ? 0 : length;
}

bool IsUtf8(std::string_view bytes) {
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t length = Utf8SequenceLength(bytes, at);
        if (length == 0) return false;
        at += length;
    }
    return true;
}

}  // namespace

std::string ToLower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), LowerChar);
    return lower;
}

std::string Trim(std::string_view text) {
    return TrimOf(text, " \t");
}

std::string TrimAll(std::string_view text) {
    return TrimOf(text, " \t\r\n");
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return LowerChar(x) == LowerChar(y); });
}

bool Holds(std::string_view text, std::string_view part) {
    return !text.empty() && text.find(part) != std::string_view::npos;
}

std::string Left(std::string_view text, std::size_t count) {
    std::size_t characters = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool startsCharacter = (ByteAt(text, at) & 0xC0) != 0x80;
        if (startsCharacter && characters++ == count) return std::string(text.substr(0, at));
    }
    return std::string(text);
}

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> pieces;
    for (;;) {
        const auto end = text.find(separator);
        pieces.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) return pieces;
        text.remove_prefix(end + 1);
    }
}

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to) {
    std::string result;
    if (from.empty()) return std::string(text);
    for (;;) {
        const auto at = text.find(from);
        result += text.substr(0, at);
        if (at == std::string_view::npos) return result;
        result += to;
        text.remove_prefix(at + from.size());
    }
}

std::size_t Utf8Size(std::string_view bytes) {
    if (IsUtf8(bytes)) return bytes.size();
    const auto beyondAscii =
        std::count_if(bytes.begin(), bytes.end(), [](char c) { return static_cast<unsigned char>(c) > 0x7F; });
    return bytes.size() + static_cast<std::size_t>(beyondAscii);
}

std::string ToUtf8(std::string bytes) {
    const std::size_t size = Utf8Size(bytes);
    if (size == bytes.size()) return bytes;
    std::string text;
    text.reserve(size);
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            text += c;
        } else {
            text += static_cast<char>(0xC0 | (byte >> 6));
            text += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return text;
}

std::string WithoutControls(std::string_view text) {
    std::string plain;
    plain.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const unsigned char byte = ByteAt(text, at);
        // U+0080 to U+009F are two bytes.
        const bool upper = byte == 0xC2 && at + 1 < text.size() && ByteAt(text, at + 1) < 0xA0;
        const bool lower = byte == 0x7F || (byte < 0x20 && byte != '\t' && byte != '\r' && byte != '\n');
        plain += upper || lower ? ' ' : text[at];
        if (upper) ++at;
    }
    return plain;
}

std::string OneLine(std::string_view text, std::size_t most) {
    std::string line = WithoutControls(Left(ToUtf8(std::string(text)), most));
    std::replace_if(line.begin(), line.end(), IsControl, ' ');
    return line;
}

bool LessNoCase::operator()(std::string_view a, std::string_view b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](char x, char y) { return LowerChar(x) < LowerChar(y); });
}

std::string Or(std::string text, std::string otherwise) {
    return text.empty() ? std::move(otherwise) : std::move(text);
}

}  // namespace korvane
