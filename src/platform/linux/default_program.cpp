#include "platform/linux/default_program.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>
#include <vector>

#include "base/text.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

constexpr std::pair<std::string_view, std::string_view> kKinds[] = {
    {"htm", kPageKind}, {"html", kPageKind}, {"txt", "text/plain"}, {"log", "text/plain"}};

// Returns the user's own folder, then those of the system.
Names Folders(const std::string& own, const std::string& system) {
    Names folders = Split(system, ':');
    folders.insert(folders.begin(), own);
    std::erase(folders, "");
    return folders;
}

Names ApplicationFolders(const Environment& environment) {
    Names folders = Folders(Or(environment("XDG_DATA_HOME"), environment("HOME") + "/.local/share"),
                            Or(environment("XDG_DATA_DIRS"), "/usr/local/share:/usr/share"));
    for (std::string& folder : folders)
        folder += "/applications";
    return folders;
}

Names ListFolders(const Environment& environment) {
    Names folders = Folders(Or(environment("XDG_CONFIG_HOME"), environment("HOME") + "/.config"),
                            Or(environment("XDG_CONFIG_DIRS"), "/etc/xdg"));
    const Names applications = ApplicationFolders(environment);
    folders.insert(folders.end(), applications.begin(), applications.end());
    return folders;
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

std::string EnvironmentVariable(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value == nullptr ? "" : value;
}

std::string KindOfFile(std::string_view extension) {
    const auto* found =
        std::find_if(std::begin(kKinds), std::end(kKinds), [&](const auto& kind) { return EqualsNoCase(kind.first, extension); });
    return found == std::end(kKinds) ? "" : std::string(found->second);
}

std::string DefaultDesktopEntry(std::string_view kind, const Environment& environment) {
    const Names applications = ApplicationFolders(environment);
    std::vector<std::string> lists;
    for (const std::string& folder : ListFolders(environment)) {
        for (const std::string& desktop : Split(ToLower(environment("XDG_CURRENT_DESKTOP")), ':')) {
            if (!desktop.empty()) lists.push_back(folder + "/" + desktop + "-mimeapps.list");
        }
        lists.push_back(folder + "/mimeapps.list");
    }
    Names entries;
    const auto add = [&](const std::string& file, std::string_view section) {
        const Names more = EntriesIn(file, section, kind);
        entries.insert(entries.end(), more.begin(), more.end());
    };
    for (const std::string& list : lists)
        add(list, "[Default Applications]");
    for (const std::string& list : lists)
        add(list, "[Added Associations]");
    for (const std::string& folder : applications)
        add(folder + "/mimeinfo.cache", "[MIME Cache]");
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const std::string& entry) { return IsInstalled(entry, applications); });
    return found == entries.end() ? "" : *found;
}

}  // namespace korvane
