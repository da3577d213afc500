// What the event pump and the clock promise to the adapters and to whoever changes the zone.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "platform/linux/linux_clock.h"
#include "platform/qt/qt_events.h"
#include "platform/wait.h"
#include "support/qt_application.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

TEST(SystemClockTest, FollowsTheZoneOfTheEnvironment) {
    const char* before = ::getenv("TZ");
    const std::string old = before != nullptr ? before : "";
    const SystemClock clock;
    for (const auto& [zone, offset] :
         {std::pair<const char*, std::chrono::minutes>{"EST5", -5h}, {"IST-5:30", 330min}, {"UTC0", 0min}}) {
        ::setenv("TZ", zone, 1);
        const auto difference = clock.Now() - clock.UtcNow();
        EXPECT_LE(std::chrono::abs(difference - std::chrono::seconds(offset)), 1s) << zone;
    }
    before != nullptr ? ::setenv("TZ", old.c_str(), 1) : ::unsetenv("TZ");
}

class WatchTest : public testing::Test {
protected:
    ~WatchTest() override { ::close(descriptor); }

    const bool application = (NeedQtApplication(), true);
    SystemClock clock;
    QtEvents events;
    const int descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
};

TEST_F(WatchTest, IsCalledAsLongAsThereIsSomethingToRead) {
    int calls = 0;
    auto watch = events.WatchReadable(descriptor, [&] { ++calls; });
    events.DoEvents();
    EXPECT_EQ(calls, 0);

    std::thread writer([&] { ::eventfd_write(descriptor, 1); });
    const bool called = WaitFor(events, clock, 20s, [&] { return calls >= 3; });
    writer.join();
    EXPECT_TRUE(called);

    watch.reset();
    calls = 0;
    events.DoEvents();
    EXPECT_EQ(calls, 0);
}

TEST_F(WatchTest, MayEndInItsOwnCall) {
    int calls = 0;
    ::eventfd_write(descriptor, 1);
    std::unique_ptr<Events::Watch> watch;
    watch = events.WatchReadable(descriptor, [&calls, &watch] {
        ++calls;
        watch.reset();
    });
    for (int i = 0; i < 3; ++i)
        events.DoEvents();
    EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace korvane
