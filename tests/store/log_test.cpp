#include "store/log.h"

#include <gtest/gtest.h>

#include "store/status_log.h"
#include "support/faulty_files.h"
#include "support/memory_files.h"
#include "support/recording_operator.h"
#include "support/virtual_world.h"

namespace korvane {
namespace {

struct LogTest : testing::Test {
    LogTest() { disk.CreateFolder("/kv"); }

    MemoryFiles disk;
    FaultyFiles files{disk};
    VirtualWorld world{DateTime::Of(2026, 3, 9, 23, 59, 59)};
    Log log{files, world.clock, "/kv", "1.2.3"};
};

TEST_F(LogTest, RecordsByteForByte) {
    struct {
        int level;
        std::string_view messageClass, message, record;
    } cases[] = {
        {0, "i", "one", "3/9/2026 11:59:59 PM 1.2.3 i\tone\n"},
        {4, "#", "  one  ", "3/9/2026 11:59:59 PM 1.2.3 #\tone\n"},
        {0, "i", "a\r\nb\nc", "3/9/2026 11:59:59 PM 1.2.3 i\ta\n\t\t\t\tb\n\t\t\t\tc\n"},
        {0, "i", "\x1B\xC2\x9B\x7F\rb\n\tc", "3/9/2026 11:59:59 PM 1.2.3 i\t    b\n\t\t\t\t\tc\n"},
        {0, "i", "\tmore\n\tyet", "\t\t\t\tmore\n\t\t\t\t\tyet\n"},
        {6, "i", "one", ""},
        {0, "i", "   ", ""},
        {0, "i", " \r\n\t", ""},
    };
    const std::string path = "/kv/Logs/kvmonlog 2026 03-09.txt";
    for (const auto& each : cases) {
        disk.Remove(path);
        log.WriteLog(each.level, each.messageClass, each.message);
        EXPECT_EQ(disk.Text(path), each.record) << each.message;
    }
}

TEST_F(LogTest, NewFileEachDayAndFullDiskIsSwallowed) {
    files.FillDisk();
    log.WriteLog(kLogFatal, kLogError, "lost");
    files.faults.Heal();
    log.Info("today");
    world.RunFor(std::chrono::seconds(1));
    log.Info("tomorrow");
    EXPECT_EQ(disk.Text("/kv/Logs/kvmonlog 2026 03-09.txt"), "3/9/2026 11:59:59 PM 1.2.3 i\ttoday\n");
    EXPECT_EQ(disk.Text("/kv/Logs/kvmonlog 2026 03-10.txt"), "3/10/2026 12:00:00 AM 1.2.3 i\ttomorrow\n");
}

TEST(StatusLog, SaysTheTimeAndOneLine) {
    VirtualWorld world(DateTime::Of(2026, 3, 9, 23, 59, 59));
    RecordingOperator person;
    StatusLog status(person, world.clock);
    status.setStatusMSG("a\r\nb\nc\x07");
    world.RunFor(std::chrono::seconds(1));
    status.setStatusMSG("midnight");
    EXPECT_EQ(person.StatusTexts(), (std::vector<std::string>{"a : b : c ", "midnight"}));
    EXPECT_EQ(person.status[0].time + person.status[1].time, "11:59:59 PM3/10/2026");
}

}  // namespace
}  // namespace korvane
