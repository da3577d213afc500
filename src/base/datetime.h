// A moment of local wall-clock time, to the second. Log, list, mail and queries all use local time, so a DateTime carries no time
// zone: at the change to summer time the clock jumps, and so do the DateTimes read from it.
#pragma once

#include <chrono>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvane {

class DateTime {
public:
    /// 1 January 1970, 0:00:00.
    constexpr DateTime() = default;

    /// Builds a moment from its parts; month and day count from 1. Throws Error when there is no such moment in the years 100 to
    /// 9999.
    static DateTime Of(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

    /// Builds a moment from the seconds since 1 January 1970, 0:00:00 on the same wall clock.
    static constexpr DateTime FromSeconds(std::int64_t seconds) { return DateTime(seconds); }

    /// Reads the form on disk, "YYYY-MM-DD HH:MM:SS" (the time is optional). Returns nothing for any other text.
    static std::optional<DateTime> FromStored(std::string_view text);

    constexpr std::int64_t Seconds() const { return seconds_; }

    int Year() const { return static_cast<int>(Ymd().year()); }
    int Month() const { return static_cast<int>(static_cast<unsigned>(Ymd().month())); }
    int Day() const { return static_cast<int>(static_cast<unsigned>(Ymd().day())); }
    int Hour() const { return SecondOfDay() / 3600; }
    int Minute() const { return SecondOfDay() / 60 % 60; }
    int Second() const { return SecondOfDay() % 60; }

    /// Midnight of the same day.
    DateTime Date() const { return DateTime(seconds_ - SecondOfDay()); }

    /// "11/21/2026 3:04:05 PM"; at exactly midnight the date alone.
    std::string Text() const;
    /// "11/21/2026".
    std::string DateText() const;
    /// "3:04:05 PM".
    std::string TimeText() const;
    /// The form on disk, "2026-11-21 15:04:05".
    std::string Stored() const;

    /// 31 December 9999, 23:59:59.
    static DateTime Last();

    auto operator<=>(const DateTime&) const = default;

    /// Both throw OverflowError outside the years 100 to 9999.
    friend DateTime operator+(DateTime when, std::chrono::seconds by) { return when.MovedBy(by.count()); }
    friend DateTime operator-(DateTime when, std::chrono::seconds by) { return when.MovedBy(-by.count()); }
    friend constexpr std::chrono::seconds operator-(DateTime a, DateTime b) {
        return std::chrono::seconds(a.seconds_ - b.seconds_);
    }

private:
    constexpr explicit DateTime(std::int64_t seconds) : seconds_(seconds) {}

    std::chrono::sys_days Midnight() const {
        return std::chrono::floor<std::chrono::days>(std::chrono::sys_seconds(std::chrono::seconds(seconds_)));
    }
    std::chrono::year_month_day Ymd() const { return Midnight(); }
    int SecondOfDay() const {
        return static_cast<int>(seconds_ - std::chrono::sys_seconds(Midnight()).time_since_epoch().count());
    }
    DateTime MovedBy(std::int64_t seconds) const;

    std::int64_t seconds_ = 0;
};

/// Reads a moment as a user or an old file writes it: "23:30", "9:05:30 pm", "9 AM", "11/21/2026", "11/21/2026 3:04:05 PM",
/// "2026-11-21 15:04:05". A time alone belongs to 30 December 1899, day zero of the original file format. Throws
/// TypeMismatchError for any other text.
DateTime ParseDateTime(std::string_view text);

/// Returns the moment between "#" marks for a query: "11/21/2026 3:04:05 PM". The text is composed of the date and of what
/// follows the first space of Text(). At exactly midnight there is no space and the function throws Error: the current tick ends
/// and the next one goes on.
std::string QueryDate(DateTime when);

}  // namespace korvane
