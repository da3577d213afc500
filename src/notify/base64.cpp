#include "notify/base64.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace korvane {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t kLineInput = 54;
constexpr std::size_t kLineOutput = 72;
constexpr std::string_view kLineEnd = "\r\n";

std::uint32_t Byte(std::string_view text, std::size_t at) {
    return at < text.size() ? static_cast<std::uint8_t>(text[at]) : 0U;
}

void AppendEncoded(std::string& out, std::string_view text) {
    for (std::size_t at = 0; at < text.size(); at += 3) {
        const std::uint32_t bits = Byte(text, at) << 16 | Byte(text, at + 1) << 8 | Byte(text, at + 2);
        out += kAlphabet[bits >> 18];
        out += kAlphabet[bits >> 12 & 63];
        out += at + 1 < text.size() ? kAlphabet[bits >> 6 & 63] : '=';
        out += at + 2 < text.size() ? kAlphabet[bits & 63] : '=';
    }
}

// Returns the one to three bytes of a group of four characters.
std::optional<std::string> DecodeGroup(std::string_view group) {
    const std::size_t length = std::min(group.find('='), group.size());
    if (length < 2 || group.substr(length).find_first_not_of('=') != std::string_view::npos) return std::nullopt;
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < group.size(); ++i) {
        const std::size_t digit = i < length ? kAlphabet.find(group[i]) : 0;
        if (digit == std::string_view::npos) return std::nullopt;
        bits = bits << 6 | static_cast<std::uint32_t>(digit);
    }
    const char bytes[] = {static_cast<char>(bits >> 16), static_cast<char>(bits >> 8), static_cast<char>(bits)};
    return std::string(bytes, length - 1);
}

}  // namespace

std::string Base64Encode(std::string_view text) {
    std::string out;
    out.reserve((text.size() + 2) / 3 * 4);
    AppendEncoded(out, text);
    return out;
}

std::string Base64Decode(std::string_view text) {
    if (text.size() % 4 != 0) return "";
    std::string out;
    for (std::size_t at = 0; at < text.size(); at += 4) {
        const auto bytes = DecodeGroup(text.substr(at, 4));
        if (!bytes) return "";
        out += *bytes;
    }
    return out;
}

std::string Base64EncodeLines(std::string_view contents, const std::function<void()>& afterLine) {
    std::string out;
    out.reserve((contents.size() / kLineInput + 1) * (kLineOutput + kLineEnd.size()));
    for (std::size_t at = 0; at < contents.size(); at += kLineInput) {
        AppendEncoded(out, contents.substr(at, kLineInput));
        out += kLineEnd;
        if (afterLine) afterLine();
    }
    if (contents.size() % 3 == 1) out.resize(out.size() - kLineEnd.size());
    return out;
}

}  // namespace korvane
