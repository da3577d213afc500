// Base64 there and back, as one text and as the lines of an attachment.
#include <string>

#include "base/text.h"
#include "fuzz/fuzz.h"
#include "notify/base64.h"

namespace korvane {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

void ThereAndBack(std::string_view input) {
    const std::string encoded = Base64Encode(input);
    Require(encoded.size() == (input.size() + 2) / 3 * 4, "four characters for each three bytes");
    Require(Base64Decode(encoded) == input, "what was encoded is decoded");
}

void AsLines(std::string_view input) {
    std::size_t lines = 0;
    const std::string encoded = Base64EncodeLines(input, [&lines] { ++lines; });
    Require(lines == (input.size() + 53) / 54, "one call for each line of 54 bytes");
    Require(ReplaceAll(encoded, "\r\n", "") == (input.empty() ? "" : Base64Encode(input)), "lines are the text cut into pieces");
    for (std::size_t at = 0; at + 74 <= encoded.size(); at += 74)
        Require(encoded.substr(at, 74).find("\r\n") == 72, "a line has 72 characters");
}

void BackAndThere(std::string_view input) {
    const std::string decoded = Base64Decode(input);
    Require(decoded.size() <= input.size() / 4 * 3, "three bytes at most for four characters");
    const bool onlyDigits = input.size() % 4 == 0 && input.find_first_not_of(kAlphabet) == std::string_view::npos;
    if (onlyDigits) Require(Base64Encode(decoded) == input, "whole groups are encoded again as they were");
    const bool foreign = input.find_first_not_of(std::string(kAlphabet) + "=") != std::string_view::npos;
    const bool tooShort = Holds(input, "===");  // one character has not enough bits for a byte
    if (foreign || tooShort || input.size() % 4 != 0) Require(decoded.empty(), "what is no Base64 is nothing");
}

}  // namespace

void Fuzz(std::string_view input) {
    ThereAndBack(input);
    AsLines(input);
    BackAndThere(input);
}

}  // namespace korvane
