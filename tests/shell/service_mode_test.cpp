// Service and startup group as the operator and the service manager meet them: each answer to each question, each message.
#include "shell/service/service_mode.h"

#include <gtest/gtest.h>

#include "shell/options/options_open.h"
#include "support/recording_operator.h"
#include "support/recording_service_manager.h"
#include "support/virtual_world.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

class ServiceModeTest : public testing::Test {
protected:
    ServiceModeTest() {
        for (const auto& [key, value] :
             {std::pair{"ServiceName", "7Korvane"}, {"Service", "False"}, {"ReportPath", "/srv/k/Reports"}})
            collection.setKvSettingsColValue(key, value);
    }

    void SetService(bool on) {
        collection.setKvSettingsColValue("Service", on ? "True" : "False");
        if (on) manager.installed.insert("7Korvane");
        mode.LoadMarks();
    }
    void SetStartup(bool on) {
        if (on) autostart.names.insert("7Korvane");
        mode.LoadMarks();
    }
    std::string Service() const { return collection.getKvSettingsColVal("Service"); }
    Texts Messages() const {
        Texts texts;
        for (const auto& message : person.messages)
            texts.push_back(message.title == "Korvane" ? message.text : message.title + ": " + message.text);
        return texts;
    }
    Texts Questions() const {
        Texts texts;
        for (const auto& question : person.questions)
            texts.push_back(question.text);
        return texts;
    }

    VirtualWorld world{DateTime::Of(2026, 11, 21, 15, 0, 0)};
    RecordingServiceManager manager;
    RecordingAutostart autostart;
    struct ImpatientOperator : RecordingOperator {
        std::function<void()> meanwhile = [] {};
        void ShowMessage(const std::string& title, const std::string& text) override {
            RecordingOperator::ShowMessage(title, text);
            meanwhile();
        }
    };
    ImpatientOperator person;
    StatusLog status{person, world.clock};
    SettingsCollection collection;
    int saves = 0;
    bool monitoring = true;
    bool keepsSettings = false;
    std::string title = "Korvane v1";
    bool unloaded = false;
    ServiceMode mode{{manager, autostart, person, world.timers, status, collection},
                     {.Save = [this] { ++saves; },
                      .isMonitoring = [this] { return monitoring; },
                      .cmdStopStart = [this] { monitoring = !monitoring; },
                      .keepSettingsOnExit = [this] { keepsSettings = true; },
                      .appendToTitle = [this](const std::string& more) { title += more; },
                      .unload = [this] { unloaded = true; },
                      .showMarks = [] {}},
                     {.path = "/opt/K/korvanecore", .home = "/srv/k", .icon = "korvane"}};
};

const std::string kImportant =
    "IMPORTANT:  If you use Windows 2000 or XP, you need to go into control panel, administrative tools, and click the START "
    "button to initially start the Korvane service.  Next time you reboot, it will stay automatic.";
const std::string kHandOver = "\r\n\r\nThe service starts as soon as you end this Korvane with File, Exit.";

TEST_F(ServiceModeTest, ADesktopStartGoesOnAsADesktopProgram) {
    mode.StartService();
    mode.Loaded();
    EXPECT_EQ(person.StatusTexts(), Texts{"Korvane Service Failed to Start."});
    EXPECT_FALSE(keepsSettings || mode.RunningAsService());
    EXPECT_EQ(title, "Korvane v1");
}

TEST_F(ServiceModeTest, TheManagersStartIsTheStartEventOnce) {
    manager.startedThis = true;
    manager.aliveInterval = 150s;
    mode.StartService();
    EXPECT_EQ(person.StatusTexts(), (Texts{"Korvane Service Started Successfully!", "Service Started."}));
    EXPECT_EQ(title, "Korvane v1 running as service");
    EXPECT_TRUE(keepsSettings && mode.RunningAsService());
    mode.Loaded();
    world.RunFor(301s);
    EXPECT_EQ(manager.told, (Texts{"Service Started.", "READY", "ALIVE", "ALIVE"}));
    mode.StartService();
    EXPECT_EQ(title, "Korvane v1 running as service");
}

TEST_F(ServiceModeTest, PauseAndContinueSayWhatTheyFound) {
    mode.Loaded();
    manager.told.clear();
    mode.Continue();
    mode.Pause();
    EXPECT_FALSE(monitoring);
    mode.Pause();
    EXPECT_FALSE(monitoring);
    mode.Continue();
    EXPECT_TRUE(monitoring);
    const Texts said{"Service Still Continuing.", "Service Paused.", "Service Already Paused.",
                     "Service Continuing (monitoring again)"};
    EXPECT_EQ(person.StatusTexts(), said);
    EXPECT_EQ(manager.told, said);
}

TEST_F(ServiceModeTest, WhatIsAskedDuringStartUpIsDoneBehindIt) {
    mode.Continue();
    mode.Pause();
    EXPECT_TRUE(monitoring);
    mode.Loaded();
    EXPECT_FALSE(monitoring);
    EXPECT_EQ(person.StatusTexts(), Texts{"Service Paused."});
}

TEST_F(ServiceModeTest, AStopUnloadsAndAShutdownIsSaidBefore) {
    mode.Control(3);
    mode.Stop();
    EXPECT_TRUE(unloaded);
    manager.shuttingDown = true;
    mode.Stop();
    const bool frozen = true;
    mode.Stop(frozen);
    EXPECT_EQ(person.StatusTexts(),
              (Texts{"Service Stopped.", "Service Shutting Down. Monitoring stopping", "Service Stopped.", "Service Stopped."}));
    EXPECT_EQ(manager.told.front(), "STOPPING");
}

TEST_F(ServiceModeTest, TheTrayInstallsAndRemoves) {
    manager.remark = "Two\nlines";
    mode.mnuTrayNTService_Click();
    EXPECT_EQ(Messages(), Texts{"Korvane is now installed as the NT Service named 7Korvane.\r\n\r\n"
                                "It WILL start automatically (even if no one logs onto NT).\r\n\r\n" +
                                kImportant + kHandOver + "\r\n\r\nTwo\r\nlines"});
    EXPECT_EQ(person.StatusTexts(), (Texts{"Two : lines", "Korvane Service Failed to Start."}));
    EXPECT_TRUE(mode.mnuTrayNTService());
    EXPECT_EQ(Service(), "True");
    EXPECT_EQ(saves, 1);
    EXPECT_EQ(manager.program.program, "/opt/K/korvanecore");
    EXPECT_EQ(manager.program.home, "/srv/k");
    EXPECT_TRUE(manager.program.folders.empty());

    person.Forget();
    manager.remark.clear();
    mode.mnuTrayNTService_Click();
    EXPECT_EQ(Messages(),
              Texts{"Korvane is no longer installed as the NT Service named 7Korvane.\r\n\r\n"
                    "It will not start automatically (before or after you logon to NT).\r\n\r\n"
                    "You will have to start Korvane manually by looking for the Brellix program group and running Korvane."});
    EXPECT_FALSE(mode.mnuTrayNTService());
    EXPECT_EQ(Service(), "False");
    EXPECT_EQ(saves, 2);
    EXPECT_EQ(manager.asked, (Texts{"install 7Korvane", "uninstall 7Korvane of /srv/k"}));
}

TEST_F(ServiceModeTest, ASecondClickWhileAMessageIsOpenDoesNothing) {
    person.meanwhile = [this] {
        mode.mnuTrayNTService_Click();
        mode.mnuTrayStartup_Click();
        EXPECT_FALSE(mode.chkService_Click(true) || mode.chkStartup_Click(true));
    };
    mode.mnuTrayNTService_Click();
    EXPECT_EQ(person.messages.size(), 1u);
    EXPECT_EQ(manager.asked, Texts{"install 7Korvane"});
    EXPECT_TRUE(mode.mnuTrayNTService() && !mode.mnuTrayStartup());
}

TEST_F(ServiceModeTest, ARefusalChangesNothing) {
    const std::string end = " Try checking and unchecking this option a few times.\r\n\r\nNo.";
    struct Case {
        bool installed;
        std::string tray;
        std::string dialog;
    };
    const Case cases[] = {
        {false, "Korvane failed to Install itself as an NT service.  It may have already been installed. " + end,
         "The NT Service named 7Korvane failed to install (maybe it was already installed).\r\n\r\nThe service manager says: "
         "No."},
        {true, "Korvane failed to unintall itself as an NT service.  It may have already been removed. " + end,
         "The NT Service named 7Korvane failed to uninstall (it may have been uninstalled already).\r\n\r\n"
         "The service manager says: No."},
    };
    manager.refusal = "No.";
    for (const Case& row : cases) {
        SetService(row.installed);
        person.Forget();
        manager.ofManager = false;
        mode.mnuTrayNTService_Click();
        manager.ofManager = true;
        EXPECT_EQ(mode.chkService_Click(!row.installed), row.installed);
        EXPECT_EQ(Messages(), (Texts{row.tray, row.dialog}));
        EXPECT_TRUE(person.Said("No."));
        EXPECT_EQ(Service(), row.installed ? "True" : "False");
        EXPECT_EQ(mode.mnuTrayNTService(), row.installed);
    }
    EXPECT_EQ(saves, 0);
}

TEST_F(ServiceModeTest, AServiceBesideAShortcutIsAskedAbout) {
    for (const bool yes : {false, true}) {
        SetService(false);
        manager.installed.clear();
        SetStartup(true);
        person.Forget();
        person.answers = {yes};
        mode.mnuTrayNTService_Click();
        EXPECT_EQ(
            Questions(),
            Texts{"You have also configured Korvane to start when a user logs onto Windows (the startup group).  Since you "
                  "also have just installed it as a service, two instances of the program will be running when you logon to "
                  "Windows.\r\n\r\nWould you like to REMOVE the shortcut to Korvane that exists in the startup group "
                  "(recommended)? "});
        EXPECT_EQ(mode.IsInStartupGroup(), !yes);
        EXPECT_EQ(mode.mnuTrayStartup(), !yes);
        EXPECT_EQ(person.messages.size(), yes ? 2u : 1u);
        if (!yes) continue;
        EXPECT_EQ(
            Messages().back(),
            "Korvane was removed from the Windows Startup Group. \r\n\r\nKorvane will still start as an NT service when you "
            "reboot the computer Even if no one logs onto windows.");
    }
    person.Forget();
    mode.WarnIfInStartupGroup();
    EXPECT_TRUE(person.questions.empty());
}

TEST_F(ServiceModeTest, TheTrayAddsAndRemovesTheShortcut) {
    const std::string added =
        "Korvane was added to the Windows Startup Group. \r\n\r\nThe shortcut is named 7Korvane\r\n\r\n"
        "Korvane will automatically start after you logon to windows.";
    const std::string warning =
        "Warning: Korvane is also set to run as a service.  You just added  a shortcut to Korvane in the startup group.  This "
        "means when someone  logs onto windows, another instance of Korvane will start (in addition  to the one running as a "
        "service). \r\n\r\n We recommend that you choose one or the other, not both.";
    const std::string removed =
        "Korvane was removed from the Windows Startup Group. \r\n\r\nKorvane will no longer automatically start after you logon "
        "to windows. You will have to start it manually by looking for the Brellix program group and running Korvane.";
    for (const bool service : {false, true}) {
        SetService(service);
        person.Forget();
        mode.mnuTrayStartup_Click();
        EXPECT_TRUE(mode.mnuTrayStartup() && mode.IsInStartupGroup());
        EXPECT_EQ(autostart.last.program, "/opt/K/korvanecore");
        EXPECT_EQ(autostart.last.home, "/srv/k");
        mode.mnuTrayStartup_Click();
        EXPECT_FALSE(mode.mnuTrayStartup() || mode.IsInStartupGroup());
        EXPECT_EQ(Messages(), service ? (Texts{added, warning, removed}) : (Texts{added, removed}));
    }
    EXPECT_EQ(mode.getShortCutFileName("7Korvane").file, "/autostart/7Korvane.desktop");
    EXPECT_EQ(mode.getShortCutFileName("7Korvane").directory, "/opt/K/");
}

TEST_F(ServiceModeTest, AShortcutThatCannotBeChangedStaysAsItIs) {
    autostart.refusal = "Read-only file system";
    mode.mnuTrayStartup_Click();
    EXPECT_FALSE(mode.chkStartup_Click(true));
    SetStartup(true);
    mode.mnuTrayStartup_Click();
    EXPECT_TRUE(mode.chkStartup_Click(false));
    const std::string create = "The shortcut /autostart/7Korvane.desktop could not be created: Read-only file system";
    const std::string remove =
        "The shortcut /autostart/7Korvane.desktop could not be deleted: Read-only file system\r\n\r\nPlease open its folder in "
        "your file manager.  From there, you should be able to select and delete any shortcut you do not want.";
    EXPECT_EQ(Messages(), (Texts{create, create, remove, remove}));
}

TEST_F(ServiceModeTest, TheDialogInstallsAndRemovesInItsOwnWords) {
    const std::string installed =
        "PLEASE READ THIS: The NT Service named 7Korvane installed successfully. Now Korvane will automatically start when "
        "NT/2000/XP starts (even before anyone logs in). \r\n\r\nCheck 'Control Panel - Services' and look for '7Korvane'"
        "\r\n\r\n" +
        kImportant + kHandOver;
    for (const bool yes : {false, true}) {
        autostart.names = {"7Korvane"};  // by another hand: no mark shows it yet
        person.Forget();
        person.answers = {yes};
        EXPECT_TRUE(mode.chkService_Click(true));
        EXPECT_EQ(Messages().front(), installed);
        EXPECT_EQ(person.messages.size(), yes ? 2u : 1u);
        EXPECT_EQ(
            Questions(),
            Texts{"You also have Korvane installed in the windows startup group. When you restart windows, Korvane will run "
                  "as an NT service but it will also start a new instance of the program when someone logs into NT. "
                  "\r\n\r\nDo you wish to remove the shortcut to Korvane from the startup menu (recommended)?"});
        EXPECT_EQ(mode.IsInStartupGroup(), !yes);
        EXPECT_EQ(Service(), "True");
        person.Forget();
        EXPECT_FALSE(mode.chkService_Click(false));
        EXPECT_EQ(Messages(),
                  Texts{"The NT Service named 7Korvane uninstalled successfully.  Korvane will no longer start when NT "
                        "is restarted. \r\n\r\nCheck 'Control Panel - Services' and notice '7Korvane' is removed."});
        EXPECT_EQ(Service(), "False");
    }
    manager.asked.clear();
    manager.present = false;
    person.Forget();
    EXPECT_FALSE(mode.chkService_Click(true));
    EXPECT_EQ(Messages(), Texts{std::string(kNoServiceHint)});
    EXPECT_TRUE(manager.asked.empty() && mode.IsWindows95() && !mode.IsWindowsNT());
}

TEST_F(ServiceModeTest, TheDialogAddsAndRemovesTheShortcutInItsOwnWords) {
    const std::string added =
        "Korvane was just added to the startup group.  It's named  '7Korvane'.  Korvane will now start each time windows starts. "
        "\r\n\r\n";
    const std::string removed = "Removing Korvane from the startup group (Shortcut named 7Korvane). \r\n\r\n";
    const std::string unCheck = "UnCheck this option to remove Korvane from the startup group.";
    const std::string check = "Check this option to Add Korvane to the startup group.";
    const std::string also =
        "NOTE: You also have Korvane set to run as an NT Service. \r\n"
        "Korvane will start when NT starts (even before a user logs on to NT).\r\n\r\n";
    const std::string still =
        "NOTE: You have Korvane set to run as an NT Service. \r\n"
        "Korvane will start when NT starts (even though it's not in the startup group).\r\n\r\n";
    const std::string warning =
        "Warning: Korvane is also set to run as a service.  You just added  a shortcut to Korvane in the startup group.  This "
        "means when someone  logs onto windows, another instance of Korvane will start (in addition  to the one running as a "
        "service. \r\n\r\n We recommend that you choose one or the other, not both.";
    for (const bool service : {false, true}) {
        SetService(service);
        person.Forget();
        EXPECT_TRUE(mode.chkStartup_Click(true));
        EXPECT_TRUE(mode.mnuTrayStartup() && mode.IsInStartupGroup());
        EXPECT_FALSE(mode.chkStartup_Click(false));
        EXPECT_FALSE(mode.mnuTrayStartup() || mode.IsInStartupGroup());
        EXPECT_EQ(Messages(), service ? (Texts{added + also + unCheck, warning, removed + still + check})
                                      : (Texts{added + unCheck, removed + check}));
    }
}

TEST_F(ServiceModeTest, TheServiceStartsWhenItsInstallerHasEnded) {
    mode.HandOver();
    EXPECT_TRUE(manager.asked.empty());
    collection.setKvSettingsColValue("ReportPath", "/var/www/reports/");
    EXPECT_TRUE(mode.InstallService("7Korvane", true));
    EXPECT_EQ(manager.program.folders, Texts{"/var/www/reports"});
    collection.setKvSettingsColValue("ReportPath", "/srv/k2");
    mode.FollowSettings();
    EXPECT_EQ(manager.asked.back(), "update 7Korvane");
    EXPECT_EQ(manager.program.folders, Texts{"/srv/k2"});
    EXPECT_FALSE(mode.InstallService("7Korvane", true)) << "it is installed already";
    mode.HandOver();
    EXPECT_EQ(manager.asked.back(), "start 7Korvane");
    manager.refusal = "No.";
    EXPECT_FALSE(mode.InstallService("7Korvane", false));
    manager.refusal.clear();
    mode.HandOver();
    EXPECT_EQ(manager.asked.back(), "start 7Korvane");
    EXPECT_TRUE(mode.InstallService("7Korvane", false));
    mode.HandOver();
    EXPECT_EQ(manager.asked.back(), "uninstall 7Korvane of /srv/k");
}

}  // namespace
}  // namespace korvane
