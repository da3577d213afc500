#include "base/datetime.h"

#include <cstdio>
#include <vector>

#include "base/error.h"
#include "base/numbers.h"
#include "base/text.h"

namespace korvane {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

std::chrono::sys_days DayOf(std::int64_t seconds) {
    return std::chrono::floor<std::chrono::days>(std::chrono::sys_seconds(std::chrono::seconds(seconds)));
}

std::chrono::year_month_day YmdOf(std::int64_t seconds) {
    return std::chrono::year_month_day(DayOf(seconds));
}

int SecondOfDay(std::int64_t seconds) {
    return static_cast<int>(seconds - DayOf(seconds).time_since_epoch().count() * kSecondsPerDay);
}

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

DateTime ParseDate(std::string_view text) {
    if (const auto american = NumbersBetween(text, '/'); american && american->size() == 3) {
        return DateTime::Of((*american)[2], (*american)[0], (*american)[1]);
    }
    if (const auto iso = NumbersBetween(text, '-'); iso && iso->size() == 3) {
        return DateTime::Of((*iso)[0], (*iso)[1], (*iso)[2]);
    }
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
        const auto date = NumbersBetween(text.substr(0, blank), '-');
        if (!date || date->size() != 3) return std::nullopt;
        const DateTime day = Of((*date)[0], (*date)[1], (*date)[2]);
        if (blank == std::string_view::npos) return day;
        return day + ParseTime(text.substr(blank + 1), HalfOfDay::None);
    } catch (const Error&) {
        return std::nullopt;
    }
}

int DateTime::Year() const {
    return static_cast<int>(YmdOf(seconds_).year());
}

int DateTime::Month() const {
    return static_cast<int>(static_cast<unsigned>(YmdOf(seconds_).month()));
}

int DateTime::Day() const {
    return static_cast<int>(static_cast<unsigned>(YmdOf(seconds_).day()));
}

int DateTime::Hour() const {
    return SecondOfDay(seconds_) / 3600;
}

int DateTime::Minute() const {
    return SecondOfDay(seconds_) / 60 % 60;
}

int DateTime::Second() const {
    return SecondOfDay(seconds_) % 60;
}

DateTime DateTime::Date() const {
    return DateTime(seconds_ - SecondOfDay(seconds_));
}

std::string DateTime::Text() const {
    return SecondOfDay(seconds_) == 0 ? DateText() : DateText() + " " + TimeText();
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
