// The dialog of the global addresses: what its commands write, and what Return does where.
#include "shell/desktop/settings/frm_global_email.h"

#include <QLabel>
#include <QPlainTextEdit>

#include "desktop/desktop_test.h"
#include "shell/global_email_monitors.h"

namespace korvane {
namespace {

using Strings = std::vector<std::string>;

class FrmGlobalEmail : public DialogTest<frmGlobalEmail> {
protected:
    ~FrmGlobalEmail() override { Destroy(); }

    void Open() {
        Show(new frmGlobalEmail(TheDesk(), monitors, nullptr));
        QApplication::setActiveWindow(TheDialog());
    }
    void Type(const char* name, const char* text) {
        Box(name).setFocus();
        Box(name).selectAll();
        QTest::keyClicks(&Box(name), text);
    }
    std::string Shown() {
        return S(Get<QLabel>("lblTitle").text() + " " + Box("txtEmailList1").text() + " " + Get<QLabel>("lblPosition").text());
    }
    std::string List(std::int64_t id) { return Database().Server(id).at("strEmailList1").Text(); }
    std::int64_t AddServer(const char* name, const char* list) {
        const std::int64_t id = Database().Add({.strDesc = name});
        Database().Change("Servers", id, {{"strEmailList1", list}});
        return id;
    }

    RecordedMonitors monitors;
};

TEST_F(FrmGlobalEmail, WalksAndUpdatesOneServer) {
    const std::int64_t first = AddServer("mail", "a@x");
    const std::int64_t second = AddServer("web", "b@x");
    Open();
    EXPECT_EQ(WithoutOwnKey(*TheDialog()), "");
    EXPECT_EQ(Shown(), "mail a@x Server: 1 of 2");
    for (const auto& [move, shown] : {std::pair{"cmdNext", "web b@x Server: 2 of 2"},
                                      {"cmdPrevious", "mail a@x Server: 1 of 2"},
                                      {"cmdLast", "web b@x Server: 2 of 2"},
                                      {"cmdFirst", "mail a@x Server: 1 of 2"},
                                      {"cmdNext", "web b@x Server: 2 of 2"}}) {
        Click(move);
        EXPECT_EQ(Shown(), shown) << move;
    }
    Type("txtEmailList1", "c@x");
    QTest::keyClick(&Box("txtEmailList1"), Qt::Key_Return);
    EXPECT_EQ(List(second), "c@x");
    EXPECT_EQ(List(first), "a@x");
    EXPECT_TRUE(monitors.calls.empty());
    QTest::keyClick(&Box("txtEmailList1"), Qt::Key_Escape);
    EXPECT_TRUE(IsGone());
}

TEST_F(FrmGlobalEmail, SavesTheGlobalValuesAndGivesThemToAll) {
    const std::int64_t ids[] = {AddServer("mail", "a@x"), AddServer("web", "b@x")};
    monitors.emails[ResourceMonitor::Disk] = "disk@x";
    Open();
    EXPECT_EQ(Box("txtEmailDisk").text(), "disk@x");
    Type("txtToList1", "ops@x");
    Type("txtEmailCPU", "cpu@x");
    QTest::keyClick(&Box("txtEmailCPU"), Qt::Key_Return);
    EXPECT_EQ(monitors.calls, (Strings{"0 cpu@x", "1 disk@x", "2 ", "3 ", "LoadData"}));
    EXPECT_EQ(ReadAll(Database().Folder() + "/GlobalEmail.dat"), "TO_LIST1=ops@x\r\nTO_LIST2=\r\nFROM=\r\nSUBJECT=\r\n");
    EXPECT_EQ(Person().messages.back().text, "Data updated");
    EXPECT_EQ(List(ids[0]), "a@x");
    for (const bool yes : {false, true}) {
        Person().answers = {yes};
        Click("cmdUpdateAll");
        EXPECT_EQ(List(ids[0]) + " " + List(ids[1]), yes ? "ops@x ops@x" : "a@x b@x");
        EXPECT_EQ(Shown(), yes ? "web ops@x Server: 2 of 2" : "mail a@x Server: 1 of 2");
    }
}

TEST_F(FrmGlobalEmail, SaysThatThereIsNoServer) {
    Open();
    EXPECT_EQ(Shown(), "  Server: 0 of 0");
    Click("cmdUpdateServer");
    EXPECT_EQ(Person().messages.back().text, "No server record is current");
}

}  // namespace
}  // namespace korvane
