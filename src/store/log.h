// The dated log on disk: one text file per day, opened, written and closed for each message, so that it is complete up to the
// last message whatever happens to the program. Monitoring never stops because of the log: all errors here are ignored.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/clock.h"
#include "platform/files.h"

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

private:
    Files& files_;
    const Clock& clock_;
    std::string dir_;
    std::string version_;
    std::function<std::string(std::string_view text)> filter_;
};

}  // namespace korvane
