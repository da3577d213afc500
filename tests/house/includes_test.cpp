// The floors of the house: which rooms and which outside headers each folder of src/ may include. A room sees only rooms below it; only
// the adapters and the shell meet Qt, curl or the operating system.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace korvane {
namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

struct Room {
    std::string folder;
    Names mayInclude;     ///< folders of rooms, its own among them
    std::string outside;  ///< the headers it may include besides those of standard C++
};

const std::string kNone = "$.^";
const std::string kSystem = "(?!curl/)[a-z].*\\.h";  // adapters stand on the operating system, whatever else they stand on

// The first room whose folder holds a file is that file's room, so the adapters stand before the ports.
const std::vector<Room> kRooms = {
    {"base", {"base"}, kNone},
    {"platform/qt", {"base", "platform", "platform/qt"}, "Q.*|" + kSystem},
    {"platform/curl", {"base", "platform", "platform/curl"}, "curl/.*|" + kSystem},
    {"platform/linux", {"base", "platform", "platform/linux"}, kSystem},
    {"platform", {"base", "platform"}, kNone},
    {"store", {"base", "platform", "store"}, kNone},
    {"notify", {"base", "platform", "store", "notify"}, kNone},
    {"reports", {"base", "platform", "store", "reports"}, kNone},
    {"engine", {"base", "platform", "store", "notify", "reports", "engine"}, kNone},
    {"resources", {"base", "platform", "store", "notify", "resources"}, kNone},
    {"shell",
     {"base", "platform", "platform/qt", "platform/curl", "platform/linux", "store", "notify", "reports", "engine", "resources",
      "shell"},
     ".*"},
};

const Room* RoomOf(const std::string& path) {
    for (const Room& room : kRooms) {
        if (path.starts_with(room.folder + "/")) return &room;
    }
    return nullptr;
}

bool Allowed(const Room& room, const std::string& header, bool quoted) {
    static const std::regex standard("[a-z_]+");
    if (!quoted) return std::regex_match(header, standard) || std::regex_match(header, std::regex(room.outside));
    const Room* included = RoomOf(header);
    return included != nullptr && room.mayInclude.contains(included->folder);
}

// "<file>: <header>" for each include below `source` that the floors forbid; a file in no room is one too.
Names ForbiddenIncludes(const fs::path& source) {
    static const std::regex include(R"(^\s*#\s*include\s*(["<])([^">]+)[">].*)");
    static const Names kinds = {".h", ".cpp"};
    Names forbidden;
    for (const auto& entry : fs::recursive_directory_iterator(source)) {
        if (!kinds.contains(entry.path().extension().string())) continue;
        const std::string file = fs::relative(entry.path(), source).generic_string();
        const Room* room = RoomOf(file);
        if (room == nullptr) forbidden.insert(file + ": in no room");
        std::ifstream text(entry.path());
        std::smatch found;
        for (std::string line; room != nullptr && std::getline(text, line);) {
            if (!std::regex_match(line, found, include)) continue;
            if (!Allowed(*room, found[2], found[1] == "\"")) forbidden.insert(file + ": " + found[2].str());
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
