// The question for a line of text: what each way to close it answers, and that its end with its parent answers nothing.
#include "shell/desktop/small/frm_input.h"

#include <QLabel>
#include <QLineEdit>
#include <QPointer>

#include "desktop/desktop_test.h"

namespace korvane {
namespace {

TEST(FrmInput, AnswersOnce) {
    NeedDesktop();
    const std::tuple<const char*, std::function<void(frmInput&)>, const char*> cases[] = {
        {"Return", [](frmInput& form) { QTest::keyClick(&form, Qt::Key_Return); }, "me@example.com"},
        {"Escape", [](frmInput& form) { QTest::keyClick(&form, Qt::Key_Escape); }, ""},
        {"close box", [](frmInput& form) { form.close(); }, ""},
    };
    for (const auto& [name, close, expected] : cases) {
        QWidget window;
        std::vector<std::string> answers;
        const QPointer<frmInput> form = new frmInput(
            "Title", "One\r\nTwo?", [&](const std::string& text) { answers.push_back(text); }, &window);
        form->open();
        EXPECT_EQ(form->findChild<QLabel*>("lblPrompt")->text(), "One\nTwo?");
        EXPECT_EQ(WithoutOwnKey(*form), "");
        QTest::keyClicks(form->findChild<QLineEdit*>("txtInput"), "me@example.com");
        close(*form);
        EXPECT_EQ(answers, std::vector<std::string>{expected}) << name;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(form == nullptr) << name;
    }
}

TEST(FrmInput, ItsParentMayGoBeforeOrByTheAnswer) {
    NeedDesktop();
    int answers = 0;
    auto window = std::make_unique<QWidget>();
    (new frmInput(
         "Title", "Who?", [&](const std::string&) { ++answers; }, window.get()))
        ->open();
    window.reset();
    EXPECT_EQ(answers, 0);
    window = std::make_unique<QWidget>();
    auto* const form = new frmInput(
        "Title", "Who?", [&](const std::string&) { ++answers, window.reset(); }, window.get());
    form->open();
    QTest::keyClick(form, Qt::Key_Return);
    EXPECT_EQ(answers, 1);
}

}  // namespace
}  // namespace korvane
