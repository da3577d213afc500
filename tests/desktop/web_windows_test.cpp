// The windows that lead to the website: what they open in the browser, what they refuse, and what they say where no browser is.
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>

#include "desktop/desktop_test.h"
#include "notify/dispatcher.h"
#include "shell/desktop/small/frm_about.h"
#include "shell/desktop/small/frm_feedback.h"
#include "shell/desktop/small/frm_help.h"
#include "shell/desktop/small/frm_tell_friend.h"
#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

class WebWindowsTest : public DesktopTest {
protected:
    RecordingProcesses& Browser() { return TheProgram().processes; }
    WebFormPorts Ports() { return {pages_, TheProgram().world.events, Person()}; }

    using Pages = std::vector<std::string>;

    template <class Form>
    void Open(Form* form) {
        form_ = form;
        form->open();
        QApplication::setActiveWindow(form);
    }
    void Type(const char* box, const QString& text) {
        auto* input = form_->findChild<QWidget*>(box);
        input->setFocus();
        QTest::keyClicks(input, text);
    }
    void Send() { QTest::keyClick(form_->findChild<QPushButton*>("cmdSend"), Qt::Key_Space); }
    std::string Focus() { return S(QApplication::focusWidget()->objectName()); }
    bool Closed() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return form_ == nullptr;
    }

    QWidget window_;
    WebPages pages_{{TheProgram().processes, Person(), TheDesk().settingsFile}};
    QPointer<QWidget> form_;
};

TEST_F(WebWindowsTest, HelpShowsAndOpensTheAddress) {
    HelpViewer help(pages_);
    help.SetParent(&window_);
    pages_.OnShow([&] { help.Show(); });
    pages_.Show(WebPage::ServiceHelp);
    const QPointer<frmHelp> form = help.TheForm();
    ASSERT_NE(form, nullptr);
    EXPECT_EQ(form->windowTitle(), "Korvane  Open Browser");
    EXPECT_EQ(form->findChild<QLineEdit*>("txtURL")->text(), "https://www.example.com/help.asp#service");
    pages_.Show(WebPage::mnuTerms);
    EXPECT_EQ(help.TheForm(), form.data());
    QApplication::setActiveWindow(form);
    QTest::keyClick(form, Qt::Key_C, Qt::AltModifier);
    QTest::keyClick(form, Qt::Key_O, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return Browser().opened.size() == 3; }));
    EXPECT_EQ(QApplication::clipboard()->text(), "https://www.example.com/terms.asp");
    EXPECT_EQ(Browser().opened, (Pages{"https://www.example.com/help.asp#service", "https://www.example.com/terms.asp",
                                       "https://www.example.com/terms.asp"}));
    EXPECT_TRUE(Person().messages.empty());
    QTest::keyClick(form, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(help.TheForm(), nullptr);
}

TEST_F(WebWindowsTest, HelpWithoutABrowser) {
    HelpViewer help(pages_);
    using Messages = std::vector<RecordingOperator::Message>;
    Browser().hasBrowser = false;
    help.Show();
    EXPECT_EQ(Person().messages, (Messages{{"Browser Not Found", "Could not find associated Browser"},
                                           {"Korvane", "Korvane can't open any URL until you configure a default browser."}}));
    EXPECT_EQ(help.TheForm()->findChild<QLineEdit*>("txtURL")->text(), "https://www.example.com/help.asp");
    Person().Forget();
    Browser().hasBrowser = true;
    Browser().browserStarts = false;
    help.Show();
    EXPECT_EQ(Person().messages, (Messages{{"URL Failed", "Web Page not Opened"}}));
}

TEST_F(WebWindowsTest, AboutNamesTheVersionAndLeadsToTheWebsite) {
    TheDesk().settingsFile.Write("Settings", "uniqueid", "42");
    Open(new frmAbout(
        {.version = "1.2.3", .systemInfo = "Platform: Linux\r\nKorvane", .showPage = [&] { pages_.Show(WebPage::AboutLink); }},
        &window_));
    EXPECT_EQ(form_->findChild<QLabel*>("lblVersion")->text(), "Version 1.2.3");
    EXPECT_EQ(form_->findChild<QPlainTextEdit*>("lblSysInfo")->toPlainText(), "Platform: Linux\nKorvane");
    auto* link = form_->findChild<QLabel*>("lblLink");
    while (QApplication::focusWidget() != link)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTest::keyClick(link, Qt::Key_Return);
    EXPECT_EQ(Browser().opened, Pages{"https://www.example.com/default.asp?id=42"});
    EXPECT_FALSE(Closed());
    QTest::keyClick(form_, Qt::Key_Return);
    EXPECT_TRUE(Closed());
}

TEST_F(WebWindowsTest, FeedbackGoesToTheBrowser) {
    Open(new frmFeedback(Ports(), "1.2.3", &window_));
    EXPECT_EQ(Focus(), "txtComment");
    Type("txtComment", "Why?");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    Type("txtComment", "A & B");
    Type("txtEmail", "me@shop.de");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(Browser().opened, Pages{"https://www.example.com/zshared/feedback.asp?prod=Korvane&email=me@shop.de&"
                                      "body=Why?DAA%20%26%20BDAV1.2.3Other%20Browser%3A%20firefox.desktop"});
    EXPECT_TRUE(Closed());
}

TEST_F(WebWindowsTest, FeedbackNeedsACommentAndABrowser) {
    Open(new frmFeedback(Ports(), "1.2.3", &window_));
    auto* box = form_->findChild<QPlainTextEdit*>("txtComment");
    Type("txtComment", "  ");
    Send();
    ASSERT_EQ(Person().messages.size(), 1u);
    EXPECT_EQ(Person().messages[0].text, "Please enter a comment or question, then click Send Comment.  Thank you.");
    EXPECT_EQ(Focus(), "txtComment");
    EXPECT_EQ(S(box->accessibleDescription()), Person().messages[0].text);
    Type("txtComment", "a");
    EXPECT_EQ(box->accessibleDescription(), "");
    EXPECT_EQ(box->styleSheet(), "");

    Browser().hasBrowser = false;
    auto* note = form_->findChild<QPlainTextEdit*>("lblNoBrowser");
    EXPECT_FALSE(note->isVisible());
    Send();
    EXPECT_TRUE(note->isVisible());
    EXPECT_TRUE(note->toPlainText().startsWith("We're sorry, but the Send Feedback function needs to open your browser"));
    EXPECT_TRUE(note->toPlainText().endsWith("The Send Feedback function is disabled until you configure a default browser."));
    EXPECT_FALSE(form_->findChild<QPushButton*>("cmdSend")->isEnabled());

    // Back from choosing one.
    Browser().hasBrowser = true;
    QApplication::setActiveWindow(nullptr);
    QApplication::setActiveWindow(form_);
    EXPECT_FALSE(note->isVisible());
    Browser().browserStarts = false;
    Send();
    EXPECT_EQ(Person().messages.back().title, "URL Failed");
    EXPECT_FALSE(Closed());
    QTest::keyClick(form_, Qt::Key_Escape);
    EXPECT_TRUE(Closed());
    EXPECT_TRUE(Browser().opened.empty());
}

TEST_F(WebWindowsTest, AFriendIsToldAfterEachRefusalIsMended) {
    Open(new frmTellFriend(Ports(), &window_));
    const auto refusedAt = [&] {
        Person().Forget();
        Send();
        return Person().messages.size() == 1 ? Focus() + ": " + Person().messages[0].text.substr(0, 40) : "sent";
    };
    EXPECT_EQ(refusedAt(), "txtMessage: Please enter a message that can be sent ");
    Type("txtMessage", "Look");
    EXPECT_EQ(refusedAt(), "txtEmail1: Please supply one or more of your friend");
    Type("txtEmail1", "a@b.de");
    Type("txtEmail3", "c@d");
    EXPECT_EQ(refusedAt(), "txtEmail3: The email address you supplied 'c@d' doe");
    EXPECT_NE(form_->findChild<QLineEdit*>("txtEmail3")->styleSheet(), "");
    Type("txtEmail3", "c@d.de");
    EXPECT_EQ(form_->findChild<QLineEdit*>("txtEmail3")->styleSheet(), "");
    Type("txtFromName", "Me");
    Type("txtFromEmail", "me@shop.de");
    EXPECT_EQ(refusedAt(), "sent");
    EXPECT_EQ(Browser().opened,
              std::vector<std::string>{
                  "https://www.example.com/zshared/tellafriend.asp?prod=Korvane&email1=a@b.de&email2=&email3=c@d.de&"
                  "fromemail=me@shop.de&fromname=Me&body=Look"});
    EXPECT_TRUE(Closed());
}

TEST_F(WebWindowsTest, TheWindowMayGoWhileALongTextIsEncoded) {
    auto window = std::make_unique<QWidget>();
    Open(new frmTellFriend(Ports(), window.get()));
    form_->findChild<QPlainTextEdit*>("txtMessage")->setPlainText(QString(1'000, 'a'));
    Type("txtEmail1", "a@b.de");
    TheProgram().world.After(std::chrono::milliseconds(0), [&] { window.reset(); });
    Send();
    EXPECT_EQ(form_, nullptr);
    EXPECT_TRUE(Browser().opened.empty());
}

}  // namespace
}  // namespace korvane
