// Number rules of the program: counters of 16 and 32 bits whose overflow is an error, rounding half to even when a fraction
// becomes a whole number, and rounding half away from zero when a number is written.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace korvane {

/// Returns the nearest whole number; halves go to the even neighbour. Throws OverflowError outside 64 bits.
std::int64_t RoundHalfEven(double number);

/// Returns the number in 16 or 32 bits. Throws OverflowError when it does not fit.
std::int16_t CheckedInt16(std::int64_t number);
std::int32_t CheckedInt32(std::int64_t number);

/// Reads a text as a number: optional spaces around, sign, decimals with ".", exponent. Throws TypeMismatchError for anything
/// else, including the empty text, and OverflowError for a number beyond the range of a double.
double ParseNumber(std::string_view text);

/// Like ParseNumber, rounded half to even; whole decimal texts are exact over all 64 bits.
std::int64_t ParseWhole(std::string_view text);

/// Writes `decimals` (0 to 9) decimals after ".", rounds half away from zero, and writes a leading zero but no grouping.
std::string FormatFixed(double number, int decimals);

/// Like FormatFixed, with a "," between groups of three digits: "1,000.00".
std::string FormatGrouped(double number, int decimals);

/// Returns the shortest decimal text that reads back as the same number: "3", "0.5", "1500000".
std::string FormatGeneral(double number);

}  // namespace korvane
