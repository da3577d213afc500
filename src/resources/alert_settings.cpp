#include "resources/alert_settings.h"

#include <algorithm>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "notify/mail_message.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr SettingsLine kAlert{"ALERT_AT=", &AlertSettings::alert};
constexpr SettingsLine kEmail{"EMAIL=", &AlertSettings::email};
constexpr SettingsLine kDisable{"DISABLE=", &AlertSettings::disable};
constexpr SettingsLine kDuration{"DURATION=", &AlertSettings::duration};
constexpr SettingsLine kRestart{"RESTART=", &AlertSettings::restart};

constexpr SettingsLine kLoadLines[] = {kAlert, kEmail, kDisable, kDuration};
constexpr SettingsLine kSpaceLines[] = {kAlert, kEmail, kDisable};
constexpr SettingsLine kServiceLines[] = {kEmail, kDisable, kRestart};

// Any of the three common line ends.
std::string_view TakeFirstLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
    text.remove_prefix(line.size());
    text.remove_prefix(text.starts_with("\r\n") ? 2 : std::min<std::size_t>(1, text.size()));
    return line;
}

void TakeLine(std::string_view line, const MonitorKind& kind, AlertSettings& settings) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return;
    const std::string_view value = line.substr(equals + 1);
    for (const auto& [key, member] : kind.lines) {
        if (!Holds(line, key)) continue;
        settings.*member = value;
        return;
    }
    if (!kind.serviceKey.empty() && Holds(line, kind.serviceKey)) settings.services.emplace_back(value);
}

// A line end in a value would start a new line.
std::string Line(std::string_view key, const std::string& value) {
    return WithoutLineEnds(std::string(key) + value) + "\r\n";
}

}  // namespace

constexpr MonitorKind kCpuMonitor = {.file = "CPUMon.dat",
                                     .lines = kLoadLines,
                                     .timer = "tmrRefresh",
                                     .period = 3s,
                                     .subject = "Kv CPU Monitor Alert",
                                     .testSent = "Test email for CPU Monitor has been sent"};
constexpr MonitorKind kDiskMonitor = {.file = "DiskMon.dat",
                                      .lines = kSpaceLines,
                                      .timer = "tim",
                                      .period = 30s,
                                      .subject = "Kv Disk Monitor Alert",
                                      .testSent = "Test email for Disk Monitor has been sent"};
constexpr MonitorKind kMemoryMonitor = {.file = "MemoryMon.dat",
                                        .lines = kSpaceLines,
                                        .timer = "Timer1",
                                        .period = 30s,
                                        .disableStopsTimer = false,
                                        .subject = "Kv Memory Monitor Alert",
                                        .testSent = "Test email for Memory Monitor has been sent",
                                        .refusalDisablesTest = true};
constexpr MonitorKind kServiceMonitor = {.file = "SvcMon.dat",
                                         .lines = kServiceLines,
                                         .serviceKey = "SVC=",
                                         .timer = "tim",
                                         .period = 60s,
                                         .subject = "Kv Service Monitor Alert",
                                         .testSent = "Test email for Services Monitor has been sent",
                                         .refusalDisablesTest = true};

std::string AlertSettingsPath(const std::string& dir, const MonitorKind& kind) {
    return dir + "/" + std::string(kind.file);
}

AlertSettings ReadAlertSettings(Files& files, const std::string& dir, const MonitorKind& kind) {
    AlertSettings settings;
    IgnoreErrors([&] {
        const std::string contents = ToUtf8(files.Read(AlertSettingsPath(dir, kind)).value_or(""));
        for (std::string_view rest = contents; !rest.empty();)
            TakeLine(TakeFirstLine(rest), kind, settings);
    });
    return settings;
}

void WriteAlertSettings(Files& files, const std::string& dir, const MonitorKind& kind, const AlertSettings& settings) {
    std::string text;
    for (const auto& [key, member] : kind.lines)
        text += Line(key, settings.*member);
    for (const std::string& service : settings.services)
        text += Line(kind.serviceKey, service);
    IgnoreErrors([&] { files.Replace(AlertSettingsPath(dir, kind), text); });
}

}  // namespace korvane
