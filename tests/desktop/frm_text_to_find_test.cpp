// The text that must appear: what is written back to the editor, and the editor's test from here.
#include "shell/desktop/editor/frm_text_to_find.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>

#include "desktop/desktop_test.h"

namespace korvane {
namespace {

class FrmTextToFindTest : public testing::Test {
protected:
    FrmTextToFindTest() {
        NeedDesktop();
        window_ = std::make_unique<QWidget>();
        form_ = new frmTextToFind({.expectedText = [this] { return expected_; },
                                   .setExpectedText = [this](const std::string& text) { expected_ = text; },
                                   .getURLText = [] { return "www.example.com"; },
                                   .cmdTestURL_Click = [this] { onTest_(); }},
                                  window_.get());
        form_->open();
        QApplication::setActiveWindow(form_);
    }

    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    std::string Status() { return form_->findChild<QPlainTextEdit*>("lblStatus")->toPlainText().toStdString(); }
    QPushButton& TestButton() { return *form_->findChild<QPushButton*>("cmdTest"); }
    bool Closed() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return form_ == nullptr;
    }

    std::string expected_ = "Welcome";
    std::function<void()> onTest_ = [] { FAIL(); };
    std::unique_ptr<QWidget> window_;
    QPointer<frmTextToFind> form_;
};

TEST_F(FrmTextToFindTest, ExplainsWhileTypingAndWritesBackWithReturn) {
    EXPECT_EQ(form_->findChild<QLabel*>("lblHeading")->text(),
              "Type in Text the MUST APPEAR in the response from www.example.com");
    QTest::keyClicks(QApplication::focusWidget(), "straße");
    EXPECT_EQ(
        Status(),
        "If the text 'straße' does not appear in the response returned from the server, it will be considered a URL "
        "Failure.\n\n1) Text is case sensitive!  For Example: 'straße' is treated differently than 'STRASSE'.\n2) This text "
        "must be found in the first 500 characters of the result.");
    EXPECT_EQ(expected_, "Welcome");
    Press(Qt::Key_Return);
    EXPECT_EQ(expected_, "straße");
    EXPECT_TRUE(Closed());
}

TEST_F(FrmTextToFindTest, EscapeWritesNothingBack) {
    QTest::keyClicks(QApplication::focusWidget(), "x");
    Press(Qt::Key_Escape);
    EXPECT_EQ(expected_, "Welcome");
    EXPECT_TRUE(Closed());
}

TEST_F(FrmTextToFindTest, ATestUsesTheNewTextWithTheDialogOpenAndOnceAtATime) {
    int tests = 0;
    onTest_ = [&] {
        ++tests;
        EXPECT_EQ(expected_, "new");
        EXPECT_FALSE(TestButton().isEnabled());
        TestButton().click();
    };
    QTest::keyClicks(QApplication::focusWidget(), "new");
    Press(Qt::Key_T, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return tests > 0; }));
    EXPECT_EQ(tests, 1);
    EXPECT_TRUE(TestButton().isEnabled());
    EXPECT_FALSE(Closed());
}

TEST_F(FrmTextToFindTest, TheEditorMayGoWhileItsTestRuns) {
    onTest_ = [&] { window_.reset(); };
    Press(Qt::Key_T, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return form_ == nullptr; }));
}

}  // namespace
}  // namespace korvane
