// The four monitors over virtual time: from the samples of a machine to the mails that result, when each of them comes.
#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "resources/cpu_monitor.h"
#include "resources/disk_monitor.h"
#include "resources/memory_monitor.h"
#include "resources/monitors_world.h"
#include "resources/service_monitor.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using Texts = MonitorsWorld::Texts;
using Messages = std::vector<RecordingOperator::Message>;

constexpr const char* kLogFile = "/home/korvane/Logs/kvmonlog 2026 11-21.txt";

class MonitorsTest : public testing::Test, protected MonitorsWorld {};

TEST_F(MonitorsTest, CpuUsageFollowsTheCounters) {
    struct Step {
        std::optional<ProcessorTimes> now;
        int load;
    };
    const Step steps[] = {
        {ProcessorTimes{1000, 2000, 2}, 0},
        {ProcessorTimes{1100, 2200, 2}, 50},
        {ProcessorTimes{1100, 2400, 2}, 100},
        {ProcessorTimes{1299, 2600, 2}, 1},
        {std::nullopt, -1},
        {ProcessorTimes{1599, 3000, 2}, 25},
        {ProcessorTimes{1589, 3200, 2}, 100},
        {ProcessorTimes{1589, 3200, 2}, 100},
        {ProcessorTimes{2000, 3100, 2}, 100},
        {ProcessorTimes{200000, 640000, 64}, 63},
        {ProcessorTimes{206384, 646400, 64}, 0},
    };
    system.processors = ProcessorTimes{0, 1000, 2};
    clsCPUUsageNT reader(system);
    reader.Initialize();
    for (const Step& step : steps) {
        system.processors = step.now;
        EXPECT_EQ(reader.Query(), step.load) << (step.now ? step.now->total : 0);
    }
}

TEST_F(MonitorsTest, CpuMailsOnceTheMinutesHavePassed) {
    struct Case {
        std::string level, duration;
        std::vector<int> loads;  // one a minute, the last one for ever
        Texts times;             // of the mails of a quarter of an hour
    };
    const Case cases[] = {
        {"90", "5", {90}, {"5:31", "11:31"}},  // the 31st second begins a minute of the clock
        {"90", "10", {100}, {"10:31"}},
        {"90", "1", {89}, {}},
        {"90", "2", {0, 0, 0, 0, 0, 0, 90, 0}, {"6:07"}},  // one high minute after a long quiet time
        {"5", "5", {5}, {"5:31", "11:31"}},
        {"", "5", {100}, {}},
        {"90", "", {100}, {}},
        {"90", "0", {100}, {}},
        {"90", "soon", {100}, {}},
        {"much", "10", {0}, {"10:31"}},  // counts as 0
        {"99999", "10", {0}, {"10:31"}},
    };
    for (const Case& each : cases) {
        MonitorsWorld own;
        own.File("CPUMon.dat", "ALERT_AT=" + each.level + "\r\nEMAIL=me@example.com\r\nDURATION=" + each.duration + "\r\n");
        CpuMonitor monitor(own.Ports(), own.system);
        monitor.LoadData();
        std::size_t minute = 0;
        const auto work = own.world.timers.NewTimer("work");
        work->SetInterval(1s);
        work->OnTick([&] { own.system.Work(each.loads[std::min<std::size_t>(minute, each.loads.size() - 1)]); });
        work->SetEnabled(true);
        Texts times;
        for (; minute < 15; ++minute) {
            for (const std::string& time : own.TimesOf(60s))
                times.push_back(time);
        }
        EXPECT_EQ(times, each.times) << each.level << " " << each.duration;
    }
}

TEST_F(MonitorsTest, CpuShowsItsSamplesAndStopsAfterAFailure) {
    CpuMonitor monitor(Ports(), system);
    system.Work(50);
    world.RunFor(1min);
    EXPECT_EQ(monitor.LoadLabel(), "") << "nobody has opened the window";
    File("CPUMon.dat", "ALERT_AT=10\r\nDURATION=1\r\n");
    monitor.LoadData();
    world.RunFor(3s);
    EXPECT_EQ(monitor.LoadLabel(), "50%");
    system.Work(17);
    world.RunFor(3s);
    EXPECT_EQ(monitor.History().size(), 100u);
    EXPECT_EQ(monitor.History()[98], 50);
    EXPECT_EQ(monitor.History()[99], 17);
    const auto times = system.processors;
    system.processors.reset();
    world.RunFor(10min);
    EXPECT_EQ(monitor.LoadLabel(), ":(");
    EXPECT_EQ(person.messages, (Messages{{"Korvane", "Error while retrieving CPU usage"}}));
    system.processors = times;
    system.Work(99);
    monitor.cmdSave();
    EXPECT_EQ(MailsOf(4s),
              (Texts{"11:10 Your CPU usage has crossed the threshold limit of 10% for approx.1 minutes consistently"}));
    EXPECT_EQ(server.mails.at(0).recipients, Texts{"<first@example.com>"}) << "a blank address is that of the first entry";
    monitor.ckDisable = true;
    monitor.cmdSave();
    world.RunFor(1h);
    EXPECT_EQ(server.mails.size(), 1u);
    EXPECT_EQ(FileText("CPUMon.dat"), "ALERT_AT=10\r\nEMAIL=\r\nDISABLE=1\r\nDURATION=1\r\n");
    EXPECT_EQ(person.messages.back().text, "Settings updated");
}

TEST_F(MonitorsTest, MemoryMailsEveryEleventhLook) {
    system.memory = PhysicalMemory{1024u * 1048576, 922u * 1048576};
    auto monitor = std::make_unique<MemoryMonitor>(Ports(), world.events, system);
    EXPECT_EQ(monitor->Shows().lblTotal, "1024. MB");
    EXPECT_EQ(monitor->Shows().lblUsed, "102. MB");
    EXPECT_EQ(monitor->Shows().lblUsage, "Usage:90%");
    EXPECT_EQ(TimesOf(1h), Texts()) << "no level";
    File("MemoryMon.dat", "ALERT_AT=5\r\nEMAIL=me@example.com\r\nDISABLE=1\r\n");
    monitor->LoadData();
    EXPECT_EQ(MailsOf(12min), (Texts{"65:31 Your Memory usage has crossed the threshold limit of 5%",
                                     "71:01 Your Memory usage has crossed the threshold limit of 5%"}));
    monitor->cboAlert.clear();  // on the screen is enough
    world.RunFor(30s);
    monitor->cboAlert = "5";
    EXPECT_EQ(TimesOf(4min), Texts());
    system.memory.reset();
    world.RunFor(30s);
    EXPECT_EQ(monitor->Shows().lblTotal + monitor->Shows().lblUsage, ". MBUsage:90%") << "the share stays as it was";
    EXPECT_EQ(TimesOf(1h), Texts()) << "without figures the look ends early";
    system.memory = PhysicalMemory{3 * 1048576, 1048576 + 1048576 / 2};
    EXPECT_EQ(TimesOf(2min), Texts{"138:31"});
    EXPECT_EQ(monitor->Shows().lblUsed, "1.5 MB");
    database.Change("Servers", 1, {{"strEmailList1", ""}});
    for (int activations = 1; activations <= 2; ++activations) {
        monitor->LoadData();
        monitor->txtEmail.clear();
        world.RunFor(1h);
        EXPECT_EQ(Split(files.Text(kLogFile), '#').size(), activations + 1u) << "an alert without an address is logged once each";
    }
    monitor.reset();
    EXPECT_EQ(TimesOf(1h), Texts()) << "closed";
}

TEST_F(MonitorsTest, RecoveryStopsTheTimerAndSurvivesTheWindow) {
    system.memory = PhysicalMemory{4096, 2048};  // too little for any of the texts
    auto monitor = std::make_unique<MemoryMonitor>(Ports(), world.events, system);
    system.memory = PhysicalMemory{8192, 2048};
    monitor->Recover_Memory(1);
    EXPECT_EQ(monitor->Shows().lblUsage, "Usage:25%");
    world.After(0s, [&] { monitor.reset(); });
    monitor->Recover_Memory(3);
    EXPECT_EQ(monitor, nullptr);
}

TEST_F(MonitorsTest, DisksMailAfterElevenLowLooks) {
    constexpr double kGb = 1024.0 * 1024 * 1024;
    system.disks = {.total = 200 * kGb, .free = 19.99 * kGb};
    DiskMonitor monitor(Ports(), system);
    EXPECT_EQ(monitor.Shows().lblUsed, "180.01 Gb");
    EXPECT_EQ(monitor.Shows().lblShare, "Space Available:10.00%");
    EXPECT_EQ(TimesOf(20min), Texts());
    File("DiskMon.dat", "ALERT_AT=10\r\nEMAIL=me@example.com\r\n");
    monitor.LoadData();
    EXPECT_EQ(MailsOf(12min), (Texts{"25:31 Your Available Disk space is below the threshold limit of 10%",
                                     "31:01 Your Available Disk space is below the threshold limit of 10%"}));
    world.RunFor(3min);
    system.disks.free = 20 * kGb;  // at the level is not below it
    world.RunFor(30s);
    system.disks.free = 0;
    EXPECT_EQ(TimesOf(6min), Texts{"41:01"});
    system.disks = {};
    EXPECT_EQ(TimesOf(1h), Texts()) << "no disk";
    EXPECT_EQ(monitor.Shows().lblTotal, "0.00 Gb");
    system.disks = {.total = 1000, .free = 999};
    monitor.cboAlert = "most";
    EXPECT_EQ(TimesOf(1h), Texts());
    monitor.cboAlert = "100";
    EXPECT_EQ(TimesOf(6min), Texts{"167:01"});
    for (int change = 0; change < 11; ++change)
        monitor.Select(change % 2 == 0 ? DiskMonitor::Unit::rbMb : DiskMonitor::Unit::rbGb);
    monitor.Select(DiskMonitor::Unit::rbMb);
    EXPECT_EQ(TimesOf(1s), Texts{"167:31"}) << "a change of the unit counts as a look";
    EXPECT_EQ(monitor.Shows().lblTotal, "0.00 Mb");
    monitor.ckDisable = true;
    monitor.cmdSave();
    EXPECT_EQ(TimesOf(1h), Texts());
}

TEST_F(MonitorsTest, ServicesMailEveryMinuteWhileTheyDoNotRun) {
    for (const char* name : {"a", "b", "c", "d"})
        services.Set(name, ServiceRecord::kRunning);
    File("SvcMon.dat", "EMAIL=me@example.com\r\nRESTART=1\r\nSVC=b\r\nSVC=c\r\nSVC=gone\r\n");
    ServiceMonitor monitor(Ports(), services);
    EXPECT_EQ(TimesOf(10min), Texts()) << "nobody has opened the window";
    EXPECT_EQ(services.asked, 0);
    monitor.LoadData();
    world.RunFor(30s);
    struct Step {
        int state;         // of b
        std::string body;  // of the mail of this minute
        std::string status, previous;
    };
    const std::string stopped = "The Service: b has stopped.", restarted = "The Service: b has restarted after failure.";
    const Step steps[] = {
        {4, "", "Running", "Running"},        {1, stopped, "Stopped", "Stopped"}, {1, stopped, "Stopped", "Stopped"},
        {4, restarted, "Running", "Running"}, {4, "", "Running", "Running"},      {7, stopped, "Paused", "Paused"},
        {4, "", "Running", "Running"},        {1, stopped, "Stopped", "Stopped"}, {2, stopped, "Stopped", ""},  // starting
        {4, "", "Running", "Running"},
    };
    for (const Step& step : steps) {
        services.Set("b", step.state);
        Texts bodies = MailsOf(60s);
        for (std::string& body : bodies)
            body.erase(0, body.find(' ') + 1);
        EXPECT_EQ(bodies, step.body.empty() ? Texts() : Texts{step.body});
        EXPECT_EQ(monitor.Rows().at(1), (ServiceMonitor::Row{"b", true, step.status, step.previous}));
    }
    monitor.ckRestart = false;
    services.Set("d", ServiceRecord::kStopped);  // not watched
    services.Set("c", ServiceRecord::kStopped);
    EXPECT_EQ(TimesOf(60s).size(), 1u);
    services.Set("c", ServiceRecord::kRunning);
    services.Remove("b");
    EXPECT_EQ(TimesOf(60s).size(), 0u);
    EXPECT_EQ(monitor.Rows().at(2), (ServiceMonitor::Row{"c", true, "Running", "Running"}));
    EXPECT_EQ(monitor.Rows().at(1), (ServiceMonitor::Row{"b", true, "Running", "Running"})) << "the row of what is gone stays";
}

TEST_F(MonitorsTest, MarksOfServicesAreFlippedSavedAndKept) {
    for (const char* name : {"a", "b", "c"})
        services.Set(name, ServiceRecord::kRunning);
    File("SvcMon.dat", "SVC=c\r\nSVC=gone\r\n");
    ServiceMonitor monitor(Ports(), services);
    monitor.LoadData();
    world.RunFor(1s);
    for (const std::size_t row : {0u, 1u, 2u, 3u, 1u, 1u})
        monitor.ClickMonitor(row);
    monitor.ckRestart = true;
    monitor.cmdSave();
    EXPECT_EQ(FileText("SvcMon.dat"), "EMAIL=\r\nDISABLE=0\r\nRESTART=1\r\nSVC=b\r\n");

    services.whyNot = "There is no service manager";
    services.answersAfter = 5s;
    monitor.LoadData();
    monitor.cmdSave();  // before there is an answer, and
    world.RunFor(10s);
    monitor.cmdSave();  // after it
    EXPECT_EQ(monitor.WhyNoServices(), "There is no service manager");
    EXPECT_TRUE(monitor.Rows().empty());
    EXPECT_EQ(FileText("SvcMon.dat"), "EMAIL=\r\nDISABLE=0\r\nRESTART=1\r\nSVC=b\r\n") << "what is watched is not forgotten";
    services.whyNot.clear();
    services.Set("b", ServiceRecord::kStopped);
    EXPECT_EQ(MailsOf(2min).size(), 2u) << "a manager that comes back is watched again";
    EXPECT_EQ(server.mails.back().from, "<first@example.com>");
}

TEST_F(MonitorsTest, TestMails) {
    struct Case {
        std::unique_ptr<AlertMonitor> monitor;
        std::string body, sent, subject;
        bool refusalDisables;
    };
    Case cases[] = {
        {std::make_unique<CpuMonitor>(Ports(), system),
         "Your CPU usage has crossed the threshold limit of % for approx. 5 minutes consistently",
         "Test email for CPU Monitor has been sent", "Kv CPU Monitor Alert", false},
        {std::make_unique<MemoryMonitor>(Ports(), world.events, system),
         "Your Memory usage has crossed the threshold limit of % for approx. 5 minutes consistently",
         "Test email for Memory Monitor has been sent", "Kv Memory Monitor Alert", true},
        {std::make_unique<DiskMonitor>(Ports(), system), "Your Available Disk space is below the threshold limit of %",
         "Test email for Disk Monitor has been sent", "Kv Disk Monitor Alert", false},
        {std::make_unique<ServiceMonitor>(Ports(), services), "The Service: TestSvc has stopped.",
         "Test email for Services Monitor has been sent", "Kv Service Monitor Alert", true},
    };
    for (Case& each : cases) {
        SCOPED_TRACE(each.subject);
        AlertMonitor& monitor = *each.monitor;
        int focused = 0;
        monitor.OnFocusEmail([&] { ++focused; });
        person.Forget();
        server.mails.clear();
        for (const char* address : {"", "me@example", "example.com"}) {
            monitor.txtEmail = address;
            monitor.cmdTest();
            EXPECT_EQ(monitor.TestEnabled(), !each.refusalDisables);
            monitor.Shown();
        }
        EXPECT_EQ(focused, 3);
        EXPECT_EQ(person.messages, Messages(3, {"Korvane", "The email id entered is not a valid email id"}));
        monitor.txtEmail = "me@example.com";
        settings.setKvSettingsColValue("Server", "");
        monitor.cmdTest();
        EXPECT_EQ(person.messages.back().text, "No SMTP server has been specified to send email");
        EXPECT_TRUE(monitor.TestEnabled());
        for (const char* host : {"mail.example", "nobody.example"}) {  // the second refuses, and nobody is told
            settings.setKvSettingsColValue("Server", host);
            monitor.cmdTest();
            EXPECT_FALSE(monitor.TestEnabled());
            world.RunFor(10min);
            EXPECT_EQ(person.messages.back(), (RecordingOperator::Message{"Korvane", each.sent}));
            EXPECT_TRUE(monitor.TestEnabled());
        }
        ASSERT_EQ(server.mails.size(), 1u);
        EXPECT_TRUE(Holds(server.mails[0].text, each.body)) << server.mails[0].text;
        EXPECT_TRUE(Holds(server.mails[0].text, "Subject: " + each.subject + " "));
        EXPECT_EQ(server.mails[0].from + server.mails[0].recipients.at(0), "<me@example.com><me@example.com>");
    }
}

TEST_F(MonitorsTest, ASlowMailHoldsUpNeitherSamplesNorTheEndOfItsMonitor) {
    Smtp().Silent();
    auto monitor = std::make_unique<CpuMonitor>(Ports(), system);
    monitor->LoadData();
    monitor->txtEmail = "me@example.com";
    monitor->cmdTest();
    int changes = 0;
    monitor->OnChanged([&] { ++changes; });
    world.After(10s, [&] { monitor.reset(); });
    world.RunFor(1h);
    EXPECT_EQ(changes, 3);
    EXPECT_TRUE(person.SaidPart("Email failed because"));
    EXPECT_EQ(person.messages, Messages());
}

TEST_F(MonitorsTest, AlertsWaitForAMailThatIsUnderWay) {
    Notification other{.strTo1 = "you@example.com", .strTo2 = "", .strFrom = "", .strSubject = "s", .strBody = "first"};
    Notification alert{.strTo1 = "me@example.com", .strTo2 = "", .strFrom = "", .strSubject = "s", .strBody = "second"};
    world.After(0s, [&] {
        alerts.Alert(alert);
        alerts.Alert(alert);
    });
    dispatcher.SendThrough(MailServer::Primary, other);  // pumps
    EXPECT_EQ(server.mails.size(), 1u);
    EXPECT_EQ(MailsOf(5s).size(), 2u) << "each once";

    bool checking = true;
    AlertMails patient(dispatcher, world.timers, log, [&] { return checking; });
    patient.Alert(alert);
    EXPECT_EQ(MailsOf(10s).size(), 0u);
    checking = false;
    EXPECT_EQ(MailsOf(1s).size(), 1u);
    checking = true;
    patient.Alert(alert);
    EXPECT_EQ(MailsOf(61s).size(), 1u) << "but not for ever";

    settings.setKvSettingsColValue("Server", "nobody.example");
    settings.setKvSettingsColValue("SMTPUser1", "user");
    alerts.Alert(alert);
    world.RunFor(10min);
    EXPECT_TRUE(Holds(files.Text(kLogFile), "#\tAlertMails: s to me@example.com failed. "));
}

}  // namespace
}  // namespace korvane
