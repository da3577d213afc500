// The service manager that is systemd: its commands played, the unit, and its signals.
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <fstream>

#include "base/error.h"
#include "base/text.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/linux_signals.h"
#include "platform/linux/systemd_manager.h"
#include "platform/real_ports.h"
#include "support/temporary_folder.h"

namespace korvane::service_manager_test {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

struct SystemdManagerTest : testing::Test {
    /// Orders are answered with success unless they hold `refused`; enabling and disabling do what they do.
    ProgramResult Play(const std::vector<std::string>& words) {
        std::string order;
        for (const std::string& word : words)
            order += word + (&word == &words.back() ? ";" : " ");
        orders += order;
        if (!refused.empty() && Holds(order, refused)) return {.status = 1, .output = said};
        fs::create_directories(wants.parent_path());
        if (Holds(order, " enable ")) fs::create_symlink(unit, wants);
        if (Holds(order, " disable ")) fs::remove(wants);
        return {};
    }
    SystemdManager Manager(const std::string& socket = "") {
        const auto environment = [&](const std::string& name) { return name == "NOTIFY_SOCKET" ? socket : ""; };
        return {{files, [this](const auto& words, auto) { return Play(words); }}, place, {environment, 7}};
    }
    ManagerAnswer Install() { return Manager().Install("Korvane", program); }
    ManagerAnswer Uninstall() { return Manager().Uninstall("Korvane", program.home); }
    bool Installed() { return Manager().IsInstalled("Korvane"); }

    TemporaryFolder temporary;
    const std::string folder = temporary.Path(), unit = folder + "/own/Korvane.service";
    fs::path wants = folder + "/own/default.target.wants/Korvane.service";
    LinuxFiles files;
    SystemdPlace place{UnitScope::User, folder + "/own", {folder}, {folder}, folder + "/linger"};
    std::string orders, refused, said;
    ServiceProgram program{.program = "/opt/korvane/korvanecore", .home = "/srv/monitor"};
};

TEST_F(SystemdManagerTest, RemovingUndoesTheInstallationAndARefusalLeavesEverythingAsItWas) {
    EXPECT_TRUE(Manager().IsPresent() && Install().done && Manager().Start("Korvane").done && Installed());
    EXPECT_FALSE(Install().done) << "it is installed already";
    EXPECT_TRUE(Uninstall().done);
    EXPECT_EQ(orders,
              "systemctl --user daemon-reload;systemctl --user enable Korvane.service;loginctl --no-ask-password enable-linger;"
              "systemctl --user start --no-block Korvane.service;systemctl --user disable Korvane.service;systemctl --user stop "
              "--no-block Korvane.service;systemctl --user daemon-reload;systemctl --user reset-failed Korvane.service;loginctl "
              "--no-ask-password disable-linger;");
    EXPECT_FALSE(fs::exists(unit) || Installed() || Uninstall().done);
    refused = "loginctl", said = "Access denied\n";
    EXPECT_TRUE(Install().words.starts_with("The service starts when you log on and not before: Access denied "));
    EXPECT_TRUE(Manager("/n").Uninstall("Korvane", program.home).done);
    EXPECT_EQ(orders.find("stop"), orders.rfind("stop")) << "a running service that removes itself goes on";
    for (const char* order : {"daemon-reload", " enable "}) {
        refused = order, said = "Failed: no bus\n";
        EXPECT_EQ(Install().words, "Failed: no bus");
        EXPECT_TRUE(orders.ends_with("disable Korvane.service;systemctl --user daemon-reload;") && !fs::exists(unit)) << orders;
    }
    refused = " disable ", said = "";
    EXPECT_TRUE(Install().done);
    EXPECT_TRUE(Uninstall().words == "systemctl ended with status 1" && Installed());
    fs::remove(wants);  // what a crash in the middle leaves
    EXPECT_TRUE(!Installed() && Install().done && Installed());
}

TEST_F(SystemdManagerTest, ChangesItsOwnUnitAndLeavesThoseOfOthersAlone) {
    const std::string foreign = "[Service]\nExecStart=/bin/true\n[Install]\nHome=/srv/monitor\n";
    const std::string anothers = UnitText("Korvane", {"/k", "/other"}, UnitScope::User, "");
    place.scope = UnitScope::System;
    wants = folder + "/own/multi-user.target.wants/Korvane.service";
    fs::create_directories(wants.parent_path());
    for (const auto& [file, text] : {std::pair{unit, foreign}, {unit, anothers}, {folder + "/Korvane.service", foreign}}) {
        std::ofstream(file) << text;
        EXPECT_FALSE(Install().done || Uninstall().done || Installed());
        Manager().Update("Korvane", program);
        EXPECT_EQ(ReadAll(file), text);
        fs::remove(file);
    }
    EXPECT_TRUE(orders.empty() && Install().done);
    orders = "";
    program.folders = {"/var/www/reports"};
    EXPECT_TRUE(Manager().Update("Korvane", program).done && Manager().Update("Korvane", program).done);
    EXPECT_EQ(orders, "systemctl daemon-reload;");
    EXPECT_TRUE(MarksOf(ReadAll(unit)).linger && Holds(ReadAll(unit), "reports"));
}

TEST(UnitText, NamesTheServiceAndTheHomeInEachOfTheirForms) {
    EXPECT_EQ(UnitName(".a/b@c\\d e\xc3\xbc-1_a:b.c "), "\\x2ea\\x2fb\\x40c\\x5cd\\x20e\\xc3\\xbc-1_a:b.c.service");
    const std::string home = "/srv/50% \"off\"\\x";
    const std::string text =
        UnitText("The 5% shop\\", {"/opt/a b/korvanecore", home, {"/var/it's"}}, UnitScope::System, "monitor");
    for (const std::string line : {"Description=The 5%% shop/", "ExecStart=\"/opt/a b/korvanecore\"", "User=monitor",
                                   "WorkingDirectory=/srv/50%% \"off\"\\x", "WantedBy=multi-user.target",
                                   "Environment=\"KORVANE_HOME=/srv/50%% \\\"off\\\"\\\\x\"",
                                   "ReadWritePaths=\"/srv/50%% \\\"off\\\"\\\\x\" \"-/var/it's\""})
        EXPECT_TRUE(Holds(text, "\n" + line + "\n")) << line << "\n" << text;
    EXPECT_EQ(MarksOf(text).home, home);
    const TemporaryFolder folder;
    const std::string file = folder.Path() + "/k.service";
    std::ofstream(file) << ReplaceAll(text, "/opt/a b/korvanecore", "/bin/true");
    EXPECT_NE(std::system(("systemd-analyze verify --man=no " + file + " 2>&1 | grep -F " + file).c_str()), 0);
    for (const std::string wrong : {"relative", "/a\nExecStart=/bin/sh", "/ends with ", "/joins\\", "/tmp/home"})
        EXPECT_THROW(UnitText("Korvane", {"/k", wrong}, UnitScope::System, "root"), Error) << wrong;
}

struct PauseSignalsTest : RealPorts {};

TEST_F(PauseSignalsTest, ReachTheProgramInTheirOrder) {
    std::string came;
    const auto note = [&](const char* what) { return [&came, what] { came += what; }; };
    const PauseSignals signals(events, note("pause "), note("continue "));
    ::raise(SIGUSR1), ::raise(SIGUSR2), ::raise(SIGUSR1);
    EXPECT_TRUE(Wait([&] { return came.size() > 20; }));
    EXPECT_EQ(came, "pause continue pause ");
}

}  // namespace korvane::service_manager_test
