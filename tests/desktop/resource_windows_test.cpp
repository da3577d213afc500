// The windows on this machine's own resources: shown, hidden and made anew, their settings, and the grid of services.
#include "shell/desktop/monitors/resource_windows.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>

#include "desktop/desktop_test.h"
#include "resources/cpu_settings.h"
#include "resources/service_settings.h"
#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

class ResourceWindowsTest : public DesktopTest {
protected:
    ResourceWindowsTest() { windows_.Load(); }

    ResourceForm& Open(ResourceMonitor monitor) {
        windows_.Show(monitor, true);
        ResourceForm& form = *windows_.Form(monitor);
        Activate(&form);
        if (auto* expand = form.findChild<QPushButton*>("cmdExpand"); !expand->isChecked()) expand->click();
        return form;
    }
    static void Activate(QWidget* window) {
        QApplication::setActiveWindow(window);
        QApplication::processEvents();
    }
    static void Settle() {
        QApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    VirtualWorld& World() { return TheProgram().world; }

    std::vector<ResourceMonitor> hidden_;
    ResourceWindows windows_{TheDesk(), [this](ResourceMonitor monitor) { hidden_.push_back(monitor); }};
};

TEST_F(ResourceWindowsTest, ClosingHidesAllButThatOfTheMemoryWhichGoes) {
    for (const ResourceMonitor monitor : kResourceMonitors) {
        ASSERT_NE(windows_.Form(monitor), nullptr);
        EXPECT_FALSE(windows_.Form(monitor)->isVisible());
        EXPECT_EQ(WithoutOwnKey(Open(monitor)), "");
        windows_.Form(monitor)->close();
        Settle();
        EXPECT_EQ(windows_.Form(monitor) == nullptr, monitor == ResourceMonitor::Memory);
    }
    EXPECT_EQ(hidden_, std::vector(kResourceMonitors.begin(), kResourceMonitors.end()));
    EXPECT_EQ(S(Open(ResourceMonitor::Memory).findChild<QLabel*>("lblShare")->text()), "Usage:25%");
    windows_.LoadData();
}

TEST_F(ResourceWindowsTest, TheLoadIsSampledFromTheFirstOpeningOnAndSettingsComeBackFromTheirFile) {
    const auto label = [&] { return S(windows_.Form(ResourceMonitor::CPU)->findChild<QLabel*>("lblLoad")->text()); };
    World().RunFor(10s);
    EXPECT_EQ(label(), "-");
    ResourceForm& form = Open(ResourceMonitor::CPU);
    TheProgram().systemInfo.Work(40);
    World().RunFor(3s);
    EXPECT_EQ(label(), "40%");
    form.findChild<QComboBox*>("cboAlert")->setCurrentText("85");
    form.findChild<QComboBox*>("cboDuration")->setCurrentText("5");
    QTest::keyClicks(form.findChild<QLineEdit*>("txtEmail"), "me@example.com");
    form.findChild<QPushButton*>("cmdSave")->click();
    ASSERT_FALSE(Person().messages.empty());
    EXPECT_EQ(Person().messages.back().text, "Settings updated");
    clsCPUMon file(TheProgram().files, TheDesk().dir);
    file.OpenFile();
    EXPECT_EQ(file.getAlert() + " " + file.getDuration() + " " + file.getEmail(), "85 5 me@example.com");

    form.findChild<QComboBox*>("cboAlert")->setCurrentText("10");
    QWidget elsewhere;
    elsewhere.show();
    Activate(&elsewhere);
    Activate(&form);
    EXPECT_EQ(S(form.findChild<QComboBox*>("cboAlert")->currentText()), "85") << "what was not saved is lost on the way back";
    form.findChild<QCheckBox*>("ckDisable")->setChecked(true);
    form.findChild<QPushButton*>("cmdSave")->click();
    TheProgram().systemInfo.Work(90);
    World().RunFor(10s);
    EXPECT_EQ(label(), "40%") << "a disabled monitor takes no samples";
}

TEST_F(ResourceWindowsTest, ARefusedAddressGetsTheFocus) {
    ResourceForm& form = Open(ResourceMonitor::Disk);
    auto* const test = form.findChild<QPushButton*>("cmdTest");
    test->setFocus();
    test->click();
    ASSERT_FALSE(Person().messages.empty());
    EXPECT_EQ(Person().messages.back().text, "The email id entered is not a valid email id");
    auto* const address = form.findChild<QLineEdit*>("txtEmail");
    EXPECT_EQ(QApplication::focusWidget(), address);
    EXPECT_NE(S(address->accessibleDescription()), "") << "it is marked, and why";
    EXPECT_TRUE(test->isEnabled());
    QWidget elsewhere;
    elsewhere.show();
    Activate(&elsewhere);
    Activate(&form);
    EXPECT_EQ(S(address->accessibleDescription()), "") << "what is in the file has not been refused";
    Open(ResourceMonitor::Memory).findChild<QPushButton*>("cmdTest")->click();
    EXPECT_FALSE(windows_.Form(ResourceMonitor::Memory)->findChild<QPushButton*>("cmdTest")->isEnabled());
}

TEST_F(ResourceWindowsTest, AMessageOverTheWindowLosesNothingThatWasTyped) {
    ResourceForm& form = Open(ResourceMonitor::CPU);
    auto* const address = form.findChild<QLineEdit*>("txtEmail");
    QTest::keyClicks(address, "me@example.com");
    QDialog message;
    message.setModal(true);
    message.show();
    Activate(&message);
    message.close();
    Activate(&form);
    EXPECT_EQ(S(address->text()), "me@example.com");
    message.show();
    Activate(&message);
    form.close();
    message.close();
    Open(ResourceMonitor::CPU);
    EXPECT_EQ(S(address->text()), "") << "opened anew it has what is in its file";
}

TEST_F(ResourceWindowsTest, ServicesAreMarkedByClickAndKeyExceptTheFirst) {
    for (const char* name : {"a.service", "b.service", "c.service"})
        TheProgram().services.Set(name, ServiceRecord::kRunning);
    ResourceForm& form = Open(ResourceMonitor::Services);
    World().RunFor(1s);
    auto* const grid = form.findChild<QTableWidget*>("grdSvc");
    ASSERT_EQ(grid->rowCount(), 4) << "a row for each, and a blank one";
    for (const auto& [column, proportion] : {std::pair{0, 3000}, {2, 2000}, {3, 2000}})
        EXPECT_EQ(grid->columnWidth(column), grid->columnWidth(1) * proportion / 600);
    const auto click = [&](int row) {
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(grid->model()->index(row, 1)).center());
    };
    const auto marks = [&] {
        std::string all;
        for (int row = 0; row < 3; ++row)
            all += grid->item(row, 1)->checkState() == Qt::Checked ? 'x' : '-';
        return all;
    };
    for (int row = 0; row < 4; ++row)
        click(row);
    EXPECT_EQ(marks(), "-xx");
    grid->setCurrentCell(2, 0);
    QTest::keyClick(grid, Qt::Key_Space);
    EXPECT_EQ(marks(), "-x-");
    form.findChild<QPushButton*>("cmdSave")->click();
    clsSvcMon file(TheProgram().files, TheDesk().dir);
    file.OpenFile();
    EXPECT_EQ(*file.getSvcList(), std::vector<std::string>{"b.service"});
    TheProgram().services.Set("b.service", ServiceRecord::kStopped);
    World().RunFor(61s);
    EXPECT_EQ(S(grid->item(1, 2)->text()), "Stopped");
    TheProgram().services.whyNot = "There is no service manager here.";
    World().RunFor(61s);
    EXPECT_EQ(S(form.findChild<QLabel*>("lblWhyNot")->text()), "There is no service manager here.");
}

}  // namespace
}  // namespace korvane
