// The dated log on disk: one text file per day, opened, written and closed for each message, so that it is complete up to the
// last message whatever happens to the program. Monitoring never stops because of the log: all errors here are ignored.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/clock.h"
#include "platform/files.h"
#include "store/settings_collection.h"

namespace korvane {

/// Levels: ordinary messages, and messages of errors that end the program.
constexpr int kLogOrdinary = 0;
constexpr int kLogFatal = 4;

constexpr std::string_view kLogInformation = "i";
constexpr std::string_view kLogError = "#";

class Log {
public:
    /// Writes below `<dir>/Logs`. `version` is "major.minor.revision" of the program.
    Log(Files& files, const Clock& clock, std::string dir, std::string version);

    /// Adds one record to today's file. Levels above the detail level and empty messages are not written.
    void WriteLog(int level, std::string_view messageClass, std::string_view message);

    /// Writes an ordinary piece of information, the most frequent kind.
    void Info(std::string_view message) { WriteLog(kLogOrdinary, kLogInformation, message); }

    /// From now on each message goes through `filter` first.
    void SetFilter(std::function<std::string(std::string_view text)> filter) { filter_ = std::move(filter); }

    /// The path of the file that a record of this moment goes to; it need not exist yet.
    std::string TodaysFile() const;
    std::string PathOf(DateTime day) const;

private:
    Files& files_;
    const Clock& clock_;
    std::string dir_;
    std::string version_;
    std::function<std::string(std::string_view text)> filter_;
};

/// The numbered log files of older versions, of which only the index remains: it cycles once per retry duration, in minutes, and
/// selects the file that a menu command opens. Nothing is written to these files.
class LegacyLog {
public:
    /// `base` is `<dir>/kvurlwatch`.
    LegacyLog(const SettingsCollection& settings, std::string base) : settings_(settings), base_(std::move(base)) {}

    /// Sets the count of indexes from `GlobalRetryDuration`, in whole minutes and at least 1; a setting that is not a number
    /// leaves it unchanged.
    void setLogTimer();

    /// The effect of a `TimerLog` tick on the index; the tick itself disables the timer first.
    void TimerLog() { index_ = index_ + 1 < count_ ? index_ + 1 : 0; }

    int Count() const { return count_; }

    /// `<base><index>.txt`.
    std::string FilePath() const { return base_ + std::to_string(index_) + ".txt"; }

private:
    const SettingsCollection& settings_;
    std::string base_;
    int index_ = 0;
    int count_ = 1;
};

}  // namespace korvane
