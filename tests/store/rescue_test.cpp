// What becomes of a home whose database is missing, damaged or locked, at each point where the program can be killed.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/world.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

/// A home with three entries and a backup of them, left by a program that has ended.
struct Home {
    explicit Home(const std::string& settings = "RestoreDatabase=True\n") {
        std::ofstream(path + "/kvurlwatchn.ini") << "[Settings]\nBegin=9999\nServer=mail.example\n" << settings;
        World world({.home = path});
        world.Start();
        world.rows.AddMany({{}, {}, {}});
        world.rows.Change("Servers", 1, {{"strEmailList1", "one@x.y"}});
        world.run.TheDesk().maintenance.CompactAndRepair(database);
    }
    std::string Aside() const {
        for (const auto& entry : fs::directory_iterator(path))
            if (Holds(entry.path().string(), ".damaged ") && !Holds(entry.path().string(), "-journal")) return entry.path();
        return "";
    }
    TemporaryFolder folder;
    const std::string path = folder.Path(), database = path + "/kvdata2.mdb", backup = database + ".BAK";
};

using Harm = std::function<void(const std::string& database)>;
const std::pair<const char*, Harm> kHarms[] = {
    {"missing", [](const std::string& database) { fs::remove(database); }},
    {"empty", [](const std::string& database) { fs::resize_file(database, 0); }},
    {"cut", [](const std::string& database) { fs::resize_file(database, 8192); }},
    {"foreign", [](const std::string& database) { std::ofstream(database) << "Standard Jet DB"; }},
    {"overwritten",
     [](const std::string& database) {
         std::fstream file(database, std::ios::in | std::ios::out | std::ios::binary);
         file.seekp(100) << std::string(fs::file_size(database) - 100, '\xff');
     }},
};

TEST(DatabaseRescueTest, BringsBackWhatIsMissingOrDamagedAndKeepsIt) {
    for (const auto& [name, harm] : kHarms) {
        for (const bool on : {true, false}) {
            const Home home(on ? "RestoreDatabase=True\n" : "");
            harm(home.database);
            std::ofstream(home.database + "-journal") << "of the former one";
            World world({.home = home.path});
            world.Start();
            if (!on) {
                EXPECT_TRUE(home.Aside().empty() && !world.Logged("RestoreDatabase") && !fs::exists(home.path + "/Copies"))
                    << name;
                continue;
            }
            EXPECT_FALSE(fs::exists(home.database + "-journal") && fs::file_size(home.database + "-journal") > 0) << name;
            EXPECT_TRUE(world.Logged("Safeguard RestoreDatabase: The database was ")) << name;
            world.RunFor(1min);
            ASSERT_EQ(world.mail.mails.size(), 1u) << name;
            EXPECT_TRUE(Holds(world.mail.mails[0].text, "and was brought back from " + home.backup)) << world.mail.mails[0].text;
        }
    }
}

// A failing operation and all after it stand for a program that was killed before it.
TEST(DatabaseRescueTest, KilledAtAnyPointItBringsTheDatabaseBackAtTheNextStart) {
    for (const auto& [name, harm] : kHarms) {
        for (int killedAt = 1, left = 1; left > 0; ++killedAt) {
            const Home home;
            harm(home.database);
            const std::string harmed = fs::exists(home.database) ? ReadAll(home.database) : "";
            {
                World world({.home = home.path});
                world.files.faults.Add({.operation = FilesOperation::Rename, .nth = killedAt, .forever = true});
                world.Start();
                left = world.started == Run::Started::Running ? 0 : 1;
            }
            World world({.home = home.path});
            world.Start();
            EXPECT_EQ(world.started, Run::Started::Running) << name << killedAt;
            EXPECT_EQ(world.rows.Count("Servers"), 3) << name << killedAt;
            EXPECT_TRUE(harmed.empty() || ReadAll(home.Aside()) == harmed) << name << killedAt;
            EXPECT_TRUE(fs::exists(home.backup));
            if (killedAt > 9) break;
        }
    }
}

TEST(DatabaseRescueTest, ACopyThatHoldsMoreIsKeptAndOneOfEachOfSevenDays) {
    const Home home;
    World world({.home = home.path});
    world.Start();
    const auto entriesIn = [](const std::string& file) {
        TemporaryFolder folder;
        fs::copy_file(file, folder.Path() + "/kvdata2.mdb");
        QtSqlStore store(KindOfColumn);
        return TestDatabase(folder.Path(), store).Count("Servers");
    };
    world.rows.Remove("Servers", 3);
    world.run.TheDesk().maintenance.CompactAndRepair(home.database);
    EXPECT_EQ(entriesIn(home.backup), 3);
    world.rows.AddMany({{.id = 4}, {.id = 5}});
    world.run.TheDesk().maintenance.CompactAndRepair(home.database);
    EXPECT_EQ(entriesIn(home.backup), 4);
    fs::create_directory(home.path + "/Copies");
    world.Write("Copies/kvdata2 2026-11-20.mdb.new-journal", "of a program that was killed");
    for (int day = 0; day < 9; ++day) {
        world.RunFor(30s);
        world.world.MoveClock(24h);
    }
    const auto copies = world.disk.FileNames(home.path + "/Copies");
    ASSERT_EQ(copies.size(), 7u);
    EXPECT_EQ(copies.front() + copies.back(), "kvdata2 2026-11-23.mdbkvdata2 2026-11-29.mdb");
    EXPECT_EQ(entriesIn(home.path + "/Copies/" + copies.back()), 4);
    fs::resize_file(home.database, 20000);  // in the middle of a run
    world.RunFor(30s);
    EXPECT_EQ(world.rows.Count("Servers"), 4);
    EXPECT_TRUE(world.Logged("was damaged and was brought back from " + home.path + "/Copies/"));
}

TEST(DatabaseRescueTest, ALockThatEndsIsWaitedFor) {
    const Home home;
    World world({.home = home.path});
    QtSqlStore other(KindOfColumn, 0ms);
    const auto writer = TestDatabase(home.path, other).Connected();
    writer->BeginTrans();
    world.world.After(400ms, [&] { writer->CommitTrans(); });
    world.Start();
    EXPECT_EQ(world.started, Run::Started::Running);
    EXPECT_TRUE(world.Logged("is waited for") && !world.Logged("# "));
}

}  // namespace
}  // namespace korvane
