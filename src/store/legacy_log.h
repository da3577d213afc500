// The numbered log files of older versions, of which only the index remains: it cycles once per retry duration, in minutes, and
// selects the file that a menu command opens. Nothing is written to these files.
#pragma once

#include <string>

#include "store/settings_collection.h"

namespace korvane {

class LegacyLog {
public:
    /// `base` is `<dir>/kvurlwatch`.
    LegacyLog(const SettingsCollection& settings, std::string base) : settings_(settings), base_(std::move(base)) {}

    /// Sets the count of indexes from `GlobalRetryDuration`, in whole minutes and at least 1; a setting that is not a number
    /// leaves it unchanged.
    void setLogTimer();

    /// The effect of a `TimerLog` tick on the index; the tick itself disables the timer first.
    void TimerLog();

    int Index() const { return index_; }
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
