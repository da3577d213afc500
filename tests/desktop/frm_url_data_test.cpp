// The editor of a server entry, typed into and clicked over the virtual world: opening, reactions to typing, saving and
// cancelling.
#include "shell/desktop/editor/frm_url_data.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>

#include "desktop/frm_url_data_test.h"
#include "shell/entry/entry_hints.h"

namespace korvane {
namespace {

TEST_F(FrmURLData, ANewEntryIsCancelledAndStaysWithItsDefaults) {
    Open(true, 0);
    EXPECT_EQ(Editor().windowTitle(), "Server Settings for www.example.com");
    EXPECT_EQ(Status(), kNewEntryHint);
    EXPECT_EQ(Get<QComboBox>("cmbType").currentText(), "HTTP");
    EXPECT_EQ(Get<QLabel>("lblPrefix").text(), "http://");
    EXPECT_EQ(Box("txtPort").text(), "80");
    EXPECT_EQ(Get<QLabel>("lblInterval").text(), "Seconds.  (1.0 minutes).");
    EXPECT_FALSE(Get<QPushButton>("cmdLastResponse").isEnabled());
    Type("txtDesc", "never stored");
    QTest::keyClick(&Editor(), Qt::Key_Escape);
    EXPECT_TRUE(IsGone());
    EXPECT_EQ(savedCalls, 0);
    ASSERT_EQ(Database().Count("Servers"), 1);
    EXPECT_EQ(Database().Rows("Servers")[0].at("strDesc"), Value("Example"));
    EXPECT_TRUE(Person().messages.empty());
}

TEST_F(FrmURLData, AnEntryIsChangedByKeysAndSavedByReturn) {
    const auto id = Database().Add({.strDesc = "shop", .strAddress_IP = "shop.example", .strType = "HTTP", .strPort = "8080"});
    Open(false, id);
    EXPECT_EQ(Box("txtPort").text(), "8080");
    Type("txtAddress_IP", "HTTP://new.example/a");
    EXPECT_EQ(Box("txtAddress_IP").text(), "new.example/a");
    EXPECT_EQ(Editor().windowTitle(), "Server Settings for new.example/a");
    Type("txtTimeout", "0");
    EXPECT_EQ(Box("txtTimeout").text(), "1");
    QTest::keyClicks(&Box("txtTimeout"), "30");
    EXPECT_EQ(Box("txtTimeout").text(), "30");
    Type("txtExpectedText", "Hi");
    EXPECT_EQ(Status(),
              "The HTTP request to 'new.example/a'must return the case sensitive response 'Hi'. If this fails 3 times in a "
              "row, it's considered a Server failure. ");
    Get<QCheckBox>("ckNotSendBody").setChecked(true);
    QTest::keyClick(&Box("txtExpectedText"), Qt::Key_Return);
    EXPECT_TRUE(IsGone());
    EXPECT_EQ(savedCalls, 1);
    const Row row = Database().Server(id);
    EXPECT_EQ(row.at("strAddress_IP"), Value("new.example/a"));
    EXPECT_EQ(row.at("strPort"), Value("8080"));
    EXPECT_EQ(row.at("nTimeout"), Value(30));
    EXPECT_EQ(row.at("strExpectedText"), Value("Hi"));
    EXPECT_EQ(row.at("bNotSendBody"), Value(true));
}

TEST_F(FrmURLData, ATypeBringsItsTextsAndItsScreen) {
    Open(false, Database().Add({.strAddress_IP = "s", .strType = "HTTP", .strPort = "8080", .strExpectedText = "Welcome"}));
    auto& tabs = Get<QTabWidget>("tabPages");
    Pick("HTTPS");
    EXPECT_EQ(Box("txtPort").text(), "443");
    Pick("HTTP");
    EXPECT_EQ(Box("txtPort").text(), "80");
    Pick("FTP");
    EXPECT_EQ(Box("txtExpectedText").text(), "220,QUIT,221");
    EXPECT_FALSE(Box("txtPort").isEnabled());
    EXPECT_FALSE(tabs.isTabEnabled(3) || tabs.isTabEnabled(4));
    Box("txtExpectedText").setEnabled(false);
    for (const char* label : {"lblPort", "lblRequest", "lblExpected"})
        QTest::mouseClick(&Get<QLabel>(label), Qt::LeftButton);
    ASSERT_EQ(Person().messages.size(), 3U);
    EXPECT_TRUE(Get<QLabel>("lblRequest").isVisible() && Box("txtRequestText").isHidden());
    Pick("PING");
    EXPECT_EQ(Box("txtPort").text(), "ICMP");
    EXPECT_EQ(Get<QLabel>("lblExpected").text(), "PING tim&eout in milliseconds:");
    EXPECT_TRUE(Box("txtTimeout").isHidden() && Get<QLabel>("lblTimeout").isHidden() && Get<QLabel>("lblTimeoutUnit").isHidden());
    Pick("Other Port");
    EXPECT_EQ(Box("txtExpectedText").text(), "Welcome");
    EXPECT_TRUE(Box("txtPort").isEnabled());
    Pick("HTTP");
    EXPECT_EQ(Box("txtExpectedText").text(), "Welcome");
    EXPECT_TRUE(tabs.isTabEnabled(3) && tabs.isTabEnabled(4));
    EXPECT_FALSE(Box("txtTimeout").isHidden());
    QTest::mouseClick(&Get<QLabel>("lblPort"), Qt::LeftButton);
    EXPECT_EQ(Person().messages.size(), 3U) << "a box that can be changed needs no explanation";
}

TEST_F(FrmURLData, ARefusedFieldIsMarkedUntilItIsChanged) {
    const auto id = Database().Add({.strDownTime1 = "3:00am", .nDownDuration1 = 5});
    Open(false, id);
    Type("txtDownDuration1", "");
    Type("txtDesc", "kept back");
    Click("cmdOk");
    ASSERT_FALSE(IsGone());
    EXPECT_EQ(
        Person().messages.at(0).text,
        "We're sorry, but the downtime minutes number you entered was not a valid integer or was blank.  You entered '' which is "
        "invalid.  Please try again. Values of 1-999 are valid");
    EXPECT_EQ(Get<QTabWidget>("tabPages").currentIndex(), 2);
    EXPECT_EQ(Editor().focusWidget(), &Box("txtDownDuration1"));
    EXPECT_FALSE(Box("txtDownDuration1").styleSheet().isEmpty());
    EXPECT_TRUE(Box("txtDownDuration1").accessibleDescription().startsWith("We're sorry"));
    EXPECT_EQ(Database().Server(id).at("strDesc"), Value("entry"));
    Type("txtDownDuration1", "20");
    EXPECT_TRUE(Box("txtDownDuration1").styleSheet().isEmpty());
    EXPECT_FALSE(Box("txtDownDuration1").accessibleDescription().startsWith("We're sorry"));
    Click("cmdOk");
    EXPECT_TRUE(IsGone());
    EXPECT_EQ(Database().Server(id).at("nDownDuration1"), Value(20));
}

TEST_F(FrmURLData, ARowThatVanishedKeepsTheEditorOpen) {
    const auto id = Database().Add({});
    Open(false, id);
    Database().Remove("Servers", id);
    Click("cmdOk");
    EXPECT_FALSE(IsGone());
    EXPECT_EQ(savedCalls, 0);
    EXPECT_EQ(Person().messages.at(0).text, "DB Error: Couldn't save  SELECT * from servers where id =" + std::to_string(id));
    Editor().reject();
    Open(false, id);
    EXPECT_TRUE(Person().messages.at(1).text.starts_with("Error with Database. Current record ID='"));
    EXPECT_EQ(Box("txtAddress_IP").text(), "");
}

TEST_F(FrmURLData, TheRestartMarkLendsItsCommand) {
    Open(false, Database().Add({.strCMD = "/bin/own"}));
    Get<QTabWidget>("tabPages").setCurrentIndex(5);
    Get<QCheckBox>("ckRestart").click();
    const QString command = Box("txtCMD").text();
    EXPECT_TRUE(command.endsWith("shutdown -r -f")) << command.toStdString();
    EXPECT_EQ(Person().messages.at(0).text,
              "The command " + command.toStdString() +
                  " is the command that will shutdown and restart THIS computer.  This command only "
                  "works with Windows NT,XP,2000,2003");
    Get<QCheckBox>("ckRestart").click();
    EXPECT_EQ(Box("txtCMD").text(), "/bin/own");
}

TEST_F(FrmURLData, HelpFollowsTheFocusAndEveryInputHasAName) {
    Open(false, Database().Add({.strType = "HTTP"}));
    for (const QWidget* each : Editor().findChildren<QWidget*>()) {
        const bool isInput = qobject_cast<const QLineEdit*>(each) != nullptr ||
                             qobject_cast<const QAbstractButton*>(each) != nullptr ||
                             qobject_cast<const QComboBox*>(each) != nullptr;
        if (!isInput || each->objectName().isEmpty() || each->objectName().startsWith("qt_")) continue;
        const QString name = each->objectName();
        EXPECT_FALSE(each->accessibleName().isEmpty()) << name.toStdString();
        if (name == "cmdOk" || name == "cmdCancel" || name.startsWith("Scroll")) continue;
        EXPECT_FALSE(HelpOnInput(name.toStdString()).empty()) << name.toStdString();
    }
    EXPECT_EQ(WithoutOwnKey(Editor()), "");
    auto& tabs = Get<QTabWidget>("tabPages");
    for (int page = 1; page < tabs.count(); ++page) {
        tabs.setCurrentIndex(page);
        EXPECT_FALSE(Status().empty()) << page;
    }
    tabs.setCurrentIndex(0);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Editor()));
    Box("txtDesc").setFocus();
    QTest::keyClick(&Box("txtDesc"), Qt::Key_Tab);
    EXPECT_EQ(Status(), HelpOnInput("txtGroup"));
    Type("txtDesc", "");
    EXPECT_TRUE(Status().ends_with("Blank out this field to have just the server name (10.0.0.1)displayed instead."));
}

}  // namespace
}  // namespace korvane
