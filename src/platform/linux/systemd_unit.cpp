#include "platform/linux/systemd_unit.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/text.h"

namespace korvane {
namespace {

constexpr std::size_t kLongestUnitName = 255;
constexpr std::string_view kSuffix = ".service";

constexpr std::string_view kMarkSection = "[X-Korvane]";
constexpr std::string_view kHome = "Home=";
constexpr std::string_view kLinger = "Linger=yes";

/// Settings that a user's manager, which has no privileges, refuses (the service then does not start) or silently ignores.
constexpr std::string_view kOfTheSystem[] = {
    "Wants=",
    "After=",
    "User=",
    "ReadWritePaths=",
    "AmbientCapabilities=",
    "CapabilityBoundingSet=",
    "PrivateTmp=",
    "PrivateDevices=",
    "PrivateMounts=",
    "DevicePolicy=",
    "ProtectSystem=",
    "ProtectHome=",
    "ProtectClock=",
    "ProtectControlGroups=",
    "ProtectHostname=",
    "ProtectKernelLogs=",
    "ProtectKernelModules=",
    "ProtectKernelTunables=",
    "RemoveIPC=",
};

constexpr std::string_view kTemporaryFolders[] = {"/tmp/", "/var/tmp/"};

// ASCII letters and digits, independent of the locale.
bool MayStandInName(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' || c == ':' ||
           c == '.';
}

void CheckPath(const std::string& path, UnitScope scope) {
    const bool fits = path.starts_with('/') && std::none_of(path.begin(), path.end(), IsControl) && !path.ends_with(' ') &&
                      !path.ends_with('\\');
    if (!fits) throw Error("A service cannot be given the path \"" + path + "\"");
    if (scope == UnitScope::User) return;
    for (const std::string_view folder : kTemporaryFolders) {
        if (path.starts_with(folder)) throw Error("A service has temporary folders of its own and does not see " + path);
    }
}

// A "%" would begin one of the unit's own variables.
std::string Plain(const std::string& text) {
    return ReplaceAll(text, "%", "%%");
}

// Encodes any text as one word of a list.
std::string Quoted(const std::string& text) {
    return "\"" + ReplaceAll(ReplaceAll(Plain(text), "\\", "\\\\"), "\"", "\\\"") + "\"";
}

// A missing folder does not keep the service from starting.
std::string WritableFolders(const ServiceProgram& program) {
    std::string words = Quoted(program.home);
    for (const std::string& folder : program.folders)
        words += " " + Quoted("-" + folder);
    return words;
}

// The name must stay on one line, and a backslash at its end must not join the next line.
std::string Description(const std::string& name) {
    std::string line = Plain(name);
    std::replace_if(line.begin(), line.end(), IsControl, ' ');
    return ReplaceAll(line, "\\", "/");
}

bool IsOfTheSystem(const std::string& line) {
    return std::any_of(std::begin(kOfTheSystem), std::end(kOfTheSystem),
                       [&](std::string_view setting) { return line.starts_with(setting); });
}

// The comments above a removed setting stay; they are true of the program either way.
std::string WithoutSettingsOfTheSystem(const std::string& text) {
    std::string kept;
    for (const std::string& line : Split(TrimAll(text), '\n')) {
        if (!IsOfTheSystem(line)) kept += line + "\n";
    }
    return kept;
}

}  // namespace

std::string UnitName(const std::string& name) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string unit;
    for (const char c : Trim(name)) {
        const auto code = static_cast<unsigned char>(c);
        if (MayStandInName(c) && !(unit.empty() && c == '.')) {
            unit += c;
        } else {
            unit += {'\\', 'x', kDigits[code >> 4], kDigits[code & 15]};
        }
    }
    unit += kSuffix;
    if (unit.size() == kSuffix.size()) throw Error("The service has no name");
    if (unit.size() > kLongestUnitName) throw Error("The name of the service is too long");
    return unit;
}

std::string UnitText(const std::string& name, const ServiceProgram& program, UnitScope scope, const std::string& user) {
    CheckPath(program.program, scope);
    CheckPath(program.home, scope);
    for (const std::string& folder : program.folders)
        CheckPath(folder, scope);
    const std::pair<std::string_view, std::string> places[] = {
        {"@WHOSE@", scope == UnitScope::System ? "the system." : "the user who installed it."},
        {"@DESCRIPTION@", Description(name)},
        {"@PROGRAM@", Quoted(program.program)},
        {"@FOLDER@", Plain(program.home)},
        {"@USER@", user},
        {"@HOME@", Quoted("KORVANE_HOME=" + program.home)},
        {"@FOLDERS@", WritableFolders(program)},
        {"@TARGET@", scope == UnitScope::System ? "multi-user.target" : "default.target"},
        {"@OWNER@", program.home},
    };
    std::string text;
    for (std::string line : Split(kUnitTemplate, '\n')) {
        const auto place = std::find_if(std::begin(places), std::end(places),
                                        [&](const auto& candidate) { return line.ends_with(candidate.first); });
        if (place != std::end(places)) line.replace(line.size() - place->first.size(), std::string::npos, place->second);
        text += line + "\n";
    }
    return scope == UnitScope::System ? TrimAll(text) + "\n" : WithoutSettingsOfTheSystem(text);
}

UnitMarks MarksOf(std::string_view unitText) {
    UnitMarks marks;
    bool inSection = false;
    for (const std::string& line : Split(unitText, '\n')) {
        if (line.starts_with('[')) inSection = line == kMarkSection;
        if (!inSection) continue;
        if (line.starts_with(kHome)) marks.home = line.substr(kHome.size());
        if (line == kLinger) marks.linger = true;
    }
    return marks;
}

std::string WithLingerMark(const std::string& unitText) {
    return unitText + std::string(kLinger) + "\n";
}

}  // namespace korvane
