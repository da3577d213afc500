#include "store/server_id.h"

#include <gtest/gtest.h>

#include <set>

#include "store/ini_file.h"
#include "support/faulty_files.h"
#include "support/memory_files.h"
#include "support/virtual_world.h"

namespace korvane {
namespace {

TEST(NewTimeStampID, HasNoLeadingZerosAndTheLastDigitOfNextYear) {
    struct {
        DateTime now;
        const char* expected;
    } cases[] = {
        {DateTime::Of(2026, 11, 21, 15, 4, 5), "711211545"},
        {DateTime::Of(2026, 1, 1), "711000"},
        {DateTime::Of(2029, 12, 31, 23, 59, 59), "01231235959"},
        {DateTime::Of(2028, 2, 29, 0, 1, 0), "9229010"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(NewTimeStampID(VirtualWorld(each.now).clock), each.expected);
}

struct ServerIdTest : testing::Test {
    MemoryFiles disk;
    FaultyFiles files{disk};
    VirtualWorld world{DateTime::Of(2026, 11, 21, 15, 4, 5)};
    IniFile file{files, "/home.ini"};
    ServerIds ids{file, world.clock};

    void SetLastId(const std::string& text) { file.Write("KEYGEN", "LASTID", text); }
};

TEST_F(ServerIdTest, CountsInTheFileAtOnce) {
    EXPECT_EQ(ids.NewServerID(), "7112115452");
    EXPECT_EQ(disk.Text("/home.ini"), "[KEYGEN]\nLASTID=2\n");
    SetLastId("9");
    EXPECT_EQ(ids.NewServerID(), "71121154510");
    EXPECT_EQ(ServerIds(file, world.clock).NewServerID(), "71121154511");
}

TEST_F(ServerIdTest, DamagedCounterStartsAgainButNotBelowThisRun) {
    for (const char* damaged : {"abc", "-7", "1.5", "9223372036854775807", "99999999999999999999", "12345678901"}) {
        SetLastId(damaged);
        ServerIds fresh(file, world.clock);
        EXPECT_EQ(fresh.NewServerID(), "7112115452") << damaged;
        EXPECT_EQ(file.Read("keygen", "lastid", ""), "2") << damaged;
    }
    SetLastId("70");
    EXPECT_EQ(ids.NewServerID(), "71121154571");
    SetLastId("abc");
    EXPECT_EQ(ids.NewServerID(), "71121154572");
}

TEST_F(ServerIdTest, IsExactInSixtyFourBitsWithoutLeadingZero) {
    world.MoveClock(DateTime::Of(2028, 12, 31, 23, 59, 59) - world.clock.Now());
    SetLastId("99999998");
    EXPECT_EQ(ids.NewServerID(), "9123123595999999999");
    world.MoveClock(DateTime::Of(2029, 12, 31, 23, 59, 59) - world.clock.Now());
    SetLastId("9");
    EXPECT_EQ(ServerIds(file, world.clock).NewServerID(), "123123595910");
}

TEST_F(ServerIdTest, IdsStayApartWithoutADisk) {
    files.faults.Add({.forever = true});
    std::set<std::string> seen;
    for (int i = 0; i < 20; ++i)
        seen.insert(ids.NewServerID());
    EXPECT_EQ(seen.size(), 20u);
}

}  // namespace
}  // namespace korvane
