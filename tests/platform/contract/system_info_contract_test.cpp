// What the resource monitors rely on in the figures of every machine.
#include <gtest/gtest.h>

#include <type_traits>

#include "platform/linux/linux_system_info.h"
#include "support/scripted_system_info.h"

namespace korvane::contract {
namespace {

struct ScriptedMachine : ScriptedSystemInfo {
    ScriptedMachine() { Work(50); }
};

template <class Machine>
class SystemInfoContract : public testing::Test {
protected:
    const Machine machine_;
};
using Machines = testing::Types<ScriptedMachine, LinuxSystemInfo>;
struct MachineNames {
    template <class Machine>
    static std::string GetName(int) {
        return std::is_same_v<Machine, LinuxSystemInfo> ? "Linux" : "Scripted";
    }
};
TYPED_TEST_SUITE(SystemInfoContract, Machines, MachineNames);

TYPED_TEST(SystemInfoContract, APartIsNeverMoreThanTheWhole) {
    const SystemInfo& machine = this->machine_;
    const auto before = machine.Processors();
    const auto after = machine.Processors();
    ASSERT_TRUE(before && after);
    EXPECT_GE(after->total, before->total);
    EXPECT_LE(before->idle, before->total);
    EXPECT_GE(before->processors, 1);
    const auto memory = machine.Memory();
    ASSERT_TRUE(memory);
    EXPECT_GT(memory->total, 0u);
    EXPECT_LE(memory->available, memory->total);
    const DiskSpace disks = machine.FixedDisks();
    EXPECT_GE(disks.free, 0);
    EXPECT_LE(disks.free, disks.total);
}

}  // namespace
}  // namespace korvane::contract
