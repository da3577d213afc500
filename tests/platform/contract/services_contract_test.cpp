// What the service monitor relies on in every service manager: one answer, later, and none that nobody waits for any more.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <type_traits>

#include "platform/linux/linux_clock.h"
#include "platform/linux/systemd_services.h"
#include "platform/qt/qt_events.h"
#include "platform/wait.h"
#include "support/qt_application.h"
#include "support/scripted_services.h"
#include "support/service_bus.h"

namespace korvane::contract {
namespace {

using namespace std::chrono_literals;

struct ScriptedBench {
    VirtualWorld world{DateTime::Of(2026, 11, 21, 15, 0)};
    Clock& clock = world.clock;
    Events& events = world.events;
    ScriptedServices services{world};

    explicit ScriptedBench(bool there) {
        services.whyNot = there ? "" : "There is none";
        services.Set("b", ServiceRecord::kRunning);
        services.Set("a", ServiceRecord::kStopped);
    }
};

struct BusBench {
    const bool application = (NeedQtApplication(), true);
    SystemClock clock;
    QtEvents events;
    ServiceBus bus;
    SystemdServices services{events, bus.Address()};

    explicit BusBench(bool there)
        : bus(there ? ServiceBus::Manager::Answers : ServiceBus::Manager::None, {{"b", "loaded", "active"}},
              {{"/lib/a", "disabled"}}) {}
};

template <class Bench>
class ServicesContract : public testing::Test {
protected:
    std::optional<ServiceList> Ask(Bench& bench) {
        std::optional<ServiceList> list;
        const auto question = bench.services.EnumServices([&](const ServiceList& answer) { list = answer; });
        EXPECT_FALSE(list) << "an answer within the question";
        WaitFor(bench.events, bench.clock, 30s, [&] { return list.has_value(); });
        return list;
    }
};
using Benches = testing::Types<ScriptedBench, BusBench>;
struct BenchNames {
    template <class Bench>
    static std::string GetName(int) {
        return std::is_same_v<Bench, ScriptedBench> ? "Scripted" : "Bus";
    }
};
TYPED_TEST_SUITE(ServicesContract, Benches, BenchNames);

TYPED_TEST(ServicesContract, ListsActiveAndInactiveOnesByName) {
    TypeParam bench(true);
    const auto list = this->Ask(bench);
    ASSERT_TRUE(list);
    EXPECT_EQ(list->whyNot, "");
    ASSERT_EQ(list->services.size(), 2u);
    EXPECT_EQ(list->services[0].name, "a");
    EXPECT_EQ(list->services[0].state, ServiceRecord::kStopped);
    EXPECT_EQ(list->services[1].displayName, "the b");
    EXPECT_EQ(list->services[1].state, ServiceRecord::kRunning);
    EXPECT_EQ(list->services[1].type, ServiceRecord::kOwnProcess);
}

TYPED_TEST(ServicesContract, AManagerThatIsNotThereIsNoEmptyList) {
    TypeParam bench(false);
    const auto list = this->Ask(bench);
    ASSERT_TRUE(list);
    EXPECT_NE(list->whyNot, "");
    EXPECT_TRUE(list->services.empty());
}

TYPED_TEST(ServicesContract, AQuestionCanBeDropped) {
    TypeParam bench(true);
    bool answered = false;
    std::unique_ptr<Services::Question> within;
    bench.services.EnumServices([&](const ServiceList&) { ADD_FAILURE() << "nobody waits for this"; });  // dropped at once
    within = bench.services.EnumServices([&](const ServiceList&) {
        within.reset();
        answered = true;
    });
    EXPECT_TRUE(WaitFor(bench.events, bench.clock, 30s, [&] { return answered; }));
    EXPECT_FALSE(WaitFor(bench.events, bench.clock, 50ms, [] { return false; }));
}

}  // namespace
}  // namespace korvane::contract
