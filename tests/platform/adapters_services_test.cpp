// The services of systemd over a bus: what counts as one and in which state, and a manager that keeps silent or has no bus.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <map>
#include <optional>

#include "base/text.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/systemd_services.h"
#include "platform/qt/qt_events.h"
#include "platform/wait.h"
#include "support/loopback_server.h"
#include "support/qt_application.h"
#include "support/service_bus.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using States = std::map<std::string, int>;

class SystemdServicesTest : public testing::Test {
protected:
    ServiceList Ask(const std::string& address, std::chrono::milliseconds limit = 30s) {
        SystemdServices services(events, address, limit);
        std::optional<ServiceList> list;
        const auto question = services.EnumServices([&](const ServiceList& answer) { list = answer; });
        EXPECT_TRUE(WaitFor(events, clock, 60s, [&] { return list.has_value(); }));
        return list.value_or(ServiceList{.whyNot = "no answer", .services = {}});
    }

    const bool application = (NeedQtApplication(), true);
    QtEvents events;
    SystemClock clock;
};

TEST_F(SystemdServicesTest, TellsServicesFromOtherUnits) {
    const ServiceBus bus(ServiceBus::Manager::Answers,
                         {{"ssh.service", "loaded", "active"},
                          {"cron.service", "loaded", "reloading"},
                          {"web.service", "loaded", "failed"},
                          {"slow.service", "loaded", "activating"},
                          {"going.service", "loaded", "deactivating"},
                          {"once.service", "loaded", "inactive"},
                          {"wanted.service", "not-found", "inactive"},
                          {"deleted.service", "not-found", "active"},
                          {"getty@tty1.service", "loaded", "active"}},
                         {{"/usr/lib/systemd/system/ssh.service", "enabled"},
                          {"/etc/systemd/system/sshd.service", "alias"},
                          {"/usr/lib/systemd/system/getty@.service", "enabled"},
                          {"/usr/lib/systemd/system/backup.service", "static"},
                          {"/etc/systemd/system/never.service", "masked"}});
    States states;
    for (const ServiceRecord& service : Ask(bus.Address()).services)
        states[service.name] = service.state;
    EXPECT_EQ(states, (States{{"ssh.service", 4},
                              {"cron.service", 4},
                              {"web.service", 1},
                              {"slow.service", 2},
                              {"going.service", 3},
                              {"once.service", 1},
                              {"deleted.service", 4},
                              {"getty@tty1.service", 4},
                              {"backup.service", 1},
                              {"never.service", 1}}));
}

TEST_F(SystemdServicesTest, SaysWhyThereIsNoAnswer) {
    const ServiceBus silent(ServiceBus::Manager::Silent, {}, {});
    EXPECT_EQ(Ask(silent.Address(), 100ms).whyNot, "The service manager can't be asked: it did not answer within 0 s");
    EXPECT_EQ(Ask("unix:path=/no/such/bus").whyNot, "The service manager can't be asked: No such file or directory");
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", silent.Address().c_str(), 1);
    EXPECT_TRUE(Holds(Ask("", 100ms).whyNot, "did not answer")) << "the system bus is where the environment says";
    ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    const ServiceBus empty(ServiceBus::Manager::None, {}, {});
    EXPECT_TRUE(Holds(Ask(empty.Address()).whyNot, "org.freedesktop.systemd1")) << Ask(empty.Address()).whyNot;
}

TEST_F(SystemdServicesTest, ABusThatBreaksOffIsSaidAtOnce) {
    const LoopbackServer::Script scripts[] = {
        [](LoopbackServer::Peer&) {},
        [](LoopbackServer::Peer& peer) { peer.Reset(); },
        [](LoopbackServer::Peer& peer) { peer.Send(std::string(100'000, '\0')); },
        [](LoopbackServer::Peer& peer) { peer.Send("REJECTED EXTERNAL\r\n"); },
        [](LoopbackServer::Peer& peer) {
            peer.ReadUntil("BEGIN\r\n");
            peer.Send("OK 0123456789abcdef0123456789abcdef\r\nl\2\1\1\377\377\377\377");
        },
    };
    for (const LoopbackServer::Script& script : scripts) {
        const LoopbackServer bus(script);
        SCOPED_TRACE(&script - scripts);
        const ServiceList list = Ask("tcp:host=127.0.0.1,port=" + std::to_string(bus.Port()), 60s);
        EXPECT_TRUE(list.services.empty());
        EXPECT_TRUE(list.whyNot.starts_with("The service manager can't be asked: ")) << list.whyNot;
        EXPECT_FALSE(Holds(list.whyNot, "did not answer")) << list.whyNot;
    }
}

}  // namespace
}  // namespace korvane
