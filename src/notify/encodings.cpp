#include "notify/encodings.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
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

constexpr std::size_t kBlock = 64;
constexpr char kInnerPad = 54;
constexpr char kOuterPad = 92;

using State = std::array<std::uint32_t, 4>;

// floor(2^32 * |sin(i + 1)|), RFC 1321, section 3.4.
constexpr std::array<std::uint32_t, 64> kSines = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501, 0x698098d8, 0x8b44f7af,
    0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821, 0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa,
    0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8, 0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8,
    0x676f02d9, 0x8d2a4c8a, 0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665, 0xf4292244, 0x432aff97,
    0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1, 0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1,
    0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

/// In step i, a round takes word (factor * i + offset) % 16 of the block and rotates by the shift of i % 4.
struct Round {
    std::size_t factor;
    std::size_t offset;
    int shifts[4];
};
constexpr Round kRounds[] = {{1, 0, {7, 12, 17, 22}}, {5, 1, {5, 9, 14, 20}}, {3, 5, {4, 11, 16, 23}}, {7, 0, {6, 10, 15, 21}}};

std::uint32_t Mix(std::size_t round, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    const std::uint32_t mixed[] = {(b & c) | (~b & d), (d & b) | (~d & c), b ^ c ^ d, c ^ (b | ~d)};
    return mixed[round];
}

std::uint32_t ReadWord(std::string_view block, std::size_t word) {
    std::uint32_t value = 0;
    for (std::size_t i = 4; i-- > 0;)
        value = value << 8 | static_cast<std::uint8_t>(block[word * 4 + i]);
    return value;
}

void AddBlock(State& state, std::string_view block) {
    auto [a, b, c, d] = state;
    for (std::size_t i = 0; i < 64; ++i) {
        const Round& round = kRounds[i / 16];
        const std::size_t word = (round.factor * i + round.offset) % 16;
        const std::uint32_t sum = a + Mix(i / 16, b, c, d) + ReadWord(block, word) + kSines[i];
        a = d;
        d = c;
        c = b;
        b += std::rotl(sum, round.shifts[i % 4]);
    }
    state[0] += a;
    state[1] += b;
    state[2] += c;
    state[3] += d;
}

std::string Padded(std::string_view key, char pad) {
    std::string padded(key);
    padded.resize(kBlock, '\0');
    for (char& byte : padded)
        byte = static_cast<char>(byte ^ pad);
    return padded;
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

// The text is followed by a one bit, zeros, and its length in bits in the last eight bytes of a block.
std::string Md5(std::string_view bytes) {
    std::string blocks(bytes);
    blocks += static_cast<char>(0x80);
    while (blocks.size() % kBlock != kBlock - 8)
        blocks += '\0';
    for (unsigned shift = 0; shift < 64; shift += 8)
        blocks += static_cast<char>(std::uint64_t{bytes.size()} * 8 >> shift);
    State state = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
    for (std::size_t at = 0; at < blocks.size(); at += kBlock)
        AddBlock(state, std::string_view(blocks).substr(at, kBlock));
    std::string digest;
    for (const std::uint32_t word : state) {
        for (unsigned shift = 0; shift < 32; shift += 8)
            digest += static_cast<char>(word >> shift);
    }
    return digest;
}

std::string HexOf(std::string_view bytes) {
    constexpr std::string_view kHex = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<std::uint8_t>(c);
        text += kHex[byte >> 4];
        text += kHex[byte & 15];
    }
    return text;
}

std::string HmacMd5Hex(std::string_view key, std::string_view text) {
    const std::string shortKey = key.size() > kBlock ? Md5(key) : std::string(key);
    const std::string inner = Md5(Padded(shortKey, kInnerPad).append(text));
    return HexOf(Md5(Padded(shortKey, kOuterPad) + inner));
}

}  // namespace korvane
