#include "base/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "base/error.h"
#include "base/text.h"

namespace korvane {
namespace {

template <class Narrow>
Narrow Checked(std::int64_t number) {
    if (number < std::numeric_limits<Narrow>::min() || number > std::numeric_limits<Narrow>::max()) throw OverflowError();
    return static_cast<Narrow>(number);
}

// from_chars does not accept a leading "+".
std::string_view WithoutPlus(std::string_view text) {
    const bool plusBeforeDigit = text.size() > 1 && text[0] == '+' && text[1] != '-';
    return plusBeforeDigit ? text.substr(1) : text;
}

}  // namespace

std::int64_t RoundHalfEven(double number) {
    // The limits are exact powers of two, so the comparison itself does not round.
    if (!(number >= -9223372036854775808.0 && number < 9223372036854775808.0)) throw OverflowError();
    return std::llrint(number);  // the default rounding mode is half to even
}

std::int16_t CheckedInt16(std::int64_t number) {
    return Checked<std::int16_t>(number);
}

std::int32_t CheckedInt32(std::int64_t number) {
    return Checked<std::int32_t>(number);
}

double ParseNumber(std::string_view text) {
    const std::string trimmed = Trim(text);
    const std::string_view digits = WithoutPlus(trimmed);
    double number = 0;
    const auto [end, problem] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (problem == std::errc::result_out_of_range) throw OverflowError();
    if (problem != std::errc() || end != digits.data() + digits.size() || !std::isfinite(number)) throw TypeMismatchError();
    return number;
}

std::int64_t ParseWhole(std::string_view text) {
    const std::string trimmed = Trim(text);
    const std::string_view digits = WithoutPlus(trimmed);
    std::int64_t whole = 0;
    const auto [end, problem] = std::from_chars(digits.data(), digits.data() + digits.size(), whole);
    if (problem == std::errc() && end == digits.data() + digits.size()) return whole;
    return RoundHalfEven(ParseNumber(text));
}

std::string FormatFixed(double number, int decimals) {
    // Typed decimals are seldom exact in binary: 2.675 is stored slightly too low, but is meant as a half.
    constexpr double kHalfTolerance = 1e-14;
    const double scale = std::pow(10.0, decimals);
    const double scaled = number * scale;
    const double nudged = scaled + scaled * kHalfTolerance;
    const bool tooLarge = !std::isfinite(nudged);  // such a number has no decimals anyway
    const double rounded = tooLarge ? number : std::round(nudged) / scale;
    char buffer[400];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, rounded == 0 ? 0.0 : rounded, std::chars_format::fixed, decimals);
    return std::string(buffer, end.ptr);
}

std::string FormatGrouped(double number, int decimals) {
    std::string text = FormatFixed(number, decimals);
    const std::size_t first = text.starts_with('-') ? 1 : 0;
    for (std::size_t at = std::min(text.find('.'), text.size()); at > first + 3;)
        text.insert(at -= 3, ",");
    return text;
}

std::string FormatGeneral(double number) {
    char buffer[400];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, number == 0 ? 0.0 : number, std::chars_format::fixed);
    return std::string(buffer, end.ptr);
}

}  // namespace korvane
