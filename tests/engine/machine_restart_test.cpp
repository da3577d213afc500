// What the operator's test of the restart asks, stops and requests, and what is said where the machine can't do it.
#include "engine/machine_restart.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "support/memory_files.h"
#include "support/recording_operator.h"
#include "support/recording_power.h"
#include "support/virtual_world.h"

namespace korvane {
namespace {

using Requests = std::vector<PowerAction>;

struct RestartRig {
    RestartRig() { files.CreateFolder("/home"); }
    std::string LogText() const { return files.Text("/home/Logs/kvmonlog 2026 11-21.txt"); }

    VirtualWorld world{DateTime::Of(2026, 11, 21, 15, 0, 0)};
    MemoryFiles files;
    RecordingOperator person;
    RecordingPower power;
    StatusLog status{person, world.clock};
    Log log{files, world.clock, "/home", "1.0.0"};
    CycleState state;
    int switched = 0;
    MachineRestart restart{{power, person, status, log, state, [this] {
                                EXPECT_EQ(power.requests, Requests{});
                                ++switched;
                                state.bMonitoring = !state.bMonitoring;
                            }}};
};

TEST(clsShutdown, LogsWhatCouldNotBeRequested) {
    RestartRig rig;
    rig.power.refuses = true;
    clsShutdown(rig.power, rig.log).DoForceShutdown();
    EXPECT_TRUE(Holds(rig.LogText(), "DoForceShutdown: Nothing on this machine can do it")) << rig.LogText();
}

TEST(TestShutDown, StopsMonitoringAndReboots) {
    struct Case {
        const char* name;
        bool yes;
        bool monitoring;
        PowerSystem system;
        int switched;
        Requests requests;
    };
    const Case cases[] = {
        {"no", false, true, PowerSystem::ServiceManager, 0, {}},
        {"yes", true, true, PowerSystem::ServiceManager, 1, {PowerAction::Reboot}},
        {"already stopped", true, false, PowerSystem::ServiceManager, 0, {PowerAction::Reboot}},
        {"without a service manager", true, true, PowerSystem::ShutdownCommand, 1, {PowerAction::Reboot}},
        {"nothing can do it", true, true, PowerSystem::Unknown, 1, {PowerAction::Reboot}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        RestartRig rig;
        rig.person.answers = {c.yes};
        rig.state.bMonitoring = c.monitoring;
        rig.power.system = c.system;
        bool answered = false;
        rig.restart.TestShutDown([&] { answered = rig.person.questions.size() == 1; });
        EXPECT_TRUE(answered);
        EXPECT_EQ(rig.person.questions,
                  (std::vector<RecordingOperator::Message>{
                      {"Korvane",
                       "Your computer is about to be rebooted.  Are you sure you want to test the shutdown/restart command?"}}));
        EXPECT_EQ(rig.switched, c.switched);
        EXPECT_EQ(rig.power.requests, c.requests);
        EXPECT_EQ(rig.person.Said("Testing Shutdown command..."), c.yes);
        EXPECT_EQ(rig.person.Said("Can't shutdown because this is an unknown system."), c.system == PowerSystem::Unknown);
        EXPECT_TRUE(rig.person.messages.empty());
    }
}

}  // namespace
}  // namespace korvane
