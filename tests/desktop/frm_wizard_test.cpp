// The pages of the first-run setup, driven by keys while the setup waits through the pump.
#include "shell/desktop/small/frm_wizard.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>

#include "desktop/desktop_test.h"
#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

class FrmWizardTest : public DesktopTest {
protected:
    /// What each page gets, one second after it came: keys to whatever has the focus, as on a real desk.
    using Act = std::function<void(frmWizard&)>;

    std::string Ask(const WizardPage& page, const Act& act) {
        TheProgram().world.After(1s, [this, act] { Do(act); });
        return frmWizard::Ask(TheProgram().world.events, window_.get(), page);
    }
    void Do(const Act& act) {
        auto* form = window_->findChild<frmWizard*>();
        ASSERT_NE(form, nullptr);
        QApplication::setActiveWindow(form);
        act(*form);
    }
    static void Type(const QString& text) { QTest::keyClicks(QApplication::focusWidget(), text); }
    static void Press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }

    std::unique_ptr<QWidget> window_ = std::make_unique<QWidget>();
};

const WizardPage kQuestion{.title = "Question", .prompt = "One\r\nTwo", .defaultText = "default"};
const WizardPage kInfo{.title = "Info", .prompt = "Read this.", .defaultText = "never seen", .textboxVisible = false};

TEST_F(FrmWizardTest, KeysAnswerAQuestion) {
    struct Case {
        const char* name;
        Act act;
        std::string answer;
    };
    const Case cases[] = {
        {"the default, with Return", [](auto&) { Press(Qt::Key_Return); }, "default"},
        {"typing replaces it", [](auto&) { Type("new"), Press(Qt::Key_Return); }, "new"},
        {"added at its end", [](auto&) { Press(Qt::Key_End), Type("s"), Press(Qt::Key_Return); }, "defaults"},
        {"emptied", [](auto&) { Press(Qt::Key_Delete), Press(Qt::Key_Return); }, ""},
        {"by the button", [](auto&) { Type("b"), Press(Qt::Key_Tab), Press(Qt::Key_Space); }, "b"},
        {"Escape leaves it unanswered", [](auto&) { Type("x"), Press(Qt::Key_Escape); }, ""},
        {"and so does the close box", [](frmWizard& form) { form.close(); }, ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Ask(kQuestion, c.act), c.answer) << c.name;
        EXPECT_EQ(window_->findChild<frmWizard*>(), nullptr) << c.name;
    }
}

TEST_F(FrmWizardTest, APageSaysWhatItIsAbout) {
    Ask(kQuestion, [](frmWizard& form) {
        EXPECT_EQ(form.windowTitle(), "Question");
        EXPECT_TRUE(form.isModal());
        EXPECT_EQ(form.findChild<QPlainTextEdit*>("lblPrompt")->toPlainText(), "One\nTwo");
        EXPECT_EQ(form.findChild<QLineEdit*>()->accessibleDescription(), "One\nTwo");
        EXPECT_EQ(form.findChild<QPushButton*>("cmdButton1"), nullptr);
        EXPECT_EQ(form.findChild<QPushButton*>("cmdButton2")->text(), "&Next >>");
        Press(Qt::Key_Return);
    });
    Ask(kInfo, [](frmWizard& form) {
        EXPECT_FALSE(form.findChild<QLineEdit*>()->isVisible());
        Press(Qt::Key_Space);  // the button has the focus
    });
}

TEST_F(FrmWizardTest, TheButtonThatClosedThePageIsKept) {
    WizardPage page = kQuestion;
    page.firstButton = "Skip";
    for (const auto& [name, number] : {std::pair{"cmdButton1", 1}, {"cmdButton2", 2}}) {
        frmWizard form(page, nullptr);
        form.open();
        EXPECT_EQ(form.Button(), 0);
        QTest::keyClick(form.findChild<QPushButton*>(name), Qt::Key_Space);
        EXPECT_FALSE(form.isVisible());
        EXPECT_EQ(form.Button(), number);
        EXPECT_EQ(form.Answer(), "default");
    }
}

TEST_F(FrmWizardTest, AllPagesAreAsLargeWhateverTheyHold) {
    const WizardPage endless{.title = "Info", .prompt = std::string(10'000, 'W'), .textboxVisible = false};
    std::vector<QSize> sizes;
    for (const WizardPage& page : {kQuestion, kInfo, endless})
        Ask(page, [&](frmWizard& form) {
            QCoreApplication::processEvents();
            sizes.push_back(form.size());
            const auto* prompt = form.findChild<QPlainTextEdit*>("lblPrompt");
            EXPECT_EQ(prompt->verticalScrollBar()->maximum() > 0, page.prompt.size() > 1000);
            form.close();
        });
    EXPECT_EQ(sizes, std::vector<QSize>(3, sizes.front()));
}

TEST_F(FrmWizardTest, TheWindowUnderItMayGo) {
    EXPECT_EQ(Ask(kQuestion, [this](frmWizard&) { window_.reset(); }), "");
}

}  // namespace
}  // namespace korvane
