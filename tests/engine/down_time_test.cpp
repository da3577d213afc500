// Windows of down-time by the minute.
#include "engine/down_time.h"

#include <gtest/gtest.h>

namespace korvane {
namespace {

DateTime At(int hour, int minute) {
    return DateTime::Of(2026, 11, 21, hour, minute, 30);
}

TEST(IsDownTime, HoldsFromItsFirstMinuteToBeforeItsEnd) {
    struct Case {
        const char* start;
        const char* duration;
        DateTime now;
        bool down;
        int toStart;
    };
    const Case cases[] = {
        {"9:00", "60", At(8, 59), false, 1},
        {"9:00", "60", At(9, 0), true, 0},
        {"9:00 AM", "60", At(9, 59), true, -59},
        {"9:00", "60", At(10, 0), false, -60},
        {"23:30", "60", At(23, 59), true, -29},
        {"23:30", "60", At(0, 10), false, 1400},  // minutes of the day do not wrap
        {"11/20/2026 9:00:00 PM", "1", At(21, 0), true, 0},
        {"", "60", At(9, 0), false, -1},
        {"9:00", "", At(9, 0), false, -1},
        {"9:00", "0", At(9, 0), false, -1},
        {"9:00", "-5", At(9, 0), false, -1},
        {"nine", "60", At(9, 0), false, -1},
        {"9:00", "soon", At(9, 0), false, -1},
        {"23:00", "32000", At(23, 0), false, -1},  // leaves the 16 bits
    };
    for (const Case& c : cases) {
        const DownTime result = IsDownTime(c.start, c.duration, c.now);
        EXPECT_EQ(result.bIsDown, c.down) << c.start << " " << c.duration << " " << c.now.Text();
        EXPECT_EQ(result.nMinutesToStart, c.toStart) << c.start << " " << c.duration << " " << c.now.Text();
    }
}

TEST(DownTimeEnd, CarriesAWindowPastMidnight) {
    EXPECT_EQ(DownTimeEnd("23:30", std::chrono::minutes(60), At(23, 45)), DateTime::Of(2026, 11, 22, 0, 30));
}

}  // namespace
}  // namespace korvane
