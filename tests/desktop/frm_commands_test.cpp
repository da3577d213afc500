// The ten rules of an entry, with the keyboard: from opening to what the database holds afterwards.
#include "shell/desktop/editor/frm_commands.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>

#include "desktop/desktop_test.h"

namespace korvane {
namespace {

class FrmCommandsTest : public DesktopTest {
protected:
    void Open(const std::vector<std::string>& texts = {}) {
        id_ = Database().Add({.strDesc = "shop"});
        int row = 11;
        for (const std::string& text : texts)
            Database().AddRow("ResponseFailText",
                              {{"id", row++}, {"idParent", id_}, {"strFailText", text}, {"strFailCommand", "run " + text}});
        OpenOn(id_);
    }

    void OpenOn(std::int64_t id) {
        form_ = new frmCommands(TheDesk(), Database().ProviderString(), 3, std::to_string(id), &window_);
        form_->open();
        QApplication::setActiveWindow(form_);
    }

    QLineEdit& Box(const char* name) { return *form_->findChild<QLineEdit*>(name); }
    void Click(const char* name) { QTest::mouseClick(form_->findChild<QPushButton*>(name), Qt::LeftButton); }
    void Press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
    void Type(const char* text) { QTest::keyClicks(QApplication::focusWidget(), text); }
    std::string Help() { return form_->findChild<QPlainTextEdit*>("lblHelp")->toPlainText().toStdString(); }
    bool Closed() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return form_ == nullptr;
    }

    std::vector<std::string> Stored() {
        std::vector<std::string> rows;
        for (const Row& row : Database().Rows("ResponseFailText"))
            rows.push_back(row.at("strFailText").Text() + "|" + row.at("strFailCommand").Text());
        return rows;
    }

    QWidget window_;
    QPointer<frmCommands> form_;
    std::int64_t id_ = 0;
};

TEST_F(FrmCommandsTest, ShowsTheStoredRulesAndOpensTheirCommands) {
    Open({"Error 500", "can't be reached"});
    EXPECT_EQ(form_->ListPosition(), 3);
    EXPECT_EQ(Box("txtSuccess1").text(), "can't be reached");
    EXPECT_EQ(Box("txtCommand1").text(), "run can't be reached");
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(Box(("txtCommand" + std::to_string(i)).c_str()).isEnabled(), i < 2) << i;
    EXPECT_TRUE(Box("txtSuccess0").hasFocus());
    EXPECT_EQ(Help(), FailTextHelp());
}

TEST_F(FrmCommandsTest, TypingExplainsAndOpensTheCommand) {
    Open();
    Type("down");
    EXPECT_TRUE(Box("txtCommand0").isEnabled());
    Press(Qt::Key_Tab);
    EXPECT_TRUE(Box("txtCommand0").hasFocus());
    EXPECT_EQ(Help(), FailCommandHelp({"down", ""}));
    Type("restart.sh");
    EXPECT_EQ(Help(), FailCommandHelp({"down", "restart.sh"}));
    Press(Qt::Key_Tab);
    EXPECT_TRUE(Box("txtSuccess1").hasFocus());
    EXPECT_EQ(Help(), FailTextHelp());
    Press(Qt::Key_Tab);
    EXPECT_TRUE(Box("txtSuccess2").hasFocus());  // the command of a rule without a text is passed over
    Box("txtSuccess0").setFocus();
    QTest::keyClicks(&Box("txtSuccess0"), "\b\b\b\b");
    EXPECT_FALSE(Box("txtCommand0").isEnabled());

    Press(Qt::Key_Return);
    EXPECT_TRUE(Closed());
    EXPECT_TRUE(Stored().empty());
}

TEST_F(FrmCommandsTest, ReturnSavesAndEscapeDoesNot) {
    Open({"a", "b"});
    Box("txtSuccess0").selectAll();
    Type("A");
    Press(Qt::Key_Escape);
    EXPECT_TRUE(Closed());
    EXPECT_EQ(Stored(), (std::vector<std::string>{"a|run a", "b|run b"}));

    OpenOn(id_);
    Box("txtSuccess0").clear();
    Box("txtSuccess4").setFocus();
    Type("new");
    Press(Qt::Key_Return);
    EXPECT_TRUE(Closed());
    EXPECT_EQ(Stored(), (std::vector<std::string>{"b|run b", "new|"}));
    EXPECT_EQ(Database().Server(id_).at("nFailScanText"), Value(2));
}

TEST_F(FrmCommandsTest, AnEntryThatIsGoneIsToldOnceAndSavingEndsAsEver) {
    Open();
    form_->close();
    OpenOn(id_ + 50);
    QCoreApplication::processEvents();
    EXPECT_EQ(Person().messages,
              (std::vector<RecordingOperator::Message>{{"Korvane", "can't find record with id " + std::to_string(id_ + 50)}}));
    Type("text");
    Click("cmdOk");
    EXPECT_TRUE(Closed());
    EXPECT_TRUE(Stored().empty());
}

TEST_F(FrmCommandsTest, HelpIsAMessage) {
    Open();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_H, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !Person().messages.empty(); }));
    EXPECT_EQ(Person().messages, (std::vector<RecordingOperator::Message>{{"Korvane", FailTextRulesHelp()}}));
    EXPECT_FALSE(Closed());
}

}  // namespace
}  // namespace korvane
