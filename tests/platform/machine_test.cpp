// What this machine says of itself: figures of several kinds of machine as their kernels wrote them, its services over a bus, its
// desktop, and what would be run to end its run. Nothing here runs that.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "platform/linux/desktop_entries.h"
#include "platform/linux/environment.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/linux_power.h"
#include "platform/linux/linux_system_info.h"
#include "platform/linux/systemd_services.h"
#include "platform/real_ports.h"
#include "support/loopback_server.h"
#include "support/service_bus.h"
#include "support/temporary_folder.h"

namespace korvane::machine_test {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

TEST(Machine, TellsItsProcessorsMemoryAndVersion) {
    EXPECT_EQ(ProcessorsOf("cpu  10 20 30 400 50 1 2 3 7 7\ncpu0 10 20 30 400 50 1\ncpu1 0 0 0 0\nintr 5\n"),
              (ProcessorTimes{450, 516, 2}));
    EXPECT_FALSE(ProcessorsOf("cpu  1 2 3 x\n") || ProcessorsOf("cpu0 1 2 3 4\n") || ProcessorsOf(""));
    EXPECT_EQ(MemoryOf("MemTotal:       24684084 kB\nMemFree: 5 kB\nMemAvailable:   24147528 kB\n"),
              (PhysicalMemory{24684084ULL * 1024, 24147528ULL * 1024}));
    EXPECT_EQ(MemoryOf("MemTotal: 1000 kB\nMemFree: 100 kB\nBuffers: 20 kB\nCached: 3 kB\n"), (PhysicalMemory{1024000, 125952}));
    EXPECT_EQ(MemoryOf("MemTotal: 1000 kB\nMemAvailable: 2000 kB\n"), (PhysicalMemory{1024000, 1024000}));  // a container's limit
    EXPECT_FALSE(MemoryOf("MemTotal: 1000 kB\nMemAv") || MemoryOf("MemTotal:\nMemAvailable: 5 kB\n") || MemoryOf(""));
    const LinuxSystemInfo machine, nothing("/no");
    EXPECT_TRUE(machine.Processors() && machine.Memory());
    EXPECT_FALSE(nothing.Processors() || nothing.Memory() || nothing.FixedDisks() != DiskSpace{});
    const SystemVersion version = VersionOfRelease("Linux", "6.1.0-13-amd64");
    EXPECT_EQ(version.platform + " " + version.version + " " + version.build, "Linux 6.1 0-13-amd64");
}

struct SystemdServicesTest : RealPorts {
    static std::string BusOf(const LoopbackServer& server) { return "tcp:host=127.0.0.1,port=" + std::to_string(server.Port()); }
};

TEST_F(SystemdServicesTest, AreThoseOfTheManagerInOrderWithTheirStatesOrThereIsAReason) {
    const auto ask = [&](const std::string& address, std::chrono::milliseconds limit = 30s) {
        SystemdServices services(events, address, limit);
        std::optional<ServiceList> list;
        services.EnumServices([](const ServiceList&) { ADD_FAILURE() << "this question was taken back"; });
        std::unique_ptr<Services::Question> question =
            services.EnumServices([&](const ServiceList& answer) { list = answer, question.reset(); });
        EXPECT_FALSE(list) << "an answer within the question";
        EXPECT_TRUE(Wait([&] { return list.has_value(); }));
        for (const ServiceRecord& service : list->services)
            list->whyNot += service.name + std::to_string(service.state) + " ";
        return list->whyNot;
    };
    const ServiceBus empty,
        bus({"ssh loaded active", "cron loaded reloading", "slow loaded activating", "going loaded deactivating",
             "wanted not-found inactive", "/usr/lib/ssh enabled", "/etc/sshd alias", "/x/getty@.service ", "/x/no masked"});
    EXPECT_EQ(ask(bus.Address()), "cron4 going3 no1 slow2 ssh4 ");
    const std::string cannot = "The service manager can't be asked: ";
    const LoopbackServer silent([](LoopbackServer::Peer& peer) { peer.ReadToEnd(); });
    EXPECT_EQ(ask(BusOf(silent), 100ms), cannot + "it did not answer within 0 s");
    EXPECT_EQ(ask("unix:path=/no/such/bus"), cannot + "No such file or directory");
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", empty.Address().c_str(), 1);
    EXPECT_TRUE(Holds(ask(""), "org.freedesktop.systemd1")) << "the system bus is where the environment says";
    ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    const LoopbackServer broken([](LoopbackServer::Peer& peer) { peer.Send("REJECTED EXTERNAL\r\n"); });
    EXPECT_FALSE(Holds(ask(BusOf(broken)), "did not answer"));
}

TEST(LinuxPower, StartsTheCommandOfEachAction) {
    std::string started;
    const auto start = [&](const std::vector<std::string>& words) {
        for (const std::string& word : words)
            started += " " + word;
    };
    const LinuxPower::Machine machines[] = {{PowerSystem::ServiceManager, "", "c2", 1000},
                                            {PowerSystem::ServiceManager, "", "", 1000},
                                            {PowerSystem::ShutdownCommand, "/sbin/shutdown", "", 0},
                                            {PowerSystem::Unknown, "", "c2", 1000}};
    for (const LinuxPower::Machine& machine : machines)
        for (int action = 0; action <= static_cast<int>(PowerAction::Reboot); ++action)
            if (!IgnoreErrors([&] { LinuxPower(start, machine).Request(static_cast<PowerAction>(action)); })) started += " -";
    const std::string off = " systemctl poweroff systemctl poweroff --force systemctl reboot";
    EXPECT_EQ(started, " loginctl terminate-session c2 loginctl kill-session --signal=SIGKILL c2" + off +
                           " loginctl terminate-user 1000 loginctl kill-user --signal=SIGKILL 1000" + off +
                           " - - /sbin/shutdown -h -P now /sbin/shutdown -h -P now /sbin/shutdown -r now - - - - -");
}

TEST(Desktop, HasAnEntryForTheAutostartAndTheProxyOfTheEnvironment) {
    EXPECT_EQ(DesktopEntryText({.name = " K", .program = "/opt/k c", .home = R"(/a"b $H`x`100%\n)", .icon = "korvane"}),
              "[Desktop Entry]\nType=Application\nVersion=1.0\nName=\\sK\nComment=Watches servers and tells when they fail\n"
              R"(Exec=env "KORVANE_HOME=/a\\"b \\$H\\`x\\`100%%\\\\n" "/opt/k c")"
              "\nPath=/a\"b $H`x`100%\\\\n\nIcon=korvane\nTerminal=false\nStartupNotify=false\nCategories=Network;Monitor;\n"
              "X-GNOME-Autostart-enabled=true\nX-Korvane-Home=/a\"b $H`x`100%\\\\n\n");
    const TemporaryFolder folder;
    LinuxFiles files;
    DesktopAutostart autostart(files, [&](const std::string& name) { return name == "XDG_CONFIG_HOME" ? folder.Path() : ""; });
    const AutostartEntry own{.name = "a/b", .program = "/srv/korvanecore", .home = "/srv", .icon = ""};
    autostart.Add(own);
    EXPECT_TRUE(autostart.Exists(own.name));
    autostart.Remove(own.name);
    EXPECT_FALSE(autostart.Exists(own.name));
    files.Publish(folder.Path() + "/autostart/a_b.desktop", "[Desktop Entry]\nExec=other\n");
    EXPECT_THROW(autostart.Add(own), Error);
    EXPECT_THROW(autostart.Remove(own.name), Error);
    EXPECT_THROW(autostart.Add({.name = "c", .program = "/a\nHidden=true/korvanecore", .home = "/srv", .icon = ""}), Error);
    for (const auto& [value, server] :
         {std::pair{"", ""}, {" http://p.example:3128/", "p.example:3128"}, {"http://me:p@ss@p", "p:80"}})
        EXPECT_EQ(DesktopProxyServer([&, text = value](const std::string& name) { return name == "HTTP_PROXY" ? text : " "; }),
                  server);
}

}  // namespace korvane::machine_test
