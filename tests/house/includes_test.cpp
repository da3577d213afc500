// The floors of the house: which rooms and which outside headers each folder of src/ may include. A room sees only rooms below
// it; only the adapters and the shell meet Qt, curl or the operating system, and the adapters keep Qt and curl out of their headers.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace korvane {
namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

enum Outside { Standard = 0, System = 1, Qt = 2, Curl = 4, All = 7 };

struct Room {
    std::string folder;
    Names mayInclude;  ///< folders of rooms, its own among them
    int outside;       ///< the kinds of headers in angle brackets it may include
};

// The first room whose folder holds a file is that file's room, so the adapters stand before the ports.
const std::vector<Room> kRooms = {
    {"base", {"base"}, Standard},
    {"platform/qt", {"base", "platform", "platform/qt"}, System | Qt},
    {"platform/curl", {"base", "platform", "platform/curl"}, System | Curl},
    {"platform/linux", {"base", "platform", "platform/linux"}, System},
    {"platform", {"base", "platform"}, Standard},
    {"store", {"base", "platform", "store"}, Standard},
    {"notify", {"base", "platform", "store", "notify"}, Standard},
    {"reports", {"base", "platform", "store", "reports"}, Standard},
    {"engine", {"base", "platform", "store", "notify", "reports", "engine"}, Standard},
    {"resources", {"base", "platform", "store", "notify", "resources"}, Standard},
    {"shell",
     {"base", "platform", "platform/qt", "platform/curl", "platform/linux", "store", "notify", "reports", "engine", "resources",
      "shell"},
     All},
};

const Room* RoomOf(const std::string& path) {
    for (const Room& room : kRooms) {
        if (path.starts_with(room.folder + "/")) return &room;
    }
    return nullptr;
}

Outside KindOf(const std::string& header) {
    if (header.starts_with("Q")) return Qt;
    if (header.starts_with("curl/")) return Curl;
    return header.find_first_of("./") == std::string::npos ? Standard : System;
}

// Takes `"base/text.h"` or `<string>`.
bool Allowed(const Room& room, const std::string& file, const std::string& header) {
    const std::string name = header.substr(1);
    const bool showsLibraries = room.folder == "shell" || !file.ends_with(".h");
    const int outside = showsLibraries ? room.outside : room.outside & System;
    if (header.starts_with('<')) return (KindOf(name) & ~outside) == 0;
    const Room* included = RoomOf(name);
    return included != nullptr && room.mayInclude.contains(included->folder);
}

// The header of an #include line with its opening quote or bracket; blank for every other line, all of a line that hides it.
std::string IncludedBy(const std::string& line) {
    std::istringstream words(line);
    std::string word, header;
    words >> word;
    if (word == "#") {
        words >> header;
        word += header;
    }
    if (!word.starts_with("#include")) return "";
    const std::size_t start = line.find_first_of("\"<");
    if (start == std::string::npos) return line;
    const std::size_t end = line.find_first_of("\">", start + 1);
    return line.substr(start, end - start);
}

// "<file>: <header>" for each include below `source` that the floors forbid; a file in no room is one too.
Names ForbiddenIncludes(const fs::path& source) {
    static const Names kinds = {".h", ".cpp"};
    Names forbidden;
    for (const auto& entry : fs::recursive_directory_iterator(source)) {
        if (!kinds.contains(entry.path().extension().string())) continue;
        const std::string file = fs::relative(entry.path(), source).generic_string();
        const Room* room = RoomOf(file);
        if (room == nullptr) forbidden.insert(file + ": in no room");
        std::ifstream text(entry.path());
        for (std::string line; room != nullptr && std::getline(text, line);) {
            const std::string header = IncludedBy(line);
            if (!header.empty() && !Allowed(*room, file, header)) forbidden.insert(file + ": " + header.substr(1));
        }
    }
    return forbidden;
}

TEST(Includes, TheSourceKeepsTheFloors) {
    ASSERT_TRUE(fs::exists(fs::path(KORVANE_SOURCE_DIR) / "src/base"));
    EXPECT_EQ(ForbiddenIncludes(fs::path(KORVANE_SOURCE_DIR) / "src"), Names{});
}

TEST(Includes, EachForbiddenIncludeIsFound) {
    struct Case {
        std::string file, include;
        bool forbidden;
    };
    const std::vector<Case> cases = {
        {"base/a.h", "<string>", false},
        {"base/b.h", "\"base/text.h\"", false},
        {"base/c.h", "\"platform/clock.h\"", true},
        {"base/d.h", "\"text.h\"", true},
        {"platform/a.h", "<QString>", true},
        {"platform/b.h", "<sys/socket.h>", true},
        {"platform/c.h", "\"platform/qt/qt_events.h\"", true},
        {"platform/qt/a.cpp", "<QtCore/QString>", false},
        {"platform/qt/f.cpp", "<netdb.h>", false},
        {"platform/qt/g.h", "<QtCore/QString>", true},
        {"platform/curl/c.h", "<curl/curl.h>", true},
        {"platform/qt/b.cpp", "\"platform/timer.h\"", false},
        {"platform/qt/c.cpp", "\"store/settings.h\"", true},
        {"platform/qt/d.cpp", "<curl/curl.h>", true},
        {"platform/qt/e.cpp", "\"platform/linux/linux_clock.h\"", true},
        {"platform/curl/a.cpp", "<curl/curl.h>", false},
        {"platform/curl/b.cpp", "<QString>", true},
        {"platform/linux/a.cpp", "<netinet/ip_icmp.h>", false},
        {"platform/linux/b.cpp", "<QFile>", true},
        {"platform/linux/c.cpp", "<curl/curl.h>", true},
        {"store/a.cpp", "\"platform/connection.h\"", false},
        {"store/b.cpp", "\"notify/mail_message.h\"", true},
        {"store/c.cpp", "<unistd.h>", true},
        {"store/d.cpp", "<math.h>", true},
        {"notify/a.cpp", "\"reports/pipeline.h\"", true},
        {"reports/a.cpp", "\"engine/server_table.h\"", true},
        {"engine/a.cpp", "\"reports/pipeline.h\"", false},
        {"engine/b.cpp", "\"resources/cpu.h\"", true},
        {"engine/c.cpp", "\"platform/curl/curl_inet.h\"", true},
        {"engine/d.cpp", "\"../shell/main.h\"", true},
        {"resources/a.cpp", "\"engine/monitor_cycle.h\"", true},
        {"shell/a.cpp", "\"platform/curl/curl_inet.h\"", false},
        {"shell/b.cpp", "<QWidget>", false},
    };
    std::string folder = (fs::temp_directory_path() / "korvane-includes-XXXXXX").string();
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    Names expected = {"attic/a.h: in no room"};
    fs::create_directories(fs::path(folder) / "attic");
    std::ofstream(fs::path(folder) / "attic/a.h") << "\n";
    for (const Case& one : cases) {
        const fs::path file = fs::path(folder) / one.file;
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "// \"a comment\"\n  #  include " << one.include << "  // why\n";
        if (one.forbidden) expected.insert(one.file + ": " + one.include.substr(1, one.include.size() - 2));
    }
    EXPECT_EQ(ForbiddenIncludes(folder), expected);
    fs::remove_all(folder);
}

}  // namespace
}  // namespace korvane
