// The four monitors over virtual time: from the samples of a machine to the mails that result, and their settings files.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>

#include "resources/cpu_monitor.h"
#include "resources/disk_monitor.h"
#include "resources/memory_monitor.h"
#include "resources/service_monitor.h"
#include "support/world.h"

namespace korvane::monitors_test {

using namespace std::chrono_literals;

struct MonitorsTest : testing::Test {
    MonitorsTest() {
        world.Start();
        world.rows.AddRow("Servers", {{"ID", 1}, {"strEmailList1", "first@example.com"}});
    }
    MonitorPorts Ports() {
        const Desk desk = world.run.TheDesk();
        return {desk.dir,   desk.clock,      desk.timers,     desk.store, desk.person,
                desk.files, desk.collection, desk.alertMails, desk.log,   desk.safeguards};
    }
    /// By the first letter of what is watched.
    std::unique_ptr<AlertMonitor> Make(char watched, ScriptedSystemInfo& figures) {
        if (watched == 'C') return std::make_unique<CpuMonitor>(Ports(), figures);
        if (watched == 'M') return std::make_unique<MemoryMonitor>(Ports(), world.world.events, figures);
        if (watched == 'D') return std::make_unique<DiskMonitor>(Ports(), figures);
        return std::make_unique<ServiceMonitor>(Ports(), world.services);
    }
    std::string Said() const { return world.person.messages.empty() ? "" : world.person.messages.back().text; }

    World world{{.start = DateTime::Of(2026, 11, 21, 15, 0, 30), .settings = "Begin=9999"}};
    ScriptedSystemInfo& system = world.systemInfo;
};

TEST_F(MonitorsTest, AlertAtTheirTimes) {
    struct Case {
        char watched;
        std::string settings;
        std::vector<int> figures;   // one a minute, the last one for ever: load, free percent (-1: none), state of the service
        std::vector<int> expected;  // the seconds of the mails of a quarter of an hour; below 0: that it runs again
        ScriptedSystemInfo system = {};
        std::vector<int> mails = {};
    };
    Case cases[] = {
        {'C', "ALERT_AT=90\nDURATION=5", {90}, {330, 690}},  // the 31st second begins a minute of the clock
        {'C', "ALERT_AT=90\nDURATION=1", {89}, {}},
        {'C', "ALERT_AT=90\nDURATION=2", {0, 0, 0, 0, 0, 0, 90, 0}, {363}},  // one high minute after a long quiet time
        {'C', "ALERT_AT=90\nDURATION=soon", {100}, {}},
        {'C', "ALERT_AT=much\nDURATION=10", {0}, {630}},  // counts as 0
        {'M', "ALERT_AT=5", {90, -1, 90}, {390, 720}},    // every eleventh look, whatever is free
        {'M', "", {0}, {}},
        {'D', "ALERT_AT=10", {9}, {330, 660}},
        {'D', "ALERT_AT=10", {9, 9, 9, 10, 9}, {570}},  // eleven in a row; at the level is not below it
        {'D', "ALERT_AT=10", {-1}, {}},
        {'S', "RESTART=1\nSVC=b", {4, 1, 1, 4, 4, 7, 4, 1, 2, 4}, {120, 180, -240, 360, 480, 540}},
    };
    std::vector<std::unique_ptr<AlertMonitor>> monitors;
    world.services.Set("b", ServiceRecord::kRunning);
    for (Case& each : cases) {
        for (const char* name : {"CPUMon.dat", "MemoryMon.dat", "DiskMon.dat", "SvcMon.dat"})
            world.Write(name, each.settings + "\nEMAIL=" + std::to_string(monitors.size()));
        monitors.push_back(Make(each.watched, each.system));
        monitors.back()->LoadData();
    }
    for (std::size_t second = 0; second < 900; ++second) {
        for (Case& each : cases) {
            const int figure = each.figures[std::min(second / 60, each.figures.size() - 1)];
            each.system.Work(std::max(figure, 0));
            each.system.memory = {.total = figure < 0 ? 0u : 100u, .available = 100};
            each.system.disks = {.total = figure < 0 ? 0.0 : 100.0, .free = 1.0 * figure};
            if (each.watched == 'S') world.services.Set("b", figure);
        }
        world.RunFor(1s);
        for (const auto& mail : std::exchange(world.mail.mails, {})) {
            const int sign = Holds(mail.text, "restarted after failure") ? -1 : 1;
            cases[std::stoul(mail.from.substr(1))].mails.push_back(sign * static_cast<int>(second));
        }
    }
    for (const Case& each : cases)
        EXPECT_EQ(each.mails, each.expected) << each.watched << each.settings;
}

TEST(MachineWatchTest, WatchesFromTheStartByTheFilesAndAlertsOnce) {
    World world({.settings = "Begin=9999\nWatchMachine=True"});
    world.systemInfo.memory = {.total = 100u, .available = 15};
    world.systemInfo.disks = {.total = 100, .free = 9};
    world.services.Set("b", ServiceRecord::kStopped);
    world.Write("MemoryMon.dat", "ALERT_AT=85\nEMAIL=memory@x.y");
    world.Write("DiskMon.dat", "ALERT_AT=10\nEMAIL=disks@x.y\nDISABLE=1");
    world.Write("SvcMon.dat", "SVC=b\nSVC=gone\nEMAIL=services@x.y");
    world.Start();
    world.RunFor(10s);  // so that their alerts would not be one in the queue
    const Desk desk = world.run.TheDesk();
    ServiceMonitor window({desk.dir, desk.clock, desk.timers, desk.store, desk.person, desk.files, desk.collection,
                           desk.alertMails, desk.log, desk.safeguards},
                          world.services);
    window.LoadData();
    const auto mailsTo = [&](const std::string& address, std::chrono::minutes time) {
        world.mail.mails.clear();
        world.RunFor(time);
        return std::count_if(world.mail.mails.begin(), world.mail.mails.end(),
                             [&](auto& mail) { return Holds(mail.from, address); });
    };
    EXPECT_EQ(mailsTo("services@", 6min), 6) << "one a minute, the window's monitor sends none";
    world.services.whyNot = "no bus";
    EXPECT_EQ(mailsTo("services@", 12min), 1);
    EXPECT_TRUE(world.Logged("Alert: no bus") && world.Logged("no service 'gone'"));
    world.services.whyNot = "";
    EXPECT_EQ(mailsTo("memory@", 6min), 1);
    world.systemInfo.memory = {.total = 100u, .available = 16};
    EXPECT_EQ(mailsTo("memory@", 12min), 0) << "below the level";
    world.Write("MemoryMon.dat", "ALERT_AT=80\nEMAIL=memory@x.y\nDISABLE=1");
    EXPECT_EQ(mailsTo("memory@", 12min) + mailsTo("disks@", 12min), 0) << "the marks";
    world.Write("DiskMon.dat", "ALERT_AT=10\nEMAIL=disks@x.y");
    EXPECT_EQ(mailsTo("disks@", 7min), 1);
    world.Set(kWatchMachine, "False");
    world.run.TheDesk().followSafeguards();
    EXPECT_EQ(mailsTo("disks@", 12min), 0);
    EXPECT_EQ(mailsTo("services@", 1min), 1) << "by the window again";
}

TEST_F(MonitorsTest, FiguresOfProcessorsMemoryAndDisks) {
    // Idle and whole time, processors, and the load that follows.
    std::istringstream steps(
        "1000 2000 2 0%  1100 2200 2 50%  1100 2400 2 100%  1299 2600 2 1%  1599 3000 2 25%  1589 3200 2 100%  1589 3200 2 100%  "
        "2000 3100 2 100%  200000 640000 64 63%  206384 646400 64 0%");
    system.processors = {.idle = 0, .total = 1000, .processors = 2};
    CpuMonitor cpu(Ports(), system);
    cpu.LoadData();
    std::string label;
    for (ProcessorTimes now; steps >> now.idle >> now.total >> now.processors >> label;) {
        system.processors = now;
        world.RunFor(3s);
        EXPECT_EQ(cpu.LoadLabel(), label) << now.total;
    }
    EXPECT_EQ(cpu.History()[98] * 1000 + cpu.History()[99], 63000);
    system.processors.reset();
    world.RunFor(1min);
    EXPECT_EQ(cpu.LoadLabel() + Said(), ":(Error while retrieving CPU usage");
    EXPECT_EQ(world.person.messages.size(), 1u);

    system.memory = PhysicalMemory{1024u * 1048576, 922u * 1048576};
    auto memory = std::make_unique<MemoryMonitor>(Ports(), world.world.events, system);
    EXPECT_EQ(memory->Shows().lblTotal + memory->Shows().lblUsed + memory->Shows().lblUsage, "1024. MB102. MBUsage:90%");
    system.memory.reset();
    world.RunFor(30s);
    EXPECT_EQ(memory->Shows().lblTotal + memory->Shows().lblUsage, ". MBUsage:90%") << "the share stays as it was";
    world.world.After(0s, [&] { memory.reset(); });
    memory->Recover_Memory(3);
    EXPECT_EQ(memory, nullptr);

    system.disks = {.total = 200.0 * (1 << 30), .free = 19.99 * (1 << 30)};
    DiskMonitor disks(Ports(), system);
    EXPECT_EQ(disks.Shows().lblUsed + disks.Shows().lblShare, "180.01 GbSpace Available:10.00%");
    disks.Select(DiskMonitor::Unit::rbMb);
    EXPECT_EQ(disks.Shows().lblTotal, "204800.00 Mb");
}

TEST_F(MonitorsTest, AManagerThatComesBackIsWatchedAgainForWhatIsMarked) {
    ScriptedServices& services = world.services;
    world.Write("SvcMon.dat", "SVC=b\r\nSVC=gone\r\n");
    services.whyNot = "There is no service manager";
    services.answersAfter = 5s;
    ServiceMonitor monitor(Ports(), services);
    monitor.LoadData();
    world.RunFor(10s);
    EXPECT_TRUE(monitor.WhyNoServices() == services.whyNot && monitor.Rows().empty());
    services.whyNot.clear();
    for (const int state : {ServiceRecord::kRunning, ServiceRecord::kStopped, ServiceRecord::kRunning}) {
        services.Set("a", state);
        services.Set("b", state);
        world.RunFor(2min);
    }
    EXPECT_EQ(world.mail.mails.size(), 2u);
    EXPECT_EQ(world.mail.mails[0].from + world.mail.mails[0].recipients.at(0), "<first@example.com><first@example.com>");
    EXPECT_EQ(monitor.Rows().at(1), (ServiceMonitor::Row{"b", true, "Running", "Running"}));
}

TEST_F(MonitorsTest, TestMails) {
    const std::string threshold = "usage has crossed the threshold limit of % for approx. 5 minutes consistently";
    const std::string cases[][3] = {{"CPU", "", "Your CPU " + threshold},
                                    {"Disk", "me@example", "Your Available Disk space is below the threshold limit of %"},
                                    {"Memory", "", "Your Memory " + threshold},
                                    {"Service", "example.com", "The Service: TestSvc has stopped."}};
    for (const auto& [name, badAddress, body] : cases) {
        const auto monitor = Make(name[0], system);
        monitor->txtEmail = badAddress;
        monitor->cmdTest();
        EXPECT_EQ(Said(), "The email id entered is not a valid email id");
        EXPECT_EQ(monitor->TestEnabled(), name < "M");
        monitor->Shown();
        monitor->txtEmail = "me@example.com";
        for (const std::string server : {"", "mail.example", "nobody.example"}) {  // the last refuses, and nobody is told
            world.Set("Server", server);
            monitor->cmdTest();
            EXPECT_EQ(monitor->TestEnabled(), server.empty());
            world.RunFor(10min);
            EXPECT_TRUE(Holds(Said(), server.empty() ? "No SMTP server has been specified" : "Monitor has been sent"));
        }
        const auto mail = std::exchange(world.mail.mails, {}).at(0);
        EXPECT_TRUE(Holds(mail.text, body) && Holds(mail.text, "Subject: Kv " + name + " Monitor Alert ")) << mail.text;
    }
}

TEST_F(MonitorsTest, MailsHoldNobodyUpAndAFailureIsLogged) {
    const Desk desk = world.run.TheDesk();
    const Notification alert{"me@example.com", "", "", "s", "alert"};
    bool checking = true;
    AlertMails mails(desk.mail, desk.timers, desk.log, [&] { return checking; });
    mails.Alert(alert);
    mails.Alert(alert);
    world.RunFor(10s);
    EXPECT_TRUE(world.mail.mails.empty()) << "the check is not held up,";
    world.RunFor(51s);
    EXPECT_EQ(world.mail.mails.size(), 1u) << "but not for ever, and each alert is sent once";
    checking = false;
    world.world.After(0s, [&] { mails.Alert(alert); });
    desk.mail.SendThrough(MailServer::Primary, alert);  // pumps
    world.RunFor(5s);
    EXPECT_EQ(world.mail.mails.size(), 3u);

    world.net.Host("silent.example").Port(25).Silent();
    world.Set("Server", "silent.example");
    auto monitor = Make('C', system);
    monitor->txtEmail = "me@example.com";
    monitor->cmdTest();
    world.world.After(10s, [&] { monitor.reset(); });
    mails.Alert(alert);
    world.rows.Remove("Servers", 1);
    MemoryMonitor memory(Ports(), world.world.events, system);
    memory.cboAlert = "5";
    world.RunFor(1h);
    EXPECT_TRUE(world.person.messages.empty() && world.Logged("# AlertMails: s to me@example.com failed. "));
    const auto log = world.LogTexts();
    EXPECT_EQ(std::count(log.begin(), log.end(), "# Kv Memory Monitor Alert: there is no address to send it to."), 1);
}

TEST_F(MonitorsTest, SettingsFilesAreReadLineByLineAndWrittenInOrder) {
    const std::string cases[][2] = {
        {"DURATION=-1e9\r\nDISABLE=yes\nEMAIL=me\rALERT_AT=many",
         "ALERT_AT=many\r\nEMAIL=me\r\nDISABLE=yes\r\nDURATION=-1e9\r\n"},
        {"x=y EMAIL=z\r\nEMAIL=ALERT_AT=5\r\n", "ALERT_AT=ALERT_AT=5\r\nEMAIL=y EMAIL=z\r\nDISABLE=\r\nDURATION=\r\n"},
        {"EMAIL=old\r\nxEMAIL= \"\xE9\", b \r\nemail=no\r\nSVC=no\r\nnothing\r\n=\r\n\r\n",
         "ALERT_AT=\r\nEMAIL= \"\xC3\xA9\", b \r\nDISABLE=\r\nDURATION=\r\n"}};
    for (const auto& [contents, written] : cases) {
        world.Write("CPUMon.dat", contents);
        WriteAlertSettings(world.files, world.home, kCpuMonitor, ReadAlertSettings(world.files, world.home, kCpuMonitor));
        EXPECT_EQ(world.Text("CPUMon.dat"), written);
    }
    const std::string lines = "DISABLE=\r\nRESTART=1\r\nSVC=b\r\nSVC=a,\"b\"\r\nSVC=\r\n";
    world.Write("SvcMon.dat", lines + "mySVC=c=d");
    AlertSettings services = ReadAlertSettings(world.files, world.home, kServiceMonitor);
    services.email = "me\r\nSVC=slipped in";
    world.files.faults.Add({.nth = 2, .forever = true});
    for (int i = 0; i < 2; ++i)
        WriteAlertSettings(world.files, world.home, kServiceMonitor, services);
    EXPECT_EQ(ReadAlertSettings(world.files, world.home, kServiceMonitor).email, "") << "what cannot be read is empty";
    EXPECT_EQ(world.Text("SvcMon.dat"), "EMAIL=me SVC=slipped in\r\n" + lines + "SVC=c=d\r\n") << "what fails changes nothing";
}

}  // namespace korvane::monitors_test
