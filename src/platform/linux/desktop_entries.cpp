#include "platform/linux/desktop_entries.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/text.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

constexpr std::string_view kMark = "X-Korvane-Home=";

constexpr std::pair<std::string_view, std::string_view> kKinds[] = {
    {"htm", kPageKind}, {"html", kPageKind}, {"txt", "text/plain"}, {"log", "text/plain"}};

// Encodes a value: a backslash begins an escape, and a leading space needs one.
std::string Value(const std::string& text) {
    std::string value = ReplaceAll(text, "\\", "\\\\");
    if (value.starts_with(' ')) value.replace(0, 1, "\\s");
    return value;
}

// Encodes one argument of a command line: quoted, with shell characters escaped, and "%" doubled, since it would begin a field
// code.
std::string Argument(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '`' || c == '$' || c == '\\') quoted += '\\';
        if (c == '%') quoted += '%';
        quoted += c;
    }
    return quoted + "\"";
}

// A program in the same folder as its settings finds them by itself.
std::string CommandLine(const AutostartEntry& entry) {
    if (entry.program.substr(0, entry.program.rfind('/')) == entry.home) return Argument(entry.program);
    return "env " + Argument("KORVANE_HOME=" + entry.home) + " " + Argument(entry.program);
}

void Check(const AutostartEntry& entry) {
    for (const std::string* text : {&entry.name, &entry.program, &entry.home, &entry.icon}) {
        if (std::any_of(text->begin(), text->end(), IsControl)) throw Error("No desktop entry can hold \"" + *text + "\"");
    }
    if (Holds(entry.program, "=")) throw Error("No desktop entry can start a program in a folder with \"=\": " + entry.program);
}

// Returns the entries of the kind in one section of a list, in their order.
Names EntriesIn(const std::string& file, std::string_view section, std::string_view kind) {
    std::ifstream list(file);
    bool inSection = false;
    for (std::string line; std::getline(list, line);) {
        line = TrimAll(line);
        if (line.starts_with('[')) inSection = line == section;
        const auto equals = line.find('=');
        if (!inSection || equals == std::string::npos || Trim(line.substr(0, equals)) != kind) continue;
        Names entries = Split(line.substr(equals + 1), ';');
        for (std::string& entry : entries)
            entry = Trim(entry);
        std::erase(entries, "");
        return entries;
    }
    return {};
}

bool IsInstalled(const std::string& entry, const Names& folders) {
    std::error_code ignored;
    return std::any_of(folders.begin(), folders.end(),
                       [&](const std::string& folder) { return fs::is_regular_file(fs::path(folder) / entry, ignored); });
}

}  // namespace

std::string DesktopEntryText(const AutostartEntry& entry) {
    Check(entry);
    std::string text =
        "[Desktop Entry]\n"
        "Type=Application\n"
        "Version=1.0\n"
        "Name=" +
        Value(entry.name) +
        "\n"
        "Comment=Watches servers and tells when they fail\n"
        "Exec=" +
        Value(CommandLine(entry)) + "\nPath=" + Value(entry.home) + "\n";
    if (!entry.icon.empty()) text += "Icon=" + Value(entry.icon) + "\n";
    return text +
           "Terminal=false\n"
           "StartupNotify=false\n"
           "Categories=Network;Monitor;\n"
           "X-GNOME-Autostart-enabled=true\n" +
           std::string(kMark) + Value(entry.home) + "\n";
}

DesktopAutostart::DesktopAutostart(Files& files, const Environment& environment)
    : files_(files), folder_(ConfigHome(environment) + "/autostart") {}

// The name is the operator's and may contain anything; it must become a single valid file name.
std::string DesktopAutostart::FileName(const std::string& name) const {
    return folder_ + "/" + ReplaceAll(name, "/", "_") + ".desktop";
}

void DesktopAutostart::CheckIsOurs(const std::string& path) {
    const auto text = files_.Read(path);
    if (text && !Holds(*text, "\n" + std::string(kMark))) throw Error(path + " is not Korvane's");
}

void DesktopAutostart::Add(const AutostartEntry& entry) {
    const std::string path = FileName(entry.name);
    CheckIsOurs(path);
    const std::string text = DesktopEntryText(entry);
    files_.CreateFolder(folder_);
    files_.Publish(path, text);
}

void DesktopAutostart::Remove(const std::string& name) {
    const std::string path = FileName(name);
    CheckIsOurs(path);
    files_.Remove(path);
}

std::string KindOfFile(std::string_view extension) {
    const auto* found =
        std::find_if(std::begin(kKinds), std::end(kKinds), [&](const auto& kind) { return EqualsNoCase(kind.first, extension); });
    return found == std::end(kKinds) ? "" : std::string(found->second);
}

std::string DefaultDesktopEntry(std::string_view kind, const Environment& environment) {
    Names applications = DataFolders(environment);
    for (std::string& folder : applications)
        folder += "/applications";
    Names listFolders = ConfigFolders(environment);
    listFolders.insert(listFolders.end(), applications.begin(), applications.end());
    Names lists;
    for (const std::string& folder : listFolders) {
        for (const std::string& desktop : Split(ToLower(environment("XDG_CURRENT_DESKTOP")), ':')) {
            if (!desktop.empty()) lists.push_back(folder + "/" + desktop + "-mimeapps.list");
        }
        lists.push_back(folder + "/mimeapps.list");
    }
    std::vector<std::pair<std::string, std::string_view>> sections;  // of all lists, in the order in which they count
    for (const std::string& list : lists)
        sections.emplace_back(list, "[Default Applications]");
    for (const std::string& list : lists)
        sections.emplace_back(list, "[Added Associations]");
    for (const std::string& folder : applications)
        sections.emplace_back(folder + "/mimeinfo.cache", "[MIME Cache]");
    for (const auto& [list, section] : sections) {
        for (const std::string& entry : EntriesIn(list, section, kind)) {
            if (IsInstalled(entry, applications)) return entry;
        }
    }
    return "";
}

}  // namespace korvane
