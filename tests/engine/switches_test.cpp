// The wait before monitoring begins, and the switch that stops and starts it.
#include <gtest/gtest.h>

#include "engine/begin_wait.h"
#include "engine/engine_world.h"
#include "engine/stop_start.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

struct WaitWorld : EngineWorld {
    WaitWorld() {
        TimerMonitorDB->SetEnabled(false);
        Timer2->OnTick([this] { wait.Timer2_Timer(); });
        Timer2->SetEnabled(true);
    }

    int begun = 0;
    int compacted = 0;
    BeginWait wait{{world.clock, person, status, settings, switches, state, [this] { ++begun; }, [this] { ++compacted; }}};
    bool bFormLoading = false;
    StopStart stopStart{{person, status, switches, state, bFormLoading}};
};

TEST(BeginWait, CountsTheMinutesDownAndHandsOver) {
    WaitWorld world;
    world.settings.setKvSettingsColValue("Begin", "2");
    world.RunFor(1s);
    EXPECT_EQ(world.begun, 1);
    EXPECT_EQ(world.person.cycleText, "Waiting 120 seconds to start.");
    EXPECT_TRUE(
        world.person.Said("Waiting 2 minutes before monitoring begins.  Choose the Settings menu to adjust this value..."));
    world.RunFor(119s);
    EXPECT_EQ(world.person.statusCount, 2u);  // the wait is announced once, the compaction once
    EXPECT_EQ(world.compacted, 1);
    EXPECT_EQ(world.person.progressValue, 100);
    EXPECT_FALSE(world.TimerMonitorDB->Enabled());
    world.RunFor(1s);
    EXPECT_TRUE(world.person.Said("Done Waiting."));
    EXPECT_TRUE(world.TimerMonitorDB->Enabled());
    EXPECT_FALSE(world.Timer2->Enabled());
    EXPECT_EQ(world.begun, 1);
}

TEST(BeginWait, DoesNotWaitForNothingOrForWords) {
    for (const char* begin : {"0", "-3", "soon"}) {
        WaitWorld world;
        world.settings.setKvSettingsColValue("Begin", begin);
        world.RunFor(1s);
        EXPECT_TRUE(world.TimerMonitorDB->Enabled()) << begin;
        EXPECT_EQ(world.compacted, 0);
    }
}

TEST(StopStart, TogglesFromTheWaitAndWhileMonitoring) {
    WaitWorld world;
    world.settings.setKvSettingsColValue("Begin", "2");
    world.RunFor(5s);
    world.stopStart.cmdStopStart();
    EXPECT_FALSE(world.state.bMonitoring);
    EXPECT_EQ(world.person.tray,
              (RecordingOperator::Tray{TrayPicture::Off, " Korvane: URL Monitoring is Paused.  No Monitoring will occur. "}));
    EXPECT_TRUE(world.person.Said("Stopped.  Click the Start button to resume monitoring."));
    EXPECT_TRUE(world.person.Said("Monitoring Stopped"));
    world.RunFor(10min);
    EXPECT_FALSE(world.TimerMonitorDB->Enabled());

    world.stopStart.cmdStopStart();
    EXPECT_TRUE(world.state.bMonitoring);
    EXPECT_TRUE(world.TimerMonitorDB->Enabled());
    EXPECT_FALSE(world.Timer2->Enabled());
    EXPECT_EQ(world.person.tray.tip, " Korvane: URL Monitoring is ON ");

    world.bFormLoading = true;
    world.stopStart.cmdStopStart();
    EXPECT_TRUE(world.state.bMonitoring);
}

}  // namespace
}  // namespace korvane
