#include "store/server_id.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "store/ini_file.h"

namespace korvane {
namespace {

constexpr std::string_view kSection = "KEYGEN";
constexpr std::string_view kKey = "LASTID";
constexpr std::int64_t kDefaultLastNumber = 1;

// Returns the number of a text that consists of digits; `otherwise` for any other text and for numbers beyond 64 bits.
std::int64_t DigitsOr(std::string_view text, std::int64_t otherwise) {
    const bool allDigits = text.find_first_not_of("0123456789") == std::string_view::npos;
    std::int64_t number = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
    return allDigits && problem == std::errc() ? number : otherwise;
}

}  // namespace

std::string NewTimeStampID(const Clock& clock) {
    const DateTime now = clock.Now();
    const std::string nextYear = std::to_string(now.Year() + 1);
    std::string id = nextYear.substr(std::min<std::size_t>(3, nextYear.size()), 1);
    for (const int part : {now.Month(), now.Day(), now.Hour(), now.Minute(), now.Second()})
        id += std::to_string(part);
    return id;
}

std::string ServerIds::NewServerID() {
    constexpr std::int64_t kNoId = -1;
    if (scattered_)
        return std::to_string(DigitsOr(NewTimeStampID(clock_) + std::to_string(1'000'000 + (*scattered_)() % 9'000'000), kNoId));
    // A damaged counter starts again, but never below what this run has issued.
    const std::int64_t stored = DigitsOr(file_.Read(kSection, kKey, ""), kDefaultLastNumber);
    const std::string stamp = NewTimeStampID(clock_);

    std::int64_t number = std::max(stored, lastNumber_);
    const bool roomForOneMore =
        number < std::numeric_limits<std::int64_t>::max() && DigitsOr(stamp + std::to_string(number + 1), kNoId) != kNoId;
    // Ids are 64-bit keys in the database: a counter too long to follow the time stamp would make every further id fail.
    if (!roomForOneMore) number = kDefaultLastNumber;

    lastNumber_ = number + 1;
    file_.Write(kSection, kKey, std::to_string(lastNumber_));
    // A number has no leading zeros, but in years that end in 9 the time stamp begins with one.
    return std::to_string(DigitsOr(stamp + std::to_string(lastNumber_), kNoId));
}

}  // namespace korvane
