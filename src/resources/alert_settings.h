// How the four resource monitors differ from each other, in one description; and their settings, each in a small text
// file: one line per key, with all values as text.
#pragma once

#include <chrono>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace korvane {

/// A monitor has those for which its description names a line; the others stay empty.
struct AlertSettings {
    std::string email;                  ///< the address to notify; empty: that of the first server entry
    std::string disable;                ///< "1": the monitor is switched off. Any other text: it is on
    std::string alert;                  ///< the level in percent; empty: no alert
    std::string duration;               ///< in minutes; empty: no alert
    std::string restart;                ///< "1": a mail when a service that had stopped runs again. Any other text: none
    std::vector<std::string> services;  ///< the watched ones, as the system knows them, with a line each
};

struct SettingsLine {
    std::string_view key;
    std::string AlertSettings::*value;
};

struct MonitorKind {
    std::string_view file;                ///< of the settings, in the program's folder
    std::span<const SettingsLine> lines;  ///< in the order in which keys are searched and written
    std::string_view serviceKey = {};     ///< of the lines after them; empty: no services
    const char* timer;
    std::chrono::milliseconds period;  ///< between two looks
    bool disableStopsTimer = true;
    const char* subject;
    const char* testSent;
    bool refusalDisablesTest = false;  ///< a test with an invalid address leaves the command disabled until Shown
};

extern const MonitorKind kCpuMonitor;
extern const MonitorKind kDiskMonitor;
extern const MonitorKind kMemoryMonitor;
extern const MonitorKind kServiceMonitor;

/// A key may be anywhere in its line and is case-sensitive; the value is what follows the first "=" of the line. Lines without a
/// key are ignored, and the last line of a key counts. Settings that are not in the file are empty, and so are all when the file
/// cannot be read.
AlertSettings ReadAlertSettings(Files& files, const std::string& dir, const MonitorKind& kind);

std::string AlertSettingsPath(const std::string& dir, const MonitorKind& kind);

/// Writes the whole file. A write error is not reported.
void WriteAlertSettings(Files& files, const std::string& dir, const MonitorKind& kind, const AlertSettings& settings);

}  // namespace korvane
