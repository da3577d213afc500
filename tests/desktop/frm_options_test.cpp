// The settings dialog: what it opens with, what is refused and where it is marked, the reactions to typing, and its commands,
// also when they see it closed.
#include "shell/desktop/settings/frm_options.h"

#include <QAccessible>
#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QTabWidget>
#include <filesystem>

#include "desktop/desktop_test.h"

namespace korvane {
namespace {

using Strings = std::vector<std::string>;

class FrmOptions : public DialogTest<frmOptions> {
protected:
    ~FrmOptions() override { Destroy(); }

    void Open() {
        Destroy();
        Show(new frmOptions(TheDesk(),
                            {.proxyServer = [this] { return proxyServer; },
                             .PlaySound = Record("PlaySound "),
                             .IsWindowsNT = [this] { return isWindowsNT; },
                             .chkService_Click = [this](bool checked) { return ClickMark("service", checked); },
                             .chkStartup_Click = [this](bool checked) { return isInGroup = ClickMark("startup", checked); },
                             .IsInStartupGroup = [this] { return isInGroup; },
                             .TestShutDown =
                                 [this](const auto& answered) {
                                     Call("TestShutDown");
                                     answered();
                                 },
                             .CheckVersion = [this] { Call("CheckVersion"); },
                             .GlobalEmail = [this](QWidget* over) { Call(over == TheDialog() ? "GlobalEmail" : "no parent"); },
                             .HelpService = [this] { Call("HelpService"); },
                             .HelpShutDown = [this] { Call("HelpShutDown"); }},
                            nullptr));
        QApplication::setActiveWindow(TheDialog());
    }
    frmOptions& Form() { return *TheDialog(); }

    void ShowPage(const QString& title) {
        auto& pages = Get<QTabWidget>("tabPages");
        for (int page = 0; page < pages.count(); ++page) {
            if (pages.tabText(page) == title) pages.setCurrentIndex(page);
        }
    }
    std::string Page() { return S(Get<QTabWidget>("tabPages").tabText(Get<QTabWidget>("tabPages").currentIndex())); }
    std::string Status() { return S(Get<QPlainTextEdit>("txtStatus").toPlainText()); }
    void Mark(const char* name) {
        QTest::keyClick(&Get<QAbstractButton>(name), Qt::Key_Space);
        QCoreApplication::processEvents();
    }
    /// As screen readers do.
    void Toggle(const char* name) {
        QAccessible::queryAccessibleInterface(&Get<QAbstractButton>(name))
            ->actionInterface()
            ->doAction(QAccessibleActionInterface::toggleAction());
        QCoreApplication::processEvents();
    }
    void Type(const char* name, const char* text) {
        Box(name).selectAll();
        QTest::keyClick(&Box(name), Qt::Key_Delete);
        QTest::keyClicks(&Box(name), text);
    }
    std::string Setting(const char* key) { return TheDesk().collection.getKvSettingsColVal(key); }
    void Set(const char* key, const char* value) { TheDesk().collection.setKvSettingsColValue(key, value); }

    std::string proxyServer;
    bool isWindowsNT = true;
    bool isInGroup = false;
    bool takesMarks = true;
    Strings calls;
    std::function<void()> onCall = [] {};

private:
    void Call(const std::string& call) {
        calls.push_back(call);
        onCall();
    }
    std::function<void(const std::string&)> Record(const std::string& name) {
        return [this, name](const std::string& text) { Call(name + text); };
    }
    bool ClickMark(const std::string& name, bool checked) {
        Call(name + (checked ? " on" : " off"));
        return takesMarks ? checked : !checked;
    }
};

TEST_F(FrmOptions, OpensOnTheFirstPageWithTheSettings) {
    Set("SMTPPass1", "secret");
    Set("Reboot", "True");
    Set("RebootAny", "False");
    Set("Service", "True");
    Set("ServiceName", "7Korvane");
    isInGroup = true;
    Open();
    EXPECT_EQ(Page(), "Monitoring");
    EXPECT_EQ(Get<QLabel>("lblInterval").text(), "Seconds.  (1.0 minutes).");
    EXPECT_EQ(Box("txtServer").text(), "mail.example.com");
    EXPECT_EQ(Box("txtSMTPPass1").text(), "secret");
    EXPECT_EQ(Box("txtSMTPPass1").echoMode(), QLineEdit::Password);
    EXPECT_TRUE(Get<QRadioButton>("optRebootAll").isChecked() && !Get<QRadioButton>("optRebootAll").isHidden());
    EXPECT_TRUE(Get<QCheckBox>("chkService").isChecked() && Get<QCheckBox>("chkStartup").isChecked());
    EXPECT_EQ(Get<QLabel>("lblServiceName").text(), "7Korvane");
    EXPECT_TRUE(Get<QPushButton>("cmdSetProxy").isHidden());
    EXPECT_EQ(Status(), "");
    EXPECT_TRUE(Person().messages.empty() && calls.empty());
}

TEST_F(FrmOptions, WithoutAServiceManagerThereIsOnlyTheStartupGroup) {
    Set("Service", "True");
    isWindowsNT = false;
    Open();
    EXPECT_TRUE(Get<QCheckBox>("chkService").isHidden());
    EXPECT_EQ(
        Status(),
        "You are Not running Windows NT/XP/2000/2003.  You can not install Korvane as a service for this reason, but you can "
        "add Korvane to the StartUp group so it starts each time Windows Starts.  Do that by Clicking on the 'Add Korvane to "
        "the Startup Group' Checkbox.");
    Click("cmdOk");
    EXPECT_EQ(Setting("Service"), "False");
}

TEST_F(FrmOptions, WithoutAMailServerItBeginsThere) {
    Set("Server", "");
    Open();
    EXPECT_EQ(Page(), "E-Mail");
    EXPECT_EQ(Box("txtServer").text(), "mail.example.com");
    EXPECT_EQ(QApplication::focusWidget(), &Box("txtServer"));
    EXPECT_EQ(Status(), "Please enter an STMP mail server name.  Most SMTP server names are like 'mail.example.com'");
    EXPECT_EQ(LastMessage(),
              "You should set the SMTP server value.  If you want to get automatic email replies if a Server failure occurs, you "
              "must specify this value.  It usually is something like 'mail.example.com'");
}

TEST_F(FrmOptions, ARefusedNumberIsMarkedUntilItIsChanged) {
    const std::pair<const char*, const char*> cases[] = {
        {"txtBegin", "The valid range for the 'Monitor activity begins...' field is 0 .. 10 minutes.   You typed in 99999"},
        {"txtGlobalRetryDuration",
         "The valid range for the 'Server Retry interval...' field is 5 .. 32400(9 hours) seconds.   You typed in 99999"},
        {"txtSuccess", "The valid range for the 'Slow Response Timeout...' field is 0 .. 50 seconds.  You typed in 99999"},
    };
    Open();
    const QString help = Box("txtBegin").accessibleDescription();
    for (const auto& [name, message] : cases) {
        const QString before = Box(name).text();
        Type(name, "99999");
        ShowPage("Resets");
        for (const int again : {1, 2}) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            EXPECT_FALSE(IsGone()) << again;
        }
        EXPECT_EQ(LastMessage(), message);
        EXPECT_EQ(Page(), "Monitoring");
        EXPECT_EQ(QApplication::focusWidget(), &Box(name));
        EXPECT_EQ(Box(name).selectedText(), "99999");
        EXPECT_FALSE(Box(name).styleSheet().isEmpty());
        EXPECT_EQ(S(Box(name).accessibleDescription()), message);
        QTest::keyClicks(&Box(name), before);
        EXPECT_TRUE(Box(name).styleSheet().isEmpty());
    }
    EXPECT_EQ(Box("txtBegin").accessibleDescription(), help);
    QTest::keyClick(&Form(), Qt::Key_Return);
    EXPECT_TRUE(IsGone());
}

TEST_F(FrmOptions, OkSavesAndCancelDoesNot) {
    for (const bool ok : {false, true}) {
        Open();
        Type("txtZone", "-600");
        Type("txtGlobalRetryDuration", "90");
        EXPECT_EQ(Get<QLabel>("lblInterval").text(), "Seconds.  (1.5 minutes).");
        QTest::keyClick(&Form(), ok ? Qt::Key_Return : Qt::Key_Escape);
        EXPECT_TRUE(IsGone());
        EXPECT_EQ(Setting("Zone"), ok ? "-600" : "");
        EXPECT_EQ(TheDesk().settingsFile.Read("Settings", "GlobalRetryDuration", "60"), ok ? "90" : "60");
    }
    EXPECT_TRUE(Person().messages.empty());
}

TEST_F(FrmOptions, AProxyNameWithoutSchemeIsOnlyAdvisedAgainst) {
    Open();
    QTest::keyClicks(&Box("txtProxyPort"), "3128");
    EXPECT_TRUE(Person().messages.empty());
    QTest::keyClicks(&Box("txtProxyName"), "px");
    ASSERT_EQ(Person().messages.size(), 2U);  // at each keystroke
    EXPECT_EQ(LastMessage(), "Proxy server must begin with http:// if you use any value for the proxy server");
    EXPECT_EQ(Status(),
              "If you change the proxy server / proxy port, you must click OK, shut down Korvane, and restart it for the changes "
              "to take effect!");
    Click("cmdOk");
    EXPECT_TRUE(IsGone());
    EXPECT_EQ(LastMessage(), "You must shutdown and restart Korvane for any proxy server settings changes to take effect.");
    EXPECT_EQ(Setting("ProxyName"), "px");
}

TEST_F(FrmOptions, TheProxyOfTheDesktopFillsBothBoxes) {
    proxyServer = "proxy.example:80";
    Open();
    ShowPage("Proxy");
    EXPECT_EQ(
        Get<QLabel>("lblProxy").text(),
        "Korvane has detected your Internet Explorer Proxy server is 'proxy.example:80'.  Click the 'Set Proxy' button to the "
        "left to fill in the proxy server string above.");
    Click("cmdSetProxy");
    EXPECT_EQ(Box("txtProxyName").text(), "http://proxy.example");
    EXPECT_EQ(Box("txtProxyPort").text(), "80");
    EXPECT_TRUE(Person().messages.empty());
    Click("cmdOk");
    EXPECT_EQ(Person().messages.size(), 1U);
}

TEST_F(FrmOptions, TheMarksOfTheRestartExplainThemselves) {
    Open();
    ShowPage("Restart");
    EXPECT_TRUE(Get<QRadioButton>("optRebootAny").isHidden());
    Mark("ckReboot");
    EXPECT_FALSE(Get<QRadioButton>("optRebootAny").isHidden());
    EXPECT_TRUE(Status().starts_with("Select this option ONLY when you've installed Korvane on the web server")) << Status();
    Mark("optRebootAll");
    EXPECT_TRUE(Status().starts_with("Korvane will restart this computer when ALL servers are failing.")) << Status();
    Mark("optRebootAny");
    EXPECT_EQ(Status(), "Korvane will restart this computer if ANY server failes (x times in a row).");
    Mark("optRebootAll");
    Mark("ckReboot");
    EXPECT_TRUE(Get<QRadioButton>("optRebootAll").isHidden());
    EXPECT_TRUE(Status().starts_with("Korvane will not reboot THIS machine")) << Status();
    Click("cmdOk");
    EXPECT_EQ(Setting("Reboot") + Setting("RebootAny"), "FalseFalse");
}

TEST_F(FrmOptions, MarksOfServiceAndStartupShowWhatIs) {
    Open();
    ShowPage("Service");
    onCall = [this] { isInGroup = false; };
    for (const bool takes : {false, true}) {
        takesMarks = takes;
        Mark("chkStartup");
        EXPECT_EQ(Get<QCheckBox>("chkStartup").isChecked(), takes);
    }
    Toggle("chkService");  // which ends the entry in the group
    EXPECT_TRUE(Get<QCheckBox>("chkService").isChecked());
    EXPECT_FALSE(Get<QCheckBox>("chkStartup").isChecked());
    takesMarks = false;
    Mark("chkService");
    EXPECT_TRUE(Get<QCheckBox>("chkService").isChecked());
    EXPECT_EQ(calls, (Strings{"startup on", "startup on", "service on", "service off"}));
    Click("cmdOk");
    EXPECT_EQ(Setting("Service"), "True");
}

TEST_F(FrmOptions, ItsCommandsAreHandedOn) {
    Open();
    ShowPage("Reports and Sound");
    Type("txtRedAlertWav", "red.wav");
    const std::pair<const char*, const char*> commands[] = {{"Reports and Sound", "cmdTestYellowAlert"},
                                                            {"Reports and Sound", "cmdTestRedAlert"},
                                                            {"E-Mail", "cmdGlobalEmail"},
                                                            {"Service", "cmdHelpService"},
                                                            {"Restart", "cmdHelpShutDown"},
                                                            {"Restart", "cmdTestShutDown"},
                                                            {"Restart", "cmdCheckVersion"}};
    for (const auto& [page, command] : commands) {
        ShowPage(page);
        Click(command);
        const bool tested = std::string_view(command) == "cmdTestShutDown";
        EXPECT_EQ(Status().starts_with("IF YOU CLICKED YES, your computer should be shutting down. If not,"), tested) << command;
    }
    EXPECT_EQ(calls, (Strings{"PlaySound ", "PlaySound red.wav", "GlobalEmail", "HelpService", "HelpShutDown", "TestShutDown",
                              "CheckVersion"}));
    for (const char* reset : {"cmdResetSummary", "cmdDeleteResponse", "cmdDeleteAll"}) {
        ShowPage("Resets");
        Click(reset);
    }
    EXPECT_EQ(Person().questions.size(), 3U);
}

TEST_F(FrmOptions, FilesAndTheReportFolderAreChosen) {
    Open();
    ShowPage("Reports and Sound");
    std::vector<FileQuestion> questions;
    Form().askForFile = [&](const FileQuestion& question, const auto& chosen) {
        questions.push_back(question);
        chosen("/srv/out/" + question.name);
    };
    Click("cmdYellowAlertWav");
    Click("cmdRedAlertWav");
    Click("cmdReportPath");
    EXPECT_EQ(Box("txtYellowAlertWav").text() + Box("txtRedAlertWav").text(), "/srv/out/xxxx/srv/out/xxxx");
    EXPECT_EQ(Box("txtReportPath").text(), "/srv/out");
    ASSERT_EQ(questions.size(), 3U);
    EXPECT_EQ(questions[0].title + questions[0].extension + questions[0].filter, "Choose Sound Filewav*.wav");
    EXPECT_EQ(questions[2].name, "*.*");
}

TEST_F(FrmOptions, TheFileDialogTakesAFolder) {
    Open();
    ShowPage("Reports and Sound");
    Click("cmdReportPath");
    auto& dialog = Get<QFileDialog>("fileDialog");
    dialog.setDirectory(Q(Database().Folder()));
    dialog.selectFile("*.*");
    QMetaObject::invokeMethod(&dialog, "accept");
    EXPECT_EQ(Box("txtReportPath").text(), Q(Database().Folder()));
}

TEST_F(FrmOptions, TheMailTestAsksInBoxesOfItsOwn) {
    Open();
    ShowPage("E-Mail");
    const auto answer = [](const char* text) {
        QWidget* const input = QApplication::activeModalWidget();
        ASSERT_NE(input, nullptr);
        EXPECT_EQ(input->windowTitle(), "Testing SMTP Servers");
        QTest::keyClicks(input->findChild<QLineEdit*>("txtInput"), text);
        QTest::keyClick(input, Qt::Key_Return);
    };
    Click("cmdTestEmail");
    Click("cmdTestEmail");  // does nothing
    EXPECT_EQ(Status(), "Please refer to the Korvane main window to see progress indications.");
    answer("me@example.com");
    answer("korvane@example.com");
    EXPECT_EQ(Person().questions.size(), 1U);
    EXPECT_EQ(Status(), "EMAIL TEST FAILED.");
    Click("cmdTestEmail");
    QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
    answer("korvane@example.com");
    EXPECT_EQ(Status(), "Email Test Cancelled. No To: email supplied.");
}

TEST_F(FrmOptions, MayGoWhileACommandOfItsRuns) {
    const std::pair<const char*, const char*> commands[] = {
        {"Service", "chkService"}, {"Service", "chkStartup"}, {"Restart", "cmdTestShutDown"}, {"Restart", "cmdCheckVersion"}};
    onCall = [this] { Destroy(); };
    for (const auto& [page, command] : commands) {
        Open();
        ShowPage(page);
        const auto before = calls.size();
        Get<QAbstractButton>(command).click();
        QCoreApplication::processEvents();
        EXPECT_EQ(calls.size(), before + 1);
        EXPECT_TRUE(IsGone());
    }
}

}  // namespace
}  // namespace korvane
