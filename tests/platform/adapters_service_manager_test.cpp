// The service manager that is systemd: its protocol on real sockets, the unit against its own checks, and its commands played.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>

#include "base/error.h"
#include "base/text.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/linux_signals.h"
#include "platform/linux/systemd_manager.h"
#include "platform/qt/qt_events.h"
#include "platform/wait.h"
#include "support/qt_application.h"
#include "support/temporary_folder.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using Variables = std::map<std::string, std::string>;

Environment Of(Variables variables) {
    return [variables](const std::string& name) { return variables.contains(name) ? variables.at(name) : ""; };
}

/// The manager's end of the protocol.
class Listener {
public:
    explicit Listener(const std::string& address) : socket_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
        sockaddr_un name{};
        name.sun_family = AF_UNIX;
        std::memcpy(name.sun_path, address.data(), address.size());
        if (address[0] == '@') name.sun_path[0] = '\0';
        const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + address.size());
        EXPECT_EQ(::bind(socket_.Number(), reinterpret_cast<const sockaddr*>(&name), size), 0);
    }
    std::string Next() const {
        char text[200];
        const ssize_t size = ::recv(socket_.Number(), text, sizeof text, 0);
        return size < 0 ? "nothing" : std::string(text, static_cast<std::size_t>(size));
    }

private:
    Descriptor socket_;
};

TEST(SystemdGreetingTest, CountsWhatSpeaksToThisProcess) {
    struct Case {
        Variables variables;
        bool started;
        std::optional<std::chrono::milliseconds> interval;
    };
    const Case cases[] = {
        {{}, false, {}},
        // A desktop that the manager started, and a program of a service: they bear its marks, but nobody listens to them.
        {{{"INVOCATION_ID", "a1"}, {"SYSTEMD_EXEC_PID", "7"}}, false, {}},
        {{{"NOTIFY_SOCKET", "/n"}, {"INVOCATION_ID", "a1"}, {"SYSTEMD_EXEC_PID", "7"}, {"WATCHDOG_USEC", "9000"}}, true, 4ms},
        {{{"NOTIFY_SOCKET", "/n"}, {"SYSTEMD_EXEC_PID", "70"}, {"WATCHDOG_USEC", "9000"}}, false, {}},
        {{{"NOTIFY_SOCKET", "/n"}}, true, {}},
        {{{"NOTIFY_SOCKET", "/n"}, {"WATCHDOG_USEC", "300000000"}, {"WATCHDOG_PID", "7"}}, true, 150s},
        {{{"NOTIFY_SOCKET", "/n"}, {"WATCHDOG_USEC", "9000"}, {"WATCHDOG_PID", "8"}}, true, {}},
        {{{"NOTIFY_SOCKET", "/n"}, {"WATCHDOG_USEC", "soon"}}, true, {}},
    };
    int number = 0;
    for (const Case& row : cases) {
        const SystemdGreeting greeting(Of(row.variables), 7);
        EXPECT_EQ(!greeting.NotifyAddress().empty(), row.started) << number;
        EXPECT_EQ(greeting.AliveInterval(), row.interval) << number;
        ++number;
    }
}

class SystemdManagerTest : public testing::Test {
protected:
    SystemdManagerTest() {
        place.unitFolder = folder.Path() + "/own";
        place.otherFolders = {folder.Path() + "/system"};
        place.signsOfManager = {folder.Path()};
    }

    /// Orders are answered with success unless the test has laid something down; enabling and disabling do what they do.
    ProgramResult Play(const std::vector<std::string>& words) {
        std::string order;
        for (const std::string& word : words)
            order += (order.empty() ? "" : " ") + word;
        orders.push_back(order);
        for (const auto& [part, result] : answers) {
            if (Holds(order, part)) return result;
        }
        const fs::path wants = fs::path(place.unitFolder) / "default.target.wants" / words.back();
        if (Holds(order, " enable ")) {
            fs::create_directories(wants.parent_path());
            fs::create_symlink(place.unitFolder + "/" + words.back(), wants);
        }
        if (Holds(order, " disable ")) fs::remove(wants);
        return {};
    }

    SystemdManager Manager(const Variables& greeting = {}) {
        return {{files, [this](const auto& words, auto) { return Play(words); }}, place, {Of(greeting), 7}};
    }
    std::string Unit() const { return ReadAll(place.unitFolder + "/Korvane.service"); }
    void WriteUnit(const std::string& where, const std::string& text) const {
        fs::create_directories(where);
        std::ofstream(where + "/Korvane.service") << text;
    }

    TemporaryFolder folder;
    LinuxFiles files;
    SystemdPlace place;
    std::vector<std::string> orders;
    std::map<std::string, ProgramResult> answers;
    const ServiceProgram program{.program = "/opt/korvane/korvanecore", .home = "/srv/monitor"};
};

TEST_F(SystemdManagerTest, TellsTheManagerOnBothKindsOfSockets) {
    for (const std::string& address : {folder.Path() + "/notify", "@korvane-test-" + std::to_string(::getpid())}) {
        const Listener listener(address);
        SystemdManager manager = Manager({{"NOTIFY_SOCKET", address}});
        manager.Ready();
        manager.Alive();
        manager.Status("Service Paused.\r\nNow");
        manager.Stopping();
        EXPECT_EQ(listener.Next(), "READY=1");
        EXPECT_EQ(listener.Next(), "WATCHDOG=1");
        EXPECT_EQ(listener.Next(), "STATUS=Service Paused.  Now");
        EXPECT_EQ(listener.Next(), "STOPPING=1");
        EXPECT_EQ(listener.Next(), "nothing");
    }
    EXPECT_FALSE(NotifySocket("").Send("READY=1"));
    EXPECT_FALSE(NotifySocket(folder.Path() + "/nobody").Send("READY=1"));
    EXPECT_FALSE(NotifySocket("/" + std::string(200, 'x')).Send("READY=1"));
}

TEST_F(SystemdManagerTest, RemovingUndoesTheInstallation) {
    SystemdManager manager = Manager();
    EXPECT_TRUE(manager.IsPresent());
    EXPECT_FALSE(manager.IsInstalled("Korvane"));
    EXPECT_TRUE(manager.Install("Korvane", program).done);
    EXPECT_TRUE(manager.IsInstalled("Korvane"));
    EXPECT_EQ(fs::status(place.unitFolder + "/Korvane.service").permissions(), fs::perms(0644));
    EXPECT_TRUE(manager.Start("Korvane").done);
    EXPECT_EQ(orders, (std::vector<std::string>{"systemctl --user daemon-reload", "systemctl --user enable Korvane.service",
                                                "systemctl --user start --no-block Korvane.service"}));
    orders.clear();
    EXPECT_TRUE(manager.Uninstall("Korvane", program.home).done);
    EXPECT_EQ(orders, (std::vector<std::string>{
                          "systemctl --user disable Korvane.service", "systemctl --user stop --no-block Korvane.service",
                          "systemctl --user daemon-reload", "systemctl --user reset-failed Korvane.service"}));
    EXPECT_FALSE(fs::exists(place.unitFolder + "/Korvane.service"));
    EXPECT_FALSE(manager.Uninstall("Korvane", program.home).done);
}

TEST_F(SystemdManagerTest, ARunningServiceThatRemovesItselfGoesOn) {
    SystemdManager manager = Manager({{"NOTIFY_SOCKET", "/n"}});
    manager.Install("Korvane", program);
    orders.clear();
    EXPECT_TRUE(manager.Uninstall("Korvane", program.home).done);
    for (const std::string& order : orders)
        EXPECT_FALSE(Holds(order, "stop")) << order;
}

TEST_F(SystemdManagerTest, LingeringIsAskedForAndTakenBack) {
    place.lingerFile = folder.Path() + "/linger";
    answers["loginctl"] = {.status = 1, .output = "Access denied\n"};
    const ManagerAnswer refused = Manager().Install("Korvane", program);
    EXPECT_TRUE(refused.done);
    EXPECT_TRUE(refused.words.starts_with("The service starts when you log on and not before: Access denied ")) << refused.words;
    EXPECT_TRUE(Manager().Uninstall("Korvane", program.home).done);
    EXPECT_FALSE(Holds(orders.back(), "linger"));

    answers.clear();
    const ManagerAnswer granted = Manager().Install("Korvane", program);
    EXPECT_TRUE(granted.done && granted.words.empty()) << granted.words;
    EXPECT_TRUE(Manager().Uninstall("Korvane", program.home).done);
    EXPECT_EQ(orders.back(), "loginctl --no-ask-password disable-linger");

    std::ofstream(place.lingerFile) << "";  // somebody wants it anyway
    orders.clear();
    Manager().Install("Korvane", program);
    Manager().Uninstall("Korvane", program.home);
    for (const std::string& order : orders)
        EXPECT_FALSE(Holds(order, "loginctl")) << order;
}

TEST_F(SystemdManagerTest, AnUpdateChangesItsOwnUnitOnly) {
    place.scope = UnitScope::System;
    place.lingerFile = folder.Path() + "/linger";
    ServiceProgram changed = program;
    changed.folders = {"/var/www/reports"};
    EXPECT_TRUE(Manager().Update("Korvane", changed).done);
    EXPECT_EQ(Unit(), "");
    fs::create_directories(place.unitFolder + "/multi-user.target.wants");
    std::ofstream(place.unitFolder + "/multi-user.target.wants/Korvane.service") << "";
    WriteUnit(place.unitFolder, WithLingerMark(UnitText("Korvane", program, UnitScope::System, "root")));
    changed.home = "/other";
    EXPECT_TRUE(Manager().Update("Korvane", changed).done);
    EXPECT_TRUE(orders.empty());
    changed.home = program.home;
    EXPECT_TRUE(Manager().Update("Korvane", changed).done);
    EXPECT_TRUE(Manager().Update("Korvane", changed).done);
    EXPECT_EQ(orders, std::vector<std::string>{"systemctl daemon-reload"});
    EXPECT_TRUE(Holds(Unit(), "\nReadWritePaths=\"/srv/monitor\" \"-/var/www/reports\"\n"));
    EXPECT_TRUE(MarksOf(Unit()).linger);
}

TEST_F(SystemdManagerTest, LeavesServicesOfOthersAlone) {
    const std::string foreign = "[Service]\nExecStart=/bin/true\n";
    const std::string otherHome = UnitText("Korvane", {.program = "/k", .home = "/other"}, UnitScope::User, "");
    struct Case {
        std::string where;
        std::string text;
        std::string words;
    };
    const Case cases[] = {
        {place.unitFolder, foreign, "There is another service of this name, which is not Korvane's: "},
        {place.unitFolder, foreign + "[Install]\nHome=/srv/monitor\n", "There is another service of this name, which is not"},
        {place.unitFolder, otherHome, "This is the service of the Korvane in /other: "},
        {place.otherFolders[0], foreign, "There is another service of this name: "},
    };
    for (const Case& row : cases) {
        WriteUnit(row.where, row.text);
        const ManagerAnswer install = Manager().Install("Korvane", program);
        EXPECT_FALSE(install.done || install.ofManager);
        EXPECT_TRUE(install.words.starts_with(row.words)) << install.words;
        EXPECT_FALSE(Manager().Uninstall("Korvane", program.home).done);
        EXPECT_FALSE(Manager().IsInstalled("Korvane"));
        EXPECT_EQ(ReadAll(row.where + "/Korvane.service"), row.text);
        fs::remove(row.where + "/Korvane.service");
    }
    fs::create_directories(place.unitFolder);
    fs::create_symlink("/dev/null", place.unitFolder + "/Korvane.service");  // masked
    EXPECT_FALSE(Manager().Install("Korvane", program).done);
    EXPECT_EQ(fs::read_symlink(place.unitFolder + "/Korvane.service"), "/dev/null");
    EXPECT_TRUE(orders.empty());
}

TEST_F(SystemdManagerTest, ARefusalLeavesEverythingAsItWas) {
    for (const std::string order : {"daemon-reload", " enable "}) {
        answers = {{order, {.status = 1, .output = "Failed: no bus\n"}}};
        const ManagerAnswer answer = Manager().Install("Korvane", program);
        EXPECT_FALSE(answer.done);
        EXPECT_EQ(answer.words, "Failed: no bus");
        EXPECT_TRUE(answer.ofManager);
        EXPECT_EQ(orders[orders.size() - 2], "systemctl --user disable Korvane.service");
        EXPECT_FALSE(fs::exists(place.unitFolder + "/Korvane.service"));
    }
    answers.clear();
    Manager().Install("Korvane", program);
    EXPECT_FALSE(Manager().Install("Korvane", program).done) << "it is installed already";
    const std::string unit = Unit();
    answers = {{" disable ", {.status = 4, .output = ""}}};
    EXPECT_EQ(Manager().Uninstall("Korvane", program.home).words, "systemctl ended with status 4");
    EXPECT_EQ(Unit(), unit);
    EXPECT_TRUE(Manager().IsInstalled("Korvane"));

    fs::remove(place.unitFolder + "/default.target.wants/Korvane.service");  // what a crash in the middle leaves
    answers.clear();
    EXPECT_FALSE(Manager().IsInstalled("Korvane"));
    EXPECT_TRUE(Manager().Install("Korvane", program).done);

    place.unitFolder = folder.Path() + "/file/below";
    std::ofstream(folder.Path() + "/file") << "";
    EXPECT_TRUE(Holds(Manager().Install("Korvane", program).words, "Not a directory"));
}

TEST_F(SystemdManagerTest, KnowsTheEndOfTheSystem) {
    EXPECT_FALSE(Manager().IsShuttingDown());
    answers = {{"is-system-running", {.status = 1, .output = "stopping\n"}}};
    EXPECT_TRUE(Manager().IsShuttingDown());
    place.signsOfManager.push_back(folder.Path() + "/none");
    EXPECT_FALSE(Manager().IsPresent());
}

TEST(UnitNameTest, HoldsAnyName) {
    const std::pair<std::string, std::string> cases[] = {
        {"Korvane", "Korvane.service"},     {" web-1_a:b.c ", "web-1_a:b.c.service"},
        {"my shop", "my\\x20shop.service"}, {"a/b@c\\d", "a\\x2fb\\x40c\\x5cd.service"},
        {".hidden", "\\x2ehidden.service"}, {"\xc3\xbc", "\\xc3\\xbc.service"},
    };
    for (const auto& [name, unit] : cases)
        EXPECT_EQ(UnitName(name), unit);
    EXPECT_THROW(UnitName(" "), Error);
    EXPECT_THROW(UnitName(std::string(250, 'x')), Error);
}

TEST(UnitTextTest, NamesTheHomeInEachOfItsForms) {
    const ServiceProgram program{
        .program = "/opt/a b/korvanecore", .home = "/srv/50% \"off\"\\x", .folders = {"/var/www/it's here"}};
    const std::string text = UnitText("The 5% shop\\", program, UnitScope::System, "monitor");
    EXPECT_TRUE(text.starts_with("# Korvane as a service of the system.\n"));
    EXPECT_FALSE(Holds(UnitText("Korvane", program, UnitScope::User, ""), "of the system"));
    for (const std::string line : {
             "Description=The 5%% shop/",
             "ExecStart=\"/opt/a b/korvanecore\"",
             "WorkingDirectory=/srv/50%% \"off\"\\x",
             "User=monitor",
             "Environment=\"KORVANE_HOME=/srv/50%% \\\"off\\\"\\\\x\"",
             "ReadWritePaths=\"/srv/50%% \\\"off\\\"\\\\x\" \"-/var/www/it's here\"",
             "SystemCallFilter=@system-service",
             "WantedBy=multi-user.target",
         })
        EXPECT_TRUE(Holds(text, "\n" + line + "\n")) << line << "\n" << text;
    EXPECT_EQ(MarksOf(text).home, program.home);
    EXPECT_TRUE(MarksOf(WithLingerMark(text)).linger && !MarksOf(text).linger);
    for (const std::string home : {"relative", "/a\nExecStart=/bin/sh", "/ends with ", "/joins\\", "/tmp/home", "/var/tmp/home"})
        EXPECT_THROW(UnitText("Korvane", {.program = "/k", .home = home}, UnitScope::System, "root"), Error) << home;
}

/// Bounds of the exposure in tenths of 10, where 0 is best. A person's manager can confine little.
TEST(UnitTextTest, PassesTheManagersOwnChecks) {
    NeedQtApplication();
    QtEvents events;
    const SystemClock clock;
    const RunProgram run = ProgramRunner(events, clock);
    const TemporaryFolder folder;
    const std::string path = folder.Path() + "/korvane.service";
    try {
        run({"systemd-analyze", "--version"}, 30s);
    } catch (const Error&) {
        GTEST_SKIP() << "no systemd-analyze here";
    }
    const auto analyze = [&](const std::vector<std::string>& words) {
        std::vector<std::string> line{"env", "XDG_RUNTIME_DIR=" + folder.Path(), "systemd-analyze"};
        line.insert(line.end(), words.begin(), words.end());
        line.push_back(path);
        return run(line, 60s);
    };
    // It is looked for at its place, and the package's is not there.
    const std::string program = "/usr/bin/env";
    const auto made = [&](UnitScope scope) {
        return UnitText("Korvane", {program, "/srv/kor vane", {"/var/www/a"}}, scope, "korvane");
    };
    struct Case {
        const char* what;
        std::string unit;
        std::string manager;
        std::string exposure;
    };
    const Case cases[] = {
        {"of the system", made(UnitScope::System), "--system", "17"},
        {"of a person", made(UnitScope::User), "--user", "62"},
        {"of the package",
         ReplaceAll(ReadAll(KORVANE_DIST_DIR "/../system/korvane.service"), "/usr/lib/korvane/korvanecore", program), "--system",
         "17"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        EXPECT_TRUE(Holds(row.unit, program));
        std::ofstream(path) << row.unit;
        const ProgramResult verified = analyze({"--man=no", row.manager, "verify"});
        EXPECT_EQ(verified.status, 0);
        EXPECT_EQ(verified.output, "");
        const ProgramResult secure = analyze({"security", "--offline=true", "--threshold=" + row.exposure});
        EXPECT_EQ(secure.status, 0) << secure.output;
    }
}

TEST(PauseSignalsTest, ReachTheProgramInTheirOrder) {
    NeedQtApplication();
    QtEvents events;
    std::string came;
    {
        const PauseSignals signals(
            events, [&] { came += "pause "; }, [&] { came += "continue "; });
        sigset_t both, before;
        ::sigemptyset(&both);
        ::sigaddset(&both, SIGUSR1);
        ::sigaddset(&both, SIGUSR2);
        ::sigprocmask(SIG_BLOCK, &both, &before);
        ::raise(SIGUSR1);
        ::raise(SIGUSR2);
        ::sigprocmask(SIG_SETMASK, &before, nullptr);  // both come at once
        ::raise(SIGUSR1);
        EXPECT_EQ(came, "");
        EXPECT_TRUE(WaitFor(events, SystemClock(), 30s, [&] { return came.size() > 20; }));
    }
    EXPECT_EQ(came, "pause continue pause ");
    struct sigaction after {};
    ::sigaction(SIGUSR1, nullptr, &after);
    EXPECT_EQ(after.sa_handler, SIG_DFL);
}

}  // namespace
}  // namespace korvane
