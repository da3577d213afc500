// The commands of the editor of a server entry: its test of each kind of server, also while it is closed, mail, programs,
// traces and reset.
#include <QCheckBox>
#include <QFileDialog>
#include <QTabWidget>
#include <QToolButton>

#include "desktop/frm_url_data_test.h"
#include "support/virtual_mail_server.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

class FrmURLDataCommands : public FrmURLData {
protected:
    VirtualNet& Net() { return TheProgram().net; }
    std::int64_t AddPage(const char* expected) {
        return Database().Add({.strAddress_IP = "web.example", .strType = "HTTP", .strPort = "80", .strExpectedText = expected});
    }
};

TEST_F(FrmURLDataCommands, APageIsTestedWithoutSavingAnything) {
    const auto id = AddPage("Welcome");
    Net().Page("http://web.example").Answer("Welcome back", 20ms);
    Open(false, id);
    Type("txtDesc", "not stored");
    bool wasBusy = false;
    TheProgram().world.After(10ms, [&] {
        wasBusy = !Get<QPushButton>("cmdTestURL").isEnabled() && Editor().cursor().shape() == Qt::WaitCursor;
        EXPECT_EQ(Status(), "Doing HTTP request to web.example");
        Editor().cmdTestURL_Click();  // does nothing
    });
    Click("cmdTestURL");
    EXPECT_TRUE(wasBusy && Get<QPushButton>("cmdTestURL").isEnabled());
    EXPECT_NE(Editor().cursor().shape(), Qt::WaitCursor);
    EXPECT_EQ(Status(),
              "SUCCESS! 'web.example' port(80). timeout(15) secs. \nThe string 'Welcome' was found in the response: \n"
              "Welcome back");
    ASSERT_EQ(Person().messages.size(), 1U);
    EXPECT_EQ(LastMessage(), "The test was a success!");
    EXPECT_EQ(Net().Page("http://web.example").Requests(), 1);
    EXPECT_EQ(Database().Server(id).at("strDesc"), Value("entry"));

    Type("txtExpectedText", "Goodbye");
    Click("cmdTestURL");
    EXPECT_EQ(LastMessage(),
              "Failure! HTTP 'web.example' port(80). timeout(15) secs. The text 'Goodbye' was not found in the response.");

    Database().AddRow("ResponseFailText", {{"id", 5}, {"idParent", id}, {"strFailText", "back"}, {"strFailCommand", ""}});
    Type("txtExpectedText", "");
    Click("cmdTestURL");
    EXPECT_EQ(LastMessage(),
              "Server Error: 'back' was found in the response (text you want considered a failure).  You have set this "
              "value in the 'URL Scan Text' tab (text that indicates url failure) for this URL.");
}

TEST_F(FrmURLDataCommands, AFailureOnAMixedUpPortLeadsToThePort) {
    Open(false, AddPage(""));
    Type("txtPort", "443");
    Get<QTabWidget>("tabPages").setCurrentIndex(1);
    Click("cmdTestURL");
    ASSERT_EQ(Person().messages.size(), 2U);
    EXPECT_EQ(Person().messages[0].text,
              "The Server Request failed. 'web.example' port(443).\r\nError Description:\r\nReason 'Could not resolve host: "
              "web.example'");
    EXPECT_TRUE(LastMessage().ends_with("Why don't you try port 80?"));
    EXPECT_EQ(Editor().focusWidget(), &Box("txtPort"));
}

TEST_F(FrmURLDataCommands, APingNeedsAnAddressAndAHostNameBlocksFurtherTests) {
    Net().Host("10.0.0.1").Echo(4ms);
    const auto id = Database().Add({.strExpectedText = "1000"});
    Open(false, id);
    Click("cmdTestURL");
    EXPECT_TRUE(Status().starts_with("SUCCESS! '10.0.0.1' port(ICMP). \nPing Success to 10.0.0.1."));
    EXPECT_EQ(LastMessage(), "The test was a success!");
    Type("txtAddress_IP", "host.example");
    Click("cmdTestURL");
    EXPECT_TRUE(LastMessage().starts_with("Sorry, please convert your host name to an IP address. host.example is not"));
    EXPECT_FALSE(Get<QPushButton>("cmdTestURL").isEnabled());
    EXPECT_EQ(Editor().cursor().shape(), Qt::WaitCursor);
    Type("txtAddress_IP", "10.0.0.1");
    Editor().cmdTestURL_Click();
    EXPECT_EQ(Person().messages.size(), 2U);
    Open(false, id);
    EXPECT_TRUE(Get<QPushButton>("cmdTestURL").isEnabled());
}

TEST_F(FrmURLDataCommands, AConversationIsTested) {
    Net().Host("mail.example").Port(25).Speak("220 hi\r\n", 5ms).OnLine("QUIT", "221 bye\r\n");
    Open(false, Database().Add(
                    {.strAddress_IP = "mail.example", .strType = "SMTP", .strPort = "25", .strExpectedText = "220,QUIT,221"}));
    Click("cmdTestURL");
    EXPECT_EQ(Status(),
              "Success! 'mail.example' port(25). timeout(15) secs. \n The string request/response sequence '220,QUIT,221' was "
              "executed correctly with expected results. ");
    Type("txtExpectedText", "250");
    Click("cmdTestURL");
    EXPECT_TRUE(LastMessage().ends_with("Error Description:\r\nError: 220 hi\r\n Expected 250"));
}

TEST_F(FrmURLDataCommands, ClosedInTheMiddleOfATestItEndsWithoutAWord) {
    const auto id = AddPage("Welcome");
    Net().Page("http://web.example").Answer("Welcome", 50ms);
    for (const bool destroyed : {false, true}) {
        Open(false, id);
        TheProgram().world.After(10ms, [&] {
            if (destroyed)
                Destroy();
            else
                QTest::keyClick(&Editor(), Qt::Key_Escape);
        });
        Editor().cmdTestURL_Click();
        EXPECT_TRUE(IsGone());
        EXPECT_TRUE(Person().messages.empty());
    }
}

TEST_F(FrmURLDataCommands, ATestMailSaysHowItWent) {
    TheDesk().collection.setKvSettingsColValue("Server", "mail.example");
    VirtualMailServer mails(Net().Host("mail.example").Port(25));
    Open(false, Database().Add({}));
    Get<QTabWidget>("tabPages").setCurrentIndex(1);
    Click("cmdTestEmail");
    EXPECT_EQ(LastMessage(),
              "You must type in a valid email address in the Email Notify #1 or #2 field.  A valid email address looks "
              "like 'you@example.com'");
    Type("txtEmailList1", " a@x.example,  b@x.example ");
    Type("txtEmailFrom", "k@x.example");
    Type("txtEmailText", "down");
    Person().answers = {true, false};
    Click("cmdTestEmail");
    EXPECT_EQ(Box("txtEmailList1").text(), "a@x.example;b@x.example");
    EXPECT_EQ(Status(), "Email Test Concluded.");
    ASSERT_EQ(mails.mails.size(), 2U);
    EXPECT_TRUE(Holds(mails.mails[0].text, "Subject: [TEST MSG] down (entry)"));
    EXPECT_TRUE(Holds(mails.mails[0].from, "k@x.example"));
    Click("cmdTestEmail");
    EXPECT_EQ(Status(), "EMAIL SEND FAILED.  CLICK The 'VIEW LOG' BUTTON and scroll to the bottom to see the error.");
}

TEST_F(FrmURLDataCommands, CommandsAreAskedForChosenAndTried) {
    Open(false, Database().Add({.strCMD = "/bin/own"}));
    Click("cmdTestCMD");
    EXPECT_TRUE(TheProgram().processes.started.empty());
    Person().answers = {true};
    Click("cmdTestCMDUP");
    EXPECT_EQ(Person().questions.at(0).text,
              "The program you wish to launch when the Server can not be reached is '/bin/own'\r\n\r\nDo you want to test this "
              "command now?");
    EXPECT_EQ(Person().questions.at(1).text,
              "The program you wish to launch when the Server comes back up is ''\r\n\r\nDo you want to test this command now?");
    EXPECT_EQ(Status(), "Testing Command \n\nPress Start to resume... ");
    EXPECT_EQ(TheProgram().processes.started.size(), 1U);

    Click("cmdChooseCMDUP");
    auto& dialog = Get<QFileDialog>("fileDialog");
    EXPECT_EQ(dialog.windowTitle(), "Choose a Server UP command (*.bat or *.exe)");
    dialog.reject();
    Editor().askForFile = [](const QString& title, const auto& chosen) {
        EXPECT_EQ(title, "Choose a Server Down command (*.bat or *.exe)");
        chosen("/bin/sh");
    };
    Click("cmdChooseCMD");
    EXPECT_EQ(Box("txtCMD").text(), "/bin/sh");
}

TEST_F(FrmURLDataCommands, TheTraceOpensOnceThereIsOne) {
    const auto id = Database().Add({});
    Open(false, id);
    Click("cmdTraceRoute");
    EXPECT_EQ(
        LastMessage(),
        "When a server failure occurs, a traceroute command is run and the output is saved to a file.\r\n\r\nNo traceroute has "
        "yet "
        "been run for 10.0.0.1.Once a URL failure occurs, you will be able to see the last traceroute that was run.  This "
        "information will also be sent to you when the server comes back up. ");
    const std::string file = TheDesk().trace.GetTracertFile(id);
    TheDesk().files.CreateFolder(Database().Folder() + "/kvlogs");
    TheDesk().files.Replace(file, "1 gateway");
    Click("cmdTraceRoute");
    EXPECT_EQ(TheProgram().processes.openedTexts, std::vector<std::string>{file});
    TheProgram().processes.hasEditor = false;
    Click("cmdTraceRoute");
    EXPECT_TRUE(Holds(LastMessage(), file + " could not be opened in a text editor: ")) << LastMessage();
}

TEST_F(FrmURLDataCommands, AResetIsAskedForFirst) {
    const auto id = Database().Add({.nSuccess = 7, .nFail = 2});
    Database().AddRow("Failures", {{"ID", 1}, {"IDParent", id}});
    Database().AddRow("Response", {{"id", 1}, {"idParent", id}});
    Open(false, id);
    Click("cmdReset");
    EXPECT_TRUE(Holds(Person().questions.at(0).text, "reset the server statistics  for this server (10.0.0.1)."));
    EXPECT_EQ(Database().Count("Failures"), 1);
    Person().answers = {true};
    Database().Change("Servers", id, {{"strGroup", "O'Brien"}});  // which can't be published
    Click("cmdReset");
    EXPECT_TRUE(Person().SaidPart("Reporting Error: "));
    EXPECT_EQ(LastMessage(), "Data Reset");
    EXPECT_EQ(Database().Count("Failures") + Database().Count("Response"), 0);
    EXPECT_EQ(Database().Server(id).at("nSuccess"), Value(0));
}

TEST_F(FrmURLDataCommands, TheSmallDialogsWorkOnThisEntry) {
    Open(false, AddPage("Welcome"));
    Get<QToolButton>("cmdTextToFind").click();
    auto& textToFind = Get<QDialog>("frmTextToFind");
    auto& txtExpected = *textToFind.findChild<QLineEdit*>("txtExpected");
    EXPECT_EQ(txtExpected.text(), "Welcome");
    EXPECT_EQ(WithoutOwnKey(textToFind), "");
    txtExpected.setText("Hello");
    QTest::keyClick(&txtExpected, Qt::Key_Return);
    EXPECT_EQ(Box("txtExpectedText").text(), "Hello");
    Get<QTabWidget>("tabPages").setCurrentIndex(4);
    Click("cmdHelpRules");
    EXPECT_EQ(TheProgram().processes.opened, std::vector<std::string>{"https://www.example.com/help.asp?q_id=62"});
    Click("cmdCommands");
    EXPECT_TRUE(Get<QDialog>("frmCommands").isVisible());
    EXPECT_EQ(WithoutOwnKey(Get<QDialog>("frmCommands")), "");
}

}  // namespace
}  // namespace korvane
