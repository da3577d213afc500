// The general message: what is answered with which key, and that it survives the end of the window under it.
#include "shell/desktop/small/frm_msg.h"

#include <QClipboard>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>

#include "desktop/desktop_test.h"

namespace korvane {
namespace {

using Kind = frmMSG::Kind;
using Answers = frmMSG::Answers;

class FrmMsgTest : public testing::Test {
protected:
    FrmMsgTest() { NeedDesktop(); }

    /// Does this to the message once it stands.
    static void WhenShown(const std::function<void(QWidget&)>& act) {
        QTimer::singleShot(0, qApp, [act] {
            ASSERT_NE(QApplication::activeModalWidget(), nullptr);
            QApplication::setActiveWindow(QApplication::activeModalWidget());
            act(*QApplication::activeModalWidget());
        });
    }
};

TEST_F(FrmMsgTest, YesAndNo) {
    struct Case {
        const char* name;
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        bool yes;
    };
    const Case cases[] = {{"Return", Qt::Key_Return, {}, false},
                          {"Escape", Qt::Key_Escape, {}, false},
                          {"Alt+Y", Qt::Key_Y, Qt::AltModifier, true},
                          {"Alt+N", Qt::Key_N, Qt::AltModifier, false}};
    QWidget window;
    for (const Case& c : cases) {
        WhenShown([&](QWidget& form) {
            EXPECT_EQ(form.windowTitle(), "Korvane");
            QTest::keyClick(&form, c.key, c.modifiers);
        });
        EXPECT_EQ(frmMSG::Ask(&window, "Korvane", "Proceed?"), c.yes) << c.name;
    }
    WhenShown([](QWidget& form) { form.close(); });
    EXPECT_FALSE(frmMSG::Ask(nullptr, "Korvane", "Proceed?"));
    EXPECT_TRUE(window.children().isEmpty());
}

TEST_F(FrmMsgTest, ShowsItsLinesAndCopiesAll) {
    frmMSG form(Kind::StopSign, "Error", "One\r\nTwo", Answers::Ok, nullptr, "", "See the log");
    form.show();
    EXPECT_EQ(WithoutOwnKey(form), "");
    EXPECT_EQ(form.findChild<QPlainTextEdit*>("lblMSG")->toPlainText(), "One\nTwo");
    EXPECT_FALSE(form.findChild<QLabel*>("lblLine1")->isVisible());
    EXPECT_TRUE(form.findChild<QLabel*>("lblLine2")->isVisible());
    for (const char* focus : {"cmdOk", "lblMSG"}) {
        QApplication::clipboard()->clear();
        QTest::keyClick(form.findChild<QWidget*>(focus), Qt::Key_C, Qt::ControlModifier);
        EXPECT_EQ(QApplication::clipboard()->text(), "One\nTwo\nSee the log") << focus;
    }
    QTest::keyClick(&form, Qt::Key_Return);
    EXPECT_EQ(form.result(), QDialog::Accepted);
}

TEST_F(FrmMsgTest, ALongTextScrolls) {
    struct Case {
        const char* name;
        std::string text;
        bool scrolls;
    };
    std::string lines;
    for (int i = 0; i < 500; ++i)
        lines += "line " + std::to_string(i) + "\r\n";
    const Case cases[] = {
        {"a word", "Done.", false},
        {"lines that wrap", std::string(400, 'a') + std::string(" b"), false},
        {"a question", "This will assign global values to the email settings of all the servers\r\nProceed?", false},
        {"many lines", lines, true},
        {"one endless word", std::string(1'000'000, 'W'), true}};
    for (const Case& c : cases) {
        frmMSG form(Kind::Information, "Korvane", c.text, Answers::Ok, nullptr);
        form.show();
        QCoreApplication::processEvents();
        const auto* text = form.findChild<QPlainTextEdit*>("lblMSG");
        EXPECT_EQ(text->verticalScrollBar()->maximum() > 0, c.scrolls) << c.name;
        EXPECT_LT(form.width(), form.fontMetrics().averageCharWidth() * 100) << c.name;
        EXPECT_LT(form.height(), form.fontMetrics().lineSpacing() * 24) << c.name;
    }
}

TEST_F(FrmMsgTest, TheWindowUnderItMayGo) {
    auto window = std::make_unique<QWidget>();
    WhenShown([&](QWidget&) { window.reset(); });
    EXPECT_FALSE(frmMSG::Ask(window.get(), "Korvane", "Proceed?"));
}

}  // namespace
}  // namespace korvane
