// The base of the tests of windows: the whole program in virtual time behind its own main window, on a platform without a screen, and
// how a test comes to its forms and controls.
#pragma once

#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>
#include <filesystem>
#include <fstream>

#include "base/text.h"
#include "shell/desktop/main/frm_monitor.h"
#include "shell/desktop/small/frm_wizard.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/desktop/toolkit/spoken_figures.h"
#undef forever  // a word of Qt that stands in the way of the faults' own

#include "support/world.h"

namespace korvane {

using namespace std::chrono_literals;

/// Makes the one QApplication of this test program. Call it before anything else of Qt.
inline void NeedDesktop() {
    if (QCoreApplication::instance() != nullptr) return;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_NO_GLIB", "1");
    static int argumentCount = 1;
    static char name[] = "korvane-test", *arguments[] = {name, nullptr};
    static const auto* application = new QApplication(argumentCount, arguments);  // at exit Qt's own statics go before it could
    application->setQuitOnLastWindowClosed(false);
    SpeakFigures();
}

/// The main window. What the program says and asks is recorded, and each question gets the same answer; with `boxes` it is shown.
class DeskWindow : public frmMonitor {
public:
    using frmMonitor::frmMonitor;

    bool boxes = false, yes = false;
    std::string said = "nothing";
    std::function<void()> onSaid = [] {};

    void ShowMessage(const std::string& title, const std::string& text) override {
        if (AskYesNo(title, text); boxes) frmMonitor::ShowMessage(title, text);
    }
    void ShowError(const std::string& title, const std::string& text) override { ShowMessage(title, text); }
    void ShowLoggedError(const std::string& title, const std::string& text) override {
        if (AskYesNo(title, text); boxes) frmMonitor::ShowLoggedError(title, text);
    }
    bool AskYesNo(const std::string& /*title*/, const std::string& text) override {
        said = text;
        std::function<void()>{onSaid}();
        return yes;
    }
    void Ask(const std::string& title, const std::string& text, const std::function<void()>& accepted,
             const std::function<void()>& refused) override {
        boxes ? frmMonitor::Ask(title, text, accepted, refused) : Operator::Ask(title, text, accepted, refused);
    }
};

/// How an operator comes to a form: from another one ("-": the main window) by a command; and what Return presses there.
struct Opening {
    std::string form, from, command, onReturn;
};
inline std::vector<Opening> Forms() {
    std::istringstream rows(
        "frmURLData - mnuEditURL cmdOk frmCommands frmURLData cmdCommands cmdOk frmTextToFind frmURLData cmdTextToFind cmdOk "
        "frmOptions - mnuOptions cmdOk frmGlobalEmail frmOptions cmdGlobalEmail cmdSaveGlobal frmAbout - mnuHelpAbout cmdOk "
        "frmInput frmOptions cmdTestEmail cmdOk frmFeedback - mnuHelpFeedback cmdSend frmTellFriend - mnuHelpTellFriend cmdSend "
        "frmHelp - mnuHelpWeb cmdClose frmManual - mnuHelpManual cmdClose frmReqRes - mnuViewConversation cmdClose frmDebug - "
        "mnuViewMail cmdClose "
        "frmCPUMonitor - ckCPUMon - frmDiskMonitor - ckDiskMon - frmMemoryMon - ckMemoryMon - frmSvcMon - ckSvcMon - "
        "frmSetEntries - mnuEntrySetGroup cmdOk frmMSG - mnuRestart cmdOk frmMSG - mnuFileResetGraph cmdNo frmWizard - page "
        "cmdButton2");
    std::vector<Opening> forms;
    for (Opening each; rows >> each.form >> each.from >> each.command >> each.onReturn;)
        forms.push_back(each);
    return forms;
}

/// The program has started with an empty database; monitoring has not begun yet (virtual time stands still until a test or a wait
/// lets it go on).
class DesktopTest : public testing::Test {
protected:
    DesktopTest() { Start("Done=True"); }
    ~DesktopTest() override { window.reset(); }

    /// Another start in the same home; with `setup` the first one in an empty home, after or before the questions of the setup.
    void Start(const std::string& setup = "") {
        NeedDesktop();
        window.reset();
        world.reset();
        if (!setup.empty()) {
            home = std::make_unique<TemporaryFolder>();
            std::ofstream(home->Path() + "/kvurlwatchn.ini") << "[Settings]\nBegin=2\nServer=mail.example\n[Setup]\n" << setup;
        }
        const auto face = [this](Timers& timers) {
            window = std::make_unique<DeskWindow>(timers);
            return WorldFace{window.get(), window.get(), &window->Conversation()};
        };
        world = std::make_unique<World>(World::Setup{.home = home->Path(), .makeFace = face});
        window->Attach(world->run, [this] { ++world->exits, window->BeforeExit(), world->run.mnuExit_Click(); });
        world->Start();
        Take("frmMonitor");
    }
    static void Settle() {
        QApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    /// Works with this open form from now on.
    QWidget& Take(const std::string& name) {
        Settle();
        QWidgetList open = QApplication::topLevelWidgets();
        open.removeIf([&](const QWidget* each) { return !each->isVisible() || each->objectName() != Q(name); });
        if (open.size() != 1) throw std::logic_error(std::to_string(open.size()) + " are open: " + name);
        QApplication::setActiveWindow(form = open[0]);
        Settle();
        return *form;
    }
    QWidget& Open(const std::string& name) {
        for (const Opening& each : Forms())
            if (each.form == name) return Open(each);
        throw std::logic_error("no form " + name);
    }
    QWidget& Open(const Opening& opening) {
        opening.from == "-" ? Take("frmMonitor") : Open(opening.from);
        window->boxes = opening.form == "frmMSG";
        Do(opening.command);
        return Take(opening.form);
    }
    bool IsGone() { return Settle(), form == nullptr || !form->isVisible(); }
    /// Destroys all forms; those on resources hide or go by themselves when they are closed.
    static void CloseAll() {
        const QWidgetList open = QApplication::topLevelWidgets();
        for (const QPointer<QWidget>& each : QList<QPointer<QWidget>>(open.begin(), open.end())) {
            if (qobject_cast<QDialog*>(each) == nullptr) continue;
            dynamic_cast<ResourceForm*>(each.data()) == nullptr ? delete each.data() : (void)each->close();
        }
    }

    /// A control of the form, on its page.
    template <class Control = QWidget>
    Control& Get(const std::string& name) {
        auto* const control = form->findChild<Control*>(Q(name));
        if (control == nullptr) throw std::logic_error("no " + name);
        auto* const pages = form->findChild<QTabWidget*>("tabPages");
        for (int page = 0; pages != nullptr && page < pages->count(); ++page)
            if (pages->widget(page)->isAncestorOf(control)) pages->setCurrentIndex(page);
        return *control;
    }
    QAction* Action(const std::string& name) {
        auto* const ofTray = window->Tray().mnuTray().findChild<QAction*>(Q(name));
        return ofTray != nullptr ? ofTray : form->findChild<QAction*>(Q(name));
    }
    /// A menu's command, a button or mark by the space bar, a label by the mouse.
    void Do(const std::string& name) {
        if (QAction* const action = Action(name)) return action->trigger();
        if (qobject_cast<QLabel*>(&Get(name)) != nullptr) return QTest::mouseClick(&Get(name), Qt::LeftButton);
        QTest::keyClick(&Get(name), Qt::Key_Space);
        Settle();
    }

    std::unique_ptr<TemporaryFolder> home;
    std::unique_ptr<World> world;
    std::unique_ptr<DeskWindow> window;
    QPointer<QWidget> form;
};

}  // namespace korvane
