// The floors of the house: which rooms and which outside headers each folder of src/ may include. A room sees only rooms below
// it; only the adapters and the shell meet Qt, curl or the operating system, and the adapters keep Qt and curl out of their headers.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>

#include "base/text.h"

namespace korvane::includes_test {

namespace fs = std::filesystem;

struct Room {
    std::string folder;
    std::string sees;     ///< rooms beside itself, each between blanks
    std::string outside;  ///< headers that are not of the language: s of the system, q of Qt, c of curl
};

// The first room whose folder holds a file is that file's room, so the adapters stand before the ports.
const Room kRooms[] = {
    {"base", "", ""},
    {"platform/qt", " base platform ", "sq"},
    {"platform/curl", " base platform ", "sc"},
    {"platform/linux", " base platform ", "s"},
    {"platform", " base ", ""},
    {"store", " base platform ", ""},
    {"notify", " base platform store ", ""},
    {"reports", " base platform store ", ""},
    {"engine", " base platform store notify reports ", ""},
    {"resources", " base platform store notify ", ""},
    {"shell", " base platform platform/qt platform/curl platform/linux store notify reports engine resources ", "sqc"},
};

// Null for a file in no room.
const Room* RoomOf(const std::string& path) {
    const auto* const room =
        std::find_if(std::begin(kRooms), std::end(kRooms), [&](const Room& each) { return path.starts_with(each.folder + "/"); });
    return room == std::end(kRooms) ? nullptr : room;
}

// Whether the line of the file includes nothing that it may not; one that hides what it includes does.
bool IsAllowed(const std::string& file, const std::string& line) {
    static const std::regex include(R"(\s*#\s*include\s*(["<]?)([^">]*).*)");
    std::smatch match;
    const Room* const room = RoomOf(file);
    if (room == nullptr || !std::regex_match(line, match, include)) return room != nullptr;
    const std::string name = match[2];
    if (match[1] != "<") {
        const Room* const other = match[1] == "\"" ? RoomOf(name) : nullptr;
        return other == room || (other != nullptr && Holds(room->sees, " " + other->folder + " "));
    }
    const bool isOfLanguage = name.find_first_of("./Q") == std::string::npos;
    const std::string kind = name.starts_with("Q") ? "q" : name.starts_with("curl/") ? "c" : "s";
    const bool mayShow = kind == "s" || room->folder == "shell" || !file.ends_with(".h");
    return isOfLanguage || (mayShow && Holds(room->outside, kind));
}

TEST(Includes, TheSourceKeepsTheFloors) {
    const fs::path source = fs::path(KORVANE_SOURCE_DIR) / "src";
    for (const auto& entry : fs::recursive_directory_iterator(source)) {
        const std::string file = fs::relative(entry.path(), source).generic_string();
        if (!file.ends_with(".h") && !file.ends_with(".cpp")) continue;
        std::ifstream text(entry.path());
        for (std::string line; std::getline(text, line);)
            EXPECT_TRUE(IsAllowed(file, line)) << file << ": " << line;
    }
    EXPECT_TRUE(fs::exists(source / "base"));
}

}  // namespace korvane::includes_test
