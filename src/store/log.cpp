#include "store/log.h"

#include <cstdio>
#include <vector>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"

namespace korvane {
namespace {

constexpr int kDetailLevel = 5;
constexpr std::string_view kFurtherLine = "\t\t\t\t";
constexpr std::string_view kLineWithoutHeader = "\t\t\t";

std::string FileName(DateTime today) {
    char name[32];
    std::snprintf(name, sizeof name, "kvmonlog %04d %02d-%02d.txt", today.Year(), today.Month(), today.Day());
    return name;
}

// Leading tabs have a meaning, so only spaces are removed.
std::string_view TrimSpaces(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string Record(std::string_view header, std::string_view message) {
    std::string record;
    const std::string plain = ReplaceAll(WithoutControls(ReplaceAll(message, "\r\n", "\n")), "\r", " ");
    for (const std::string& line : Split(plain, '\n')) {
        if (!record.empty()) {
            record += kFurtherLine;
        } else {
            record += line.starts_with('\t') ? kLineWithoutHeader : header;
        }
        record += line + "\n";
    }
    return record;
}

}  // namespace

Log::Log(Files& files, const Clock& clock, std::string dir, std::string version)
    : files_(files), clock_(clock), dir_(std::move(dir)), version_(std::move(version)) {}

void Log::WriteLog(int level, std::string_view messageClass, std::string_view message) {
    if (level > kDetailLevel || TrimAll(message).empty()) return;
    const std::string shown = filter_ ? filter_(message) : std::string(message);
    const DateTime now = clock_.Now();
    const std::string header = now.DateText() + " " + now.TimeText() + " " + version_ + " " + std::string(messageClass) + "\t";
    // If the folder is missing, appending the record fails.
    IgnoreErrors([&] { files_.CreateFolder(dir_ + "/Logs"); });
    IgnoreErrors([&] { files_.Append(PathOf(now), Record(header, TrimSpaces(shown))); });
}

std::string Log::TodaysFile() const {
    return PathOf(clock_.Now());
}

std::string Log::PathOf(DateTime day) const {
    return dir_ + "/Logs/" + FileName(day);
}

void LegacyLog::setLogTimer() {
    IgnoreErrors([this] {
        const double seconds = ParseNumber(settings_.getKvSettingsColVal("GlobalRetryDuration"));
        const int minutes = CheckedInt32(RoundHalfEven(seconds / 60));
        count_ = minutes == 0 ? 1 : minutes;
    });
}

}  // namespace korvane
