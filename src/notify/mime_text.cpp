#include "notify/mime_text.h"

#include <algorithm>
#include <vector>

#include "base/text.h"
#include "notify/encodings.h"

namespace korvane {
namespace {

constexpr std::size_t kLongestLine = 998;      // RFC 5322, section 2.1.1, without the line end
constexpr std::size_t kLongestHeader = 900;    // leaves room for the name of the field
constexpr std::size_t kLongestCodedLine = 76;  // RFC 2045, section 6.7
constexpr std::size_t kBytesOfAWord = 45;      // 60 characters of Base64; an encoded word has at most 75

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return (c >= ' ' && c <= '~') || c == '\t'; });
}

bool IsContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

std::string Coded(char c) {
    constexpr std::string_view kHex = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    return {'=', kHex[byte >> 4], kHex[byte & 15]};
}

/// A line without its end, in pieces that soft line breaks join.
std::string QuotedPrintable(std::string_view line) {
    std::string coded;
    std::size_t column = 0;
    for (std::size_t at = 0; at < line.size(); ++at) {
        const char c = line[at];
        const bool blank = c == ' ' || c == '\t';
        const bool asItIs = blank ? at + 1 < line.size() : c > ' ' && c <= '~' && c != '=';
        const std::string piece = asItIs ? std::string(1, c) : Coded(c);
        if (column + piece.size() > kLongestCodedLine - 1) {
            coded += "=\r\n";
            column = 0;
        }
        coded += piece;
        column += piece.size();
    }
    return coded;
}

}  // namespace

MimeText AsMimeText(std::string_view type, std::string_view text) {
    const std::string utf8 = ReplaceAll(ReplaceAll(ToUtf8(std::string(text)), "\r\n", "\n"), "\r", "\n");
    std::vector<std::string> lines = Split(utf8, '\n');
    const bool fits = std::all_of(lines.begin(), lines.end(),
                                  [](const std::string& line) { return line.size() <= kLongestLine && IsAscii(line); });
    MimeText mime;
    mime.headers = "Content-Type: " + std::string(type) +
                   "; charset=UTF-8\r\n"
                   "Content-Transfer-Encoding: " +
                   (fits ? "7bit" : "quoted-printable") + "\r\n";
    for (std::size_t at = 0; at < lines.size(); ++at)
        mime.text += (at > 0 ? "\r\n" : "") + (fits ? lines[at] : QuotedPrintable(lines[at]));
    return mime;
}

std::string AsHeaderText(std::string_view text) {
    if (text.size() <= kLongestHeader && IsAscii(text) && !Holds(text, "=?")) return std::string(text);
    const std::string utf8 = ToUtf8(std::string(text));
    std::string words;
    for (std::size_t at = 0, end = 0; at < utf8.size(); at = end) {
        end = std::min(at + kBytesOfAWord, utf8.size());
        while (end < utf8.size() && IsContinuation(utf8[end]))
            --end;
        words += (words.empty() ? "" : "\r\n ") + ("=?UTF-8?B?" + Base64Encode(utf8.substr(at, end - at)) + "?=");
    }
    return words;
}

std::string AsMailbox(std::string_view name, std::string_view address) {
    const std::string coded = AsHeaderText(name);
    const std::string quoted = "\"" + ReplaceAll(ReplaceAll(name, "\\", "\\\\"), "\"", "\\\"") + "\"";
    return (coded == name ? quoted : coded) + " <" + std::string(address) + ">";
}

}  // namespace korvane
