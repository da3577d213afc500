// The main window on the whole program in virtual time, driven by its keys: what it shows, what its commands do, and what it says
// in boxes.
#include "shell/desktop/main/frm_monitor.h"

#include <QCheckBox>
#include <QClipboard>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollBar>
#include <QToolTip>
#include <map>

#include "base/text.h"
#include "desktop/desktop_test.h"
#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

class MonitorWindowTest : public testing::Test {
protected:
    /// Entries first, then this. Setup counts as done: nobody is there to answer its questions.
    void Start() {
        StartForTheFirstTime();
        program_->run.TheDesk().settingsFile.Write("Setup", "Done", "True");
    }
    void StartForTheFirstTime() {
        program_ = std::make_unique<Program>(database_.Folder(), KORVANE_DIST_DIR, "", [this](Timers& timers) {
            window_ = std::make_unique<frmMonitor>(timers);
            return DesktopOfProgram{.person = window_.get(), .window = window_.get(), .conversation = &window_->Conversation()};
        });
        window_->Attach(program_->run, [this] { ++exits_; });
        program_->serviceManager.startedThis = isService_;
        ASSERT_EQ(program_->run.StartUp(), Run::Started::Running);
        Settle();
    }
    ~MonitorWindowTest() override { window_.reset(); }

    static void Settle() { QApplication::processEvents(); }
    frmMonitor& Window() { return *window_; }
    Program& TheProgram() { return *program_; }
    VirtualWorld& World() { return program_->world; }

    QString Cell(int row, int column) { return Window().ListView1->model()->index(row, column).data().toString(); }
    std::vector<std::string> Cells(int column) {
        std::vector<std::string> cells;
        for (int row = 0; row < Window().ListView1->model()->rowCount(); ++row)
            cells.push_back(S(Cell(row, column)));
        return cells;
    }
    std::string Selected() { return S(Window().ListView1->currentIndex().siblingAtColumn(column::ShortName).data().toString()); }
    std::string Status() { return S(Window().txtStatus->toPlainText()); }
    void Press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        Window().activateWindow();  // a box that has closed leaves no window active on this platform
        Settle();
        QTest::keyClick(Window().ListView1, static_cast<Qt::Key>(key), modifiers);
        Settle();
    }
    QWidget* Editor() { return Window().findChild<QWidget*>("frmURLData"); }

    /// The box that comes is answered with this button; its text is kept.
    void Answer(const char* button) {
        ASSERT_TRUE(QTest::qWaitFor([] { return QApplication::activeModalWidget() != nullptr; }));
        QWidget* box = QApplication::activeModalWidget();
        boxes_.push_back(S(box->windowTitle() + ": " + box->accessibleDescription()));
        QTest::keyClick(box->findChild<QWidget*>(button), Qt::Key_Space);
        ASSERT_TRUE(QTest::qWaitFor([] { return QApplication::activeModalWidget() == nullptr; }));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        Settle();
    }

    const QtDesktop first_;
    TestDatabase database_;
    std::unique_ptr<frmMonitor> window_;
    std::unique_ptr<Program> program_;
    std::vector<std::string> boxes_;
    int exits_ = 0;
    bool isService_ = false;
};

TEST_F(MonitorWindowTest, ShowsAllEntriesFromTheFirstStartOn) {
    database_.Add({.strDesc = "later", .dtNextCheck = DateTime::Of(2026, 11, 21, 15, 1, 0)});
    database_.Add({.strDesc = "sooner", .strCurStatus = "DOWN", .dtNextCheck = DateTime::Of(2026, 11, 21, 15, 0, 30)});
    Start();
    EXPECT_TRUE(Window().WindowVisible());
    EXPECT_EQ(S(Window().windowTitle()), "Korvane Network Monitoring & Server Monitor v1.0.0 by Brellix");
    Window().RefreshURLList();
    EXPECT_EQ(Cells(column::ShortName), (std::vector<std::string>{"sooner", "later"}));
    EXPECT_EQ(Window().lblServers->text(), "2");
    EXPECT_EQ(Cells(column::Status), (std::vector<std::string>{"DOWN 0 of 3", "UP"}));
    World().RunFor(2s);
    EXPECT_EQ(Window().lblTime->text(), "3:00:02 PM");
    EXPECT_TRUE(Holds(Status(), "3:00:01 PM - Waiting 2 minutes before monitoring begins."));
}

TEST_F(MonitorWindowTest, ARefreshKeepsTheSelectionAndTheOrder) {
    std::vector<std::int64_t> ids;
    for (const char* name : {"b", "C", "a", "10", "9"})
        ids.push_back(
            database_.Add({.strDesc = name, .dtNextCheck = DateTime::Of(2026, 11, 21, 15, 0, static_cast<int>(ids.size()))}));
    Start();
    Window().RefreshURLList();
    ASSERT_EQ(Selected(), "b");
    Press(Qt::Key_Down);
    ASSERT_EQ(Selected(), "C");
    // As clicks on the head of the column do.
    Window().ListView1->sortByColumn(column::ShortName, Qt::AscendingOrder);
    EXPECT_EQ(Cells(column::ShortName), (std::vector<std::string>{"10", "9", "a", "b", "C"}));
    Window().ListView1->sortByColumn(column::ShortName, Qt::DescendingOrder);
    EXPECT_EQ(Selected(), "C");
    database_.Remove("Servers", ids[0]);
    database_.Add({.strDesc = "z"});
    database_.Add({.strDesc = "0"});
    Window().RefreshURLList();
    EXPECT_EQ(Cells(column::ShortName), (std::vector<std::string>{"z", "C", "a", "9", "10", "0"}));
    EXPECT_EQ(Selected(), "C");
    database_.Remove("Servers", ids[1]);
    Window().RefreshURLList();
    EXPECT_EQ(Cells(column::ShortName), (std::vector<std::string>{"z", "a", "9", "10", "0"}));
}

TEST_F(MonitorWindowTest, TheStatusLogHasTheNewestOnTopAndAnEnd) {
    Start();
    Desk desk = TheProgram().run.TheDesk();
    desk.status.setStatusMSG("first\r\nwith two lines");
    desk.status.setStatusMSG("second");
    EXPECT_TRUE(Status().starts_with("3:00:00 PM - second\n3:00:00 PM - first : with two lines\n")) << Status();
    for (int i = 0; i < 400; ++i)
        desk.status.setStatusMSG("a line of fifty characters and the number " + std::to_string(10000 + i));
    EXPECT_EQ(Status().size(), 15000u);
    EXPECT_TRUE(Status().starts_with("3:00:00 PM - a line of fifty characters and the number 10399\n"));
    Window().MinimizeToTray();
    Settle();
    desk.status.setStatusMSG("nobody sees this");
    EXPECT_FALSE(Holds(Status(), "nobody sees this"));
    Window().mnuTraySettings_Click();
    EXPECT_TRUE(Holds(Status(), "3:00:00 PM - These status messages are updated only if Korvane is visible. Welcome Back.\n"));
    EXPECT_EQ(desk.collection.getKvSettingsColVal("bMinimized"), "False");
}

TEST_F(MonitorWindowTest, StopAndStartLeaveTheSameCaptionsFromEverywhere) {
    Start();
    const auto captions = [&] {
        QMenu& tray = Window().Tray().mnuTray();
        const auto mark = [&](const char* name) {
            const QAction& action = *tray.findChild<QAction*>(name);
            return S(action.text()) + (action.isChecked() ? "*" : "");
        };
        return S(Window().cmdStopStart->accessibleName()) + "|" + mark("mnuTrayOn") + "|" + mark("mnuTrayOff");
    };
    const std::string running = "Stop|&Monitoring ON*|&Pause Monitoring";
    const std::string stopped = "Start|Resume &Monitoring|Monitoring &Paused*";
    const auto trigger = [&](const char* name) { Window().Tray().mnuTray().findChild<QAction*>(name)->trigger(); };
    EXPECT_EQ(captions(), running);
    Press(Qt::Key_F9);
    EXPECT_EQ(captions(), stopped);
    EXPECT_TRUE(Status().starts_with(
        "3:00:00 PM - Monitoring Stopped\n3:00:00 PM - Stopped.  Click the Start button to resume monitoring.\n"));
    EXPECT_EQ(Window().lblCount->text(), "Monitoring Stopped");
    trigger("mnuTrayOff");
    EXPECT_EQ(captions(), stopped);
    trigger("mnuTrayOn");
    EXPECT_EQ(captions(), running);
    trigger("mnuTrayOn");
    EXPECT_EQ(captions(), running);
    EXPECT_EQ(Window().Tray().Icon().toolTip(), " Korvane: URL Monitoring is ON ");
    trigger("mnuTrayOff");
    EXPECT_EQ(captions(), stopped);
    EXPECT_EQ(Window().Tray().Icon().toolTip(),
              QString(" Korvane: URL Monitoring is Paused.  No Monitoring will occur. ").left(64));
}

TEST_F(MonitorWindowTest, TheStartButtonBlinksWhileMonitoringIsStopped) {
    Start();
    const auto hiddenOfTen = [&] {
        int hidden = 0;
        for (int second = 0; second < 10; ++second) {
            World().RunFor(1s);
            hidden += Window().cmdStopStart->graphicsEffect() != nullptr;
        }
        return hidden;
    };
    EXPECT_EQ(hiddenOfTen(), 0);
    Press(Qt::Key_F9);
    EXPECT_EQ(hiddenOfTen(), 2);
    Press(Qt::Key_F9);
    EXPECT_EQ(hiddenOfTen(), 0);
}

TEST_F(MonitorWindowTest, DeletesBehindAQuestionAndSelectsTheRowAfterIt) {
    for (const char* name : {"one", "two", "three"})
        database_.Add({.strDesc = name});
    Start();
    Window().RefreshURLList();
    Window().ListView1->selectionModel()->clearSelection();
    Press(Qt::Key_Delete);
    Answer("cmdOk");
    Press(Qt::Key_Down);
    ASSERT_EQ(Selected(), "two");
    Press(Qt::Key_Delete);
    Answer("cmdNo");
    EXPECT_EQ(Window().ListView1->model()->rowCount(), 3);
    EXPECT_EQ(Window().cmdStopStart->accessibleName(), "Start");
    Press(Qt::Key_Delete);
    Answer("cmdYes");
    EXPECT_EQ(Cells(column::ShortName), (std::vector<std::string>{"one", "three"}));
    EXPECT_EQ(Selected(), "three");
    const std::string question =
        "Korvane: Are you sure you want to Permanently Delete the two Server?\n\nChoosing Yes will Delete the entry.";
    EXPECT_EQ(boxes_,
              (std::vector<std::string>{"Korvane: Please click an entry in the list, then click delete.", question, question}));
}

TEST_F(MonitorWindowTest, CopiesTheSelectedRowAndSelectsTheCopy) {
    const auto id = database_.Add({.strDesc = "one"});
    Start();
    Window().RefreshURLList();
    Press(Qt::Key_C, Qt::ControlModifier);
    const std::string text = S(QApplication::clipboard()->text());
    EXPECT_TRUE(text.starts_with("01 \t" + std::to_string(id) + "\t") && Holds(text, "\tone\t")) << text;
    Press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Cells(column::ServerID).size(), 1u);
    for (const auto& [key, modifiers] :
         {std::pair{Qt::Key_D, Qt::ControlModifier}, {Qt::Key_Insert, Qt::ControlModifier}, {Qt::Key_Insert, Qt::ShiftModifier}})
        Press(key, modifiers);
    EXPECT_EQ(Cells(column::ServerID).size(), 4u);
    EXPECT_EQ(S(Window().ListView1->currentIndex().siblingAtColumn(column::ServerID).data().toString()),
              std::to_string(database_.Rows("Servers").back().at("id").Int64()));
}

TEST_F(MonitorWindowTest, OpensTheEditorOverItselfAndChecksGoOnBehindIt) {
    const auto id = database_.Add({.strDesc = "one", .strAddress_IP = "10.0.0.1"});
    Start();
    TheProgram().net.Host("10.0.0.1").Echo(3ms);
    Window().RefreshURLList();
    Window().Conversation().Show();  // a window that stands open beside it is no editor
    Press(Qt::Key_Return);
    ASSERT_NE(Editor(), nullptr);
    EXPECT_TRUE(Editor()->isVisible());
    EXPECT_EQ(Editor()->parentWidget(), &Window());
    EXPECT_TRUE(Editor()->isModal());
    EXPECT_FALSE(Window().IsAddUrl());
    Window().cmdAddURL_Click();  // the tray's way in while an editor is open
    EXPECT_EQ(Window().findChildren<QWidget*>("frmURLData").size(), 1);
    World().RunFor(150s);
    EXPECT_GE(database_.Server(id).at("nSuccess").Int32(), 1);
    QTest::keyClick(Editor(), Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    Settle();
    EXPECT_EQ(Editor(), nullptr);
    Window().activateWindow();
    Settle();
    EXPECT_TRUE(Window().ListView1->hasFocus());
    Press(Qt::Key_N, Qt::ControlModifier);
    ASSERT_NE(Editor(), nullptr);
    EXPECT_TRUE(Window().IsAddUrl());
    QTest::keyClick(Editor(), Qt::Key_Escape);
    Settle();
    EXPECT_FALSE(Window().IsAddUrl());
    EXPECT_EQ(Cells(column::ShortName).size(), 2u);
}

// Stop, Delete and Exit while a check waits: the check runs on its own, nothing is torn down under it.
TEST_F(MonitorWindowTest, CommandsInTheMiddleOfACheckAreSafe) {
    database_.Add({.strDesc = "web", .strAddress_IP = "10.0.0.1", .strType = "HTTP", .strPort = "80"});
    Start();
    TheProgram().net.Page("http://10.0.0.1").Answer("slow", 8s);
    Window().RefreshURLList();
    Press(Qt::Key_F5);
    World().After(2s, [&] {
        EXPECT_EQ(Cell(0, column::Status), "Requesting...");
        Press(Qt::Key_F9);
    });
    World().After(3s, [&] { Press(Qt::Key_Return); });
    World().After(4s, [&] { QTest::keyClick(Editor(), Qt::Key_Escape); });
    World().After(5s, [&] {
        Press(Qt::Key_Q, Qt::ControlModifier);
        Press(Qt::Key_Delete);
        Answer("cmdYes");
    });
    World().RunFor(20s);
    EXPECT_EQ(exits_, 1);
    EXPECT_EQ(database_.Count("Servers"), 0);
    EXPECT_EQ(Window().ListView1->model()->rowCount(), 0);
}

TEST_F(MonitorWindowTest, TheCloseBoxHidesAndMonitoringGoesOn) {
    const auto id = database_.Add({.strAddress_IP = "10.0.0.1"});
    Start();
    TheProgram().net.Host("10.0.0.1").Echo(3ms);
    Window().close();
    Settle();
    EXPECT_FALSE(Window().WindowVisible());
    EXPECT_TRUE(Window().isVisible());  // no notification area here: it stays in the task bar
    EXPECT_EQ(exits_, 0);
    World().RunFor(130s);
    EXPECT_EQ(database_.Server(id).at("nSuccess"), Value(1));
    EXPECT_EQ(TheProgram().run.TheDesk().collection.getKvSettingsColVal("bMinimized"), "True");
}

TEST_F(MonitorWindowTest, LaterStartsFindTheWindowAsItWas) {
    for (const char* name : {"two", "one"})
        database_.Add({.strDesc = name});
    Start();
    Window().SetWidth(15 * 700);
    Window().SetHeight(15 * 500);
    Window().ListView1->setColumnWidth(column::Group, 123);
    Window().ListView1->sortByColumn(column::ShortName, Qt::DescendingOrder);
    Window().BeforeExit();
    program_->run.mnuExit_Click();
    window_.reset();
    program_.reset();
    Start();
    EXPECT_TRUE(Window().WindowVisible()) << "no notification area here: it would be nowhere";
    EXPECT_EQ(Window().ListView1->columnWidth(column::Group), 123);
    EXPECT_EQ(Window().Width(), 15 * 700);
    EXPECT_EQ(Window().Height(), 15 * 500);
    Window().MinimizeToTray();
    Settle();
    Window().RefreshURLList();
    EXPECT_EQ(Window().ListView1->model()->rowCount(), 0);  // nobody looks, nothing is read
    Window().mnuTraySettings_Click();
    EXPECT_EQ(Cells(column::ShortName), (std::vector<std::string>{"two", "one"}));

    isService_ = true;
    window_.reset();
    program_.reset();
    Start();
    const std::string settings = ReadAll(database_.Folder() + "/kvurlwatchn.ini");
    Window().ListView1->setColumnWidth(column::Group, 150);
    Window().BeforeExit();
    program_->run.mnuExit_Click();
    EXPECT_EQ(ReadAll(database_.Folder() + "/kvurlwatchn.ini"), settings);
}

// Somebody opens a message or a question and goes home: the check that waits below it must not wait for them.
TEST_F(MonitorWindowTest, MonitoringGoesOnBehindMessagesAndQuestions) {
    const auto slow = database_.Add(
        {.strDesc = "slow", .strAddress_IP = "10.0.0.1", .strType = "HTTP", .strPort = "80", .nIntervalSeconds = 1});
    Start();
    TheProgram().net.Page("http://10.0.0.1").Answer("here", 3s);
    Window().RefreshURLList();
    Press(Qt::Key_F5);
    World().After(2s, [&] {
        Window().ShowMessage("Korvane", "one");
        Window().ShowMessage("Korvane", "two");
        Window().Ask(
            "Korvane", "three?", [] {}, [] {});
        Settle();
        EXPECT_NE(QApplication::activeModalWidget(), nullptr);
    });
    World().RunFor(20s);
    EXPECT_GE(database_.Server(slow).at("nSuccess").Int32(), 4);
    EXPECT_LT(database_.Server(slow).at("nAveResponse").Double(), 3100);
    Answer("cmdOk");
    Answer("cmdOk");
    Answer("cmdYes");
    EXPECT_EQ(boxes_, (std::vector<std::string>{"Korvane: one", "Korvane: two", "Korvane: three?"}));
}

TEST_F(MonitorWindowTest, CellsShowTextsAsTheyAreAndTipsThoseThatAreCut) {
    const auto id = database_.Add({.strGroup = "a group"});
    database_.Change("Servers", id, {{"strLastResponse", "<img src='/etc/x'>\r\n  two"}});
    Start();
    Window().RefreshURLList();
    const QModelIndex cell = Window().ListView1->model()->index(0, column::LastResponse);
    EXPECT_EQ(cell.data(), "<img src='/etc/x'>   two");
    EXPECT_EQ(cell.data(Qt::ToolTipRole).toString(), "<p style='white-space:pre-wrap'>&lt;img src='/etc/x'&gt;\n  two</p>");
    for (const bool cut : {false, true}) {
        QTreeView& list = *Window().ListView1;
        list.setColumnWidth(column::Group, cut ? 30 : 300);
        const QPoint at = list.visualRect(cell.siblingAtColumn(column::Group)).center();
        QHelpEvent pointed(QEvent::ToolTip, at, list.viewport()->mapToGlobal(at));
        QApplication::sendEvent(list.viewport(), &pointed);
        EXPECT_EQ(Holds(S(QToolTip::text()), "a group"), cut);
    }
}

// The room at a width of 1280 pixels, with a frame.
TEST_F(MonitorWindowTest, ColumnsAreAsWideAsTheirContentAndButtonsKeepTheirPlace) {
    for (int i = 0; i < 100; ++i)
        database_.Add(
            {.id = 112126150405 + i, .strDesc = "a name that is rather long", .strAddress_IP = "www.example.com/long/path"});
    Start();
    Window().resize(1240, 640);
    Window().RefreshURLList();
    QAbstractItemView& list = *Window().ListView1;
    Settle();
    EXPECT_EQ(list.horizontalScrollBar()->maximum(), 0);
    for (const int fits : {column::Number, column::ServerID})
        EXPECT_EQ(Window().ListView1->columnWidth(fits), list.sizeHintForColumn(fits));
    EXPECT_GT(Window().ListView1->columnWidth(column::LastResponse), Window().ListView1->columnWidth(column::ServerID));
    const QWidget& add = *Window().findChild<QWidget*>("cmdAddURL");
    World().RunFor(2s);
    ASSERT_TRUE(Window().cmdStopWaiting->isVisible());
    const QPoint place = add.pos();
    Press(Qt::Key_F5);
    World().RunFor(2s);
    EXPECT_FALSE(Window().cmdStopWaiting->isVisible());
    EXPECT_EQ(add.pos(), place);
}

TEST_F(MonitorWindowTest, TheKeyboardComesBackToTheListFromAResourceWindow) {
    Start();
    Press(Qt::Key_1, Qt::ControlModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow()->objectName() == "frmCPUMonitor"; }));
    QTest::keyClick(QApplication::activeWindow(), Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return Window().ListView1->hasFocus(); }));
}

TEST_F(MonitorWindowTest, SizesComeBackAsTheyWereAndStayOnTheScreen) {
    Start();
    const std::pair<int, int> saved[] = {{-5, 3310}, {3310, 3310}, {15 * 500 + 7, 15 * 500 + 7}, {99999999, 99999999}};
    for (const auto& [twips, kept] : saved) {
        Window().SetWidth(twips);
        Window().SetHeight(twips);
        Settle();
        EXPECT_EQ(Window().Width(), kept);
        EXPECT_EQ(Window().Height(), std::max(kept, 5030));
        EXPECT_LE(Window().frameGeometry().right(), Window().screen()->availableGeometry().right()) << twips;
        EXPECT_LE(Window().frameGeometry().bottom(), Window().screen()->availableGeometry().bottom()) << twips;
    }
    Window().resize(400, 400);
    EXPECT_EQ(Window().Width() + Window().Height(), 15 * 800);
}

TEST_F(MonitorWindowTest, TheFirstStartAsksOnceAndMonitorsTheAnswer) {
    std::vector<std::string> titles;
    StartForTheFirstTime();
    Window().Forms().ask = [&](const WizardPage& page) {
        titles.push_back(page.title);
        World().RunFor(10s);  // the wait for the start of monitoring stands still meanwhile
        return titles.size() == 1 ? "my.example/page" : titles.size() == 2 ? "me@my.example" : "";
    };
    Window().findChild<QCheckBox*>("ckDiskMon")->click();
    Settle();
    QWidget* const disks = QApplication::activeWindow();
    World().RunFor(1s);
    EXPECT_EQ(titles, (std::vector<std::string>{"Korvane Setup Question 1 of 3", "Korvane Setup Question 2 of 3",
                                                "Korvane Setup Question 3 of 3", "Korvane Setup Info 1 of 3",
                                                "Korvane Setup Info 2 of 3", "Korvane Setup Info 3 of 3"}));
    EXPECT_EQ(Cells(column::FullName), std::vector<std::string>{"my.example/page"});
    EXPECT_EQ(Window().lblCount->text(), "Waiting 120 seconds to start.");
    EXPECT_EQ(TheProgram().serviceManager.asked, std::vector<std::string>{"install Korvane"});
    EXPECT_TRUE(Window().Tray().mnuTray().findChild<QAction*>("mnuTrayNTService")->isChecked());
    EXPECT_EQ(disks->findChild<QLineEdit*>("txtEmail")->text(), "me@my.example") << "that was open";
    const std::size_t asked = titles.size();
    TheProgram().run.cmdStopStart();
    TheProgram().run.cmdStopStart();
    World().RunFor(200s);
    EXPECT_EQ(titles.size(), asked);
    EXPECT_EQ(TheProgram().run.TheDesk().settingsFile.Read("Setup", "Done", ""), "True");
}

TEST_F(MonitorWindowTest, EachCommandOpensItsDialogOnce) {
    Start();
    const struct {
        const char* command;
        const char* form;
    } cases[] = {{"mnuOptions", "frmOptions"},       {"mnuEditSettings", "frmOptions"},      {"mnuHelpAbout", "frmAbout"},
                 {"mnuHelpFeedback", "frmFeedback"}, {"mnuHelpTellFriend", "frmTellFriend"}, {"mnuHelpWeb", "frmHelp"}};
    for (const auto& [command, name] : cases) {
        SCOPED_TRACE(command);
        QAction* const action = Window().findChild<QAction*>(command);
        action->trigger();
        action->trigger();
        const auto forms = Window().findChildren<QDialog*>(name);
        ASSERT_EQ(forms.size(), 1);
        EXPECT_EQ(WithoutOwnKey(*forms.front()), "");
        forms.front()->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(Window().findChild<QDialog*>(name), nullptr);
        Settle();
    }
}

TEST_F(MonitorWindowTest, OpenSettingsFollowTheTray) {
    Start();
    Window().Forms().ShowOptions();
    auto* const form = Window().findChild<QDialog*>("frmOptions");
    TheProgram().run.Service().CheckTrayStartup();
    TheProgram().run.Service().CheckTrayNTService();
    for (const char* mark : {"chkStartup", "chkService"})
        EXPECT_TRUE(form->findChild<QCheckBox*>(mark)->isChecked()) << mark;
    EXPECT_TRUE(TheProgram().serviceManager.asked.empty()) << "a mark that follows is no click";
}

TEST_F(MonitorWindowTest, SavedSettingsReachTheInstalledService) {
    Start();
    TheProgram().serviceManager.installed.insert("Korvane");
    Window().Forms().ShowOptions();
    auto* const form = Window().findChild<QDialog*>("frmOptions");
    form->findChild<QLineEdit*>("txtReportPath")->setText("/srv/www/status");
    QTest::keyClick(form->findChild<QPushButton*>("cmdOk"), Qt::Key_Space);
    EXPECT_EQ(TheProgram().serviceManager.asked, std::vector<std::string>{"update Korvane"});
    EXPECT_EQ(TheProgram().serviceManager.program.folders, std::vector<std::string>{"/srv/www/status"});
}

TEST_F(MonitorWindowTest, TheTrayOffersWhatTheSystemHas) {
    Start();
    TheProgram().serviceManager.present = false;
    TheProgram().run.Service().LoadMarks();
    QMenu& menu = Window().Tray().mnuTray();
    EXPECT_FALSE(menu.findChild<QAction*>("mnuTrayNTService")->isVisible());
    menu.findChild<QAction*>("mnuTrayStartup")->trigger();
    Answer("cmdOk");
    EXPECT_TRUE(menu.findChild<QAction*>("mnuTrayStartup")->isChecked());
    EXPECT_EQ(TheProgram().autostart.names, std::set<std::string>{"Korvane"});
}

TEST_F(MonitorWindowTest, EveryControlHasANameAndEveryKeyOneMeaning) {
    Start();
    for (const QWidget* control : Window().findChildren<QWidget*>()) {
        if (control->focusPolicy() == Qt::NoFocus || !control->isVisibleTo(&Window()) || control->objectName().startsWith("qt_"))
            continue;
        EXPECT_FALSE(control->accessibleName().isEmpty()) << S(control->objectName()) << control->metaObject()->className();
    }
    // Alt and a letter: the menus of the bar and the buttons.
    std::map<std::string, std::string> windowKeys;
    const auto take = [&](const QString& text) {
        const std::string key = S(text.mid(text.indexOf('&') + 1, 1).toLower());
        EXPECT_TRUE(text.contains('&') && windowKeys.emplace(key, S(text)).second) << S(text) << " and " << windowKeys[key];
    };
    for (const QAction* menu : Window().menuBar()->actions())
        take(menu->text());
    for (const QPushButton* button : Window().findChildren<QPushButton*>())
        take(button->text());
    EXPECT_EQ(windowKeys["s"], "&Settings");
    for (const QMenu* menu : Window().menuBar()->findChildren<QMenu*>()) {
        std::map<std::string, std::string> keys;
        for (const QAction* action : menu->actions()) {
            if (action->isSeparator()) continue;
            const auto at = action->text().indexOf('&');
            if (at < 0) continue;
            const std::string key = S(action->text().mid(at + 1, 1).toLower());
            EXPECT_TRUE(keys.emplace(key, S(action->text())).second) << S(action->text()) << " and " << keys[key];
        }
    }
}

}  // namespace
}  // namespace korvane
