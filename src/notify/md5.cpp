#include "notify/md5.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace korvane {
namespace {

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

constexpr int kShifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

std::uint32_t Mix(std::size_t round, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    switch (round) {
        case 0:
            return (b & c) | (~b & d);
        case 1:
            return (d & b) | (~d & c);
        case 2:
            return b ^ c ^ d;
        default:
            return c ^ (b | ~d);
    }
}

std::size_t WordOf(std::size_t round, std::size_t i) {
    constexpr std::size_t kFactor[] = {1, 5, 3, 7};
    constexpr std::size_t kOffset[] = {0, 1, 5, 0};
    return (kFactor[round] * i + kOffset[round]) % 16;
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
        const std::size_t round = i / 16;
        const std::uint32_t sum = a + Mix(round, b, c, d) + ReadWord(block, WordOf(round, i)) + kSines[i];
        a = d;
        d = c;
        c = b;
        b += std::rotl(sum, kShifts[round][i % 4]);
    }
    state[0] += a;
    state[1] += b;
    state[2] += c;
    state[3] += d;
}

// Returns the rest of the text, a one bit, zeros, and the length in bits in the last eight bytes of a block.
std::string LastBlocks(std::string_view rest, std::uint64_t length) {
    std::string last(rest);
    last += static_cast<char>(0x80);
    while (last.size() % kBlock != kBlock - 8)
        last += '\0';
    for (unsigned shift = 0; shift < 64; shift += 8)
        last += static_cast<char>(length * 8 >> shift);
    return last;
}

std::string Padded(std::string_view key, char pad) {
    std::string padded(key);
    padded.resize(kBlock, '\0');
    for (char& byte : padded)
        byte = static_cast<char>(byte ^ pad);
    return padded;
}

}  // namespace

std::string Md5(std::string_view bytes) {
    State state = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
    const std::size_t whole = bytes.size() / kBlock * kBlock;
    for (std::size_t at = 0; at < whole; at += kBlock)
        AddBlock(state, bytes.substr(at, kBlock));
    const std::string last = LastBlocks(bytes.substr(whole), bytes.size());
    for (std::size_t at = 0; at < last.size(); at += kBlock)
        AddBlock(state, std::string_view(last).substr(at, kBlock));
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
