#include "base/datetime.h"

#include <cstdio>
#include <vector>

#include "base/error.h"
#include "base/numbers.h"
#include "base/text.h"

namespace korvane {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

template <class... Parts>
std::string Printed(const char* format, Parts... parts) {
    char buffer[64];
    const int length = std::snprintf(buffer, sizeof buffer, format, parts...);
    return std::string(buffer, static_cast<std::size_t>(length));
}

// Returns the whole numbers of "11/21/2026" or "15:04:05", or nothing unless every piece consists of digits alone.
std::optional<std::vector<int>> NumbersBetween(std::string_view text, char separator) {
    std::vector<int> numbers;
    for (const std::string& piece : Split(text, separator)) {
        const bool digits = !piece.empty() && piece.size() <= 4 && piece.find_first_not_of("0123456789") == std::string::npos;
        if (!digits) return std::nullopt;
        numbers.push_back(static_cast<int>(ParseWhole(piece)));
    }
    return numbers;
}

// `year`, `month` and `day` are their places among the three numbers.
std::optional<DateTime> DateBetween(std::string_view text, char separator, std::size_t year, std::size_t month, std::size_t day) {
    const auto numbers = NumbersBetween(text, separator);
    if (!numbers || numbers->size() != 3) return std::nullopt;
    return DateTime::Of((*numbers)[year], (*numbers)[month], (*numbers)[day]);
}

std::optional<DateTime> IsoDate(std::string_view text) {
    return DateBetween(text, '-', 0, 1, 2);
}

DateTime ParseDate(std::string_view text) {
    if (const auto american = DateBetween(text, '/', 2, 0, 1)) return *american;
    if (const auto iso = IsoDate(text)) return *iso;
    throw TypeMismatchError();
}

enum class HalfOfDay { None, Am, Pm };

std::chrono::seconds ParseTime(std::string_view text, HalfOfDay half) {
    const auto parts = NumbersBetween(text, ':');
    const bool wellFormed = parts && parts->size() <= 3 && (parts->size() > 1 || half != HalfOfDay::None);
    if (!wellFormed) throw TypeMismatchError();
    int hour = (*parts)[0];
    const int minute = parts->size() > 1 ? (*parts)[1] : 0;
    const int second = parts->size() > 2 ? (*parts)[2] : 0;
    if (half != HalfOfDay::None) {
        if (hour < 1 || hour > 12) throw TypeMismatchError();
        hour = hour % 12 + (half == HalfOfDay::Pm ? 12 : 0);
    }
    if (hour > 23 || minute > 59 || second > 59) throw TypeMismatchError();
    return std::chrono::hours(hour) + std::chrono::minutes(minute) + std::chrono::seconds(second);
}

// Removes "AM" or "PM" from the end of the text, with or without a space before it.
HalfOfDay TakeHalfOfDay(std::string& text) {
    const std::string lower = ToLower(text);
    for (const auto& [word, half] : {std::pair{"am", HalfOfDay::Am}, std::pair{"pm", HalfOfDay::Pm}}) {
        if (lower.ends_with(word)) {
            text = Trim(std::string_view(text).substr(0, text.size() - 2));
            return half;
        }
    }
    return HalfOfDay::None;
}

}  // namespace

DateTime DateTime::Of(int year, int month, int day, int hour, int minute, int second) {
    const std::chrono::year_month_day ymd{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                          std::chrono::day(static_cast<unsigned>(day))};
    const bool timeOk = hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60;
    if (month < 1 || day < 1 || !ymd.ok() || year < 100 || year > 9999 || !timeOk) throw TypeMismatchError();
    const std::int64_t days = std::chrono::sys_days(ymd).time_since_epoch().count();
    return DateTime(days * kSecondsPerDay + hour * 3600 + minute * 60 + second);
}

DateTime DateTime::Last() {
    return Of(9999, 12, 31, 23, 59, 59);
}

DateTime DateTime::MovedBy(std::int64_t seconds) const {
    constexpr std::int64_t kFarthest =
        std::int64_t{10000} * 366 * kSecondsPerDay;  // spans the whole range and cannot overflow below
    if (seconds < -kFarthest || seconds > kFarthest) throw OverflowError();
    const DateTime moved(seconds_ + seconds);
    if (moved < Of(100, 1, 1) || moved > Last()) throw OverflowError();
    return moved;
}

std::optional<DateTime> DateTime::FromStored(std::string_view text) {
    try {
        const auto blank = text.find(' ');
        const std::optional<DateTime> day = IsoDate(text.substr(0, blank));
        if (!day || blank == std::string_view::npos) return day;
        return *day + ParseTime(text.substr(blank + 1), HalfOfDay::None);
    } catch (const Error&) {
        return std::nullopt;
    }
}

std::string DateTime::Text() const {
    return SecondOfDay() == 0 ? DateText() : DateText() + " " + TimeText();
}

std::string DateTime::DateText() const {
    return Printed("%d/%d/%d", Month(), Day(), Year());
}

std::string DateTime::TimeText() const {
    const int hour = Hour();
    const int twelve = hour % 12 == 0 ? 12 : hour % 12;
    return Printed("%d:%02d:%02d %s", twelve, Minute(), Second(), hour < 12 ? "AM" : "PM");
}

std::string DateTime::Stored() const {
    return Printed("%04d-%02d-%02d %02d:%02d:%02d", Year(), Month(), Day(), Hour(), Minute(), Second());
}

DateTime ParseDateTime(std::string_view text) {
    std::string rest = Trim(text);
    const HalfOfDay half = TakeHalfOfDay(rest);
    const auto blank = rest.find(' ');
    const bool isDate = rest.find('/') != std::string::npos || rest.find('-') != std::string::npos;
    if (!isDate) return DateTime::Of(1899, 12, 30) + ParseTime(rest, half);
    const DateTime day = ParseDate(std::string_view(rest).substr(0, blank));
    if (blank == std::string::npos) {
        if (half != HalfOfDay::None) throw TypeMismatchError();
        return day;
    }
    return day + ParseTime(Trim(std::string_view(rest).substr(blank)), half);
}

std::string QueryDate(DateTime when) {
    const std::string text = when.Text();
    const auto blank = text.find(' ');
    if (blank == std::string::npos) throw Error("Invalid procedure call or argument", 5);
    return when.DateText() + text.substr(blank);
}

}  // namespace korvane
