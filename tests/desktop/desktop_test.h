// The base of the tests of windows: a Qt application without a screen, the whole program in virtual time with entries in its
// database, and what a test says of both.
#pragma once

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>

#include "desktop/qt_desktop.h"
#include "shell/program.h"
#include "support/test_database.h"

namespace korvane {

/// The buttons of a dialog, on each of its pages, that have no key of their own: none, or one that a label or a button before
/// them has. Blank: there are none.
inline std::string WithoutOwnKey(QWidget& dialog) {
    std::string without;
    auto* const pages = dialog.findChild<QTabWidget*>("tabPages");
    for (int page = 0; page < (pages == nullptr ? 1 : pages->count()); ++page) {
        if (pages != nullptr) pages->setCurrentIndex(page);
        std::set<QString> taken{""};
        const auto take = [&](const QWidget& control, const QKeySequence& key) {
            const bool isSeen = control.window() == &dialog && control.isVisibleTo(&dialog);
            if (isSeen && !taken.insert(key.toString()).second) without += control.objectName().toStdString() + " ";
        };
        for (const QLabel* label : dialog.findChildren<QLabel*>()) {
            const QKeySequence key = QKeySequence::mnemonic(label->text());
            if (label->buddy() != nullptr && !key.isEmpty()) take(*label, key);
        }
        for (const QAbstractButton* button : dialog.findChildren<QAbstractButton*>())
            take(*button, button->shortcut());
    }
    return without;
}

/// The program has started with an empty database; monitoring has not begun yet (virtual time stands still until a test or a wait
/// lets it go on). What the windows ask and say goes to `Person()`, with the answers laid down there.
class DesktopTest : public testing::Test {
protected:
    DesktopTest() {
        NeedDesktop();
        database_ = std::make_unique<TestDatabase>();
        program_ = std::make_unique<Program>(database_->Folder(), KORVANE_DIST_DIR, "",
                                             [this](Timers&) { return DesktopOfProgram{.window = &window_}; });
        EXPECT_EQ(program_->run.StartUp(), Run::Started::Running);
        program_->person.Forget();
    }

    TestDatabase& Database() { return *database_; }
    Program& TheProgram() { return *program_; }
    RecordingOperator& Person() { return program_->person; }
    Desk TheDesk() { return program_->run.TheDesk(); }

private:
    /// The run has the checkers for the operator's own tests where there is a window.
    struct Window : MonitorWindow {
        bool HasWindow() const override { return true; }
    };

    Window window_;
    std::unique_ptr<TestDatabase> database_;
    std::unique_ptr<Program> program_;
};

/// One dialog at a time, and its controls by name. A test whose own members the dialog calls destroys it before them.
template <class Dialog>
class DialogTest : public DesktopTest {
protected:
    ~DialogTest() override { Destroy(); }

    void Show(Dialog* dialog) {
        dialog_ = dialog;
        dialog_->open();
    }
    Dialog* TheDialog() { return dialog_; }
    void Destroy() { delete dialog_; }
    /// Closed, and deleted as soon as its events come through.
    bool IsGone() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return dialog_ == nullptr;
    }

    template <class Control>
    Control& Get(const char* name) {
        auto* const control = dialog_->template findChild<Control*>(name);
        if (control == nullptr) throw std::logic_error(std::string("no ") + name);
        return *control;
    }
    QLineEdit& Box(const char* name) { return Get<QLineEdit>(name); }
    void Click(const char* name) { QTest::mouseClick(&Get<QPushButton>(name), Qt::LeftButton); }
    std::string LastMessage() { return Person().messages.empty() ? "" : Person().messages.back().text; }

private:
    QPointer<Dialog> dialog_;
};

}  // namespace korvane
