// The windows that text is added to: what they show, what they keep, and what becomes of them with their parent.
#include <QApplication>
#include <QClipboard>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTextBlock>

#include "desktop/desktop_test.h"
#include "shell/desktop/trace/conversation_viewer.h"
#include "shell/desktop/trace/mail_trace_viewer.h"

namespace korvane {
namespace {

class TraceWindowsTest : public testing::Test {
protected:
    TraceWindowsTest() { NeedDesktop(); }

    static TraceBox& Box(QWidget* form) { return *form->findChild<TraceBox*>("txtTrace"); }
    static void DeleteClosed() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    /// Writes numbered responses and lets the window lay them out.
    static void Write(ConversationViewer& viewer, int from, int to) {
        for (int i = from; i < to; ++i)
            viewer.setResponse("answer " + std::to_string(i));
        QCoreApplication::processEvents();
    }
};

const QString kRule = QString(56, '-') + "\n";

TEST_F(TraceWindowsTest, ShowsRequestsAndResponsesAndCopiesThem) {
    QWidget window;
    ConversationViewer viewer;
    viewer.setRequest("nobody looks on");
    viewer.SetParent(&window);
    viewer.Show();
    EXPECT_TRUE(viewer.Visible());
    EXPECT_EQ(WithoutOwnKey(*viewer.TheForm()), "");
    viewer.setRequest("GET /\r\n\r\n");
    viewer.setResponse("200 OK");
    const QString text = "Request ---> GET /\n\n \n" + kRule + "Response: 200 OK\n" + kRule;
    EXPECT_EQ(Box(viewer.TheForm()).toPlainText(), text);

    QApplication::setActiveWindow(viewer.TheForm());
    QTest::keyClick(viewer.TheForm(), Qt::Key_P, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return QApplication::clipboard()->text() == text; }));
    QTextCursor selection = Box(viewer.TheForm()).textCursor();
    selection.setPosition(static_cast<int>(text.size()) - 8, QTextCursor::MoveAnchor);
    selection.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
    Box(viewer.TheForm()).setTextCursor(selection);
    viewer.setRequest("which does not lengthen a selection at the end");
    QTest::mouseClick(viewer.TheForm()->findChild<QPushButton*>("cmdCopy"), Qt::LeftButton);
    EXPECT_EQ(QApplication::clipboard()->text(), kRule.right(8));

    viewer.Show();
    EXPECT_TRUE(Box(viewer.TheForm()).toPlainText().startsWith(text));  // the same window comes to the front
    QTest::keyClick(viewer.TheForm(), Qt::Key_Escape);
    DeleteClosed();
    EXPECT_EQ(viewer.TheForm(), nullptr);
    viewer.Show();
    EXPECT_EQ(Box(viewer.TheForm()).toPlainText(), "");
}

TEST_F(TraceWindowsTest, ShowsMailLineByLine) {
    MailTraceViewer viewer;
    viewer.setMsg("nobody looks on");
    viewer.Show();
    viewer.setMsg("EHLO me");
    viewer.setReceiveMsg("250-mail\r\n250 OK");
    EXPECT_EQ(Box(viewer.TheForm()).toPlainText(), "\n-->'EHLO me'\n<--'250-mail\n250 OK'");
}

TEST_F(TraceWindowsTest, StaysAtTheEndOrWhereItsReaderIs) {
    ConversationViewer viewer;
    viewer.Show();
    QScrollBar& bar = *Box(viewer.TheForm()).verticalScrollBar();
    Write(viewer, 0, 200);
    EXPECT_GT(bar.maximum(), 0);
    EXPECT_EQ(bar.value(), bar.maximum());
    bar.setValue(100);
    Write(viewer, 200, 300);
    EXPECT_EQ(bar.value(), 100);
}

TEST_F(TraceWindowsTest, KeepsALongSessionAndSaysWhenItsOldestLinesGo) {
    std::string page;
    while (page.size() < 1'500'000)
        page += std::to_string(page.size()) + std::string(90, '.') + "\n";
    ConversationViewer viewer;
    viewer.Show();
    TraceBox& box = Box(viewer.TheForm());
    QScrollBar& bar = *box.verticalScrollBar();
    for (int i = 0; i < 6; ++i)
        viewer.setResponse(page);
    EXPECT_TRUE(box.toPlainText().startsWith("Response: 0...")) << "nothing is cleared";
    bar.setValue(bar.maximum() / 10 * 9);
    const auto topLine = [&] { return box.cursorForPosition(QPoint(1, 1)).block().text(); };
    const QString read = topLine();
    viewer.setResponse(page + "the end");
    const QString text = box.toPlainText();
    EXPECT_LE(text.size(), kMostOfATrace);
    EXPECT_GE(text.size(), kMostOfATrace / 2);
    EXPECT_TRUE(text.startsWith("[The oldest lines of this window have gone: it keeps the newest 10,000,000 characters.]\n"));
    EXPECT_TRUE(text.endsWith("the end\n" + kRule));
    EXPECT_EQ(topLine(), read);
}

TEST_F(TraceWindowsTest, TheViewerOpensBesideTheEditorAndOnTheScreen) {
    for (const int width : {100, 300, 600}) {  // room for it, for a narrow one, and for none: the screen has 800
        QDialog editor;
        editor.setGeometry(10, 10, width, 300);
        editor.show();
        QDialog over(&editor);
        ConversationViewer viewer;
        viewer.SetParent(&over);
        viewer.Show();
        const QRect place = viewer.TheForm()->frameGeometry();
        EXPECT_EQ(place.intersects(editor.frameGeometry()), width == 600) << width;
        EXPECT_TRUE(editor.screen()->geometry().contains(place)) << width;
    }
}

TEST_F(TraceWindowsTest, GoesWithItsParentAndComesBackOverAnother) {
    ConversationViewer viewer;
    auto first = std::make_unique<QWidget>();
    viewer.SetParent(first.get());
    viewer.Show();
    viewer.setResponse("x");
    first->hide();
    viewer.setResponse("y");
    first.reset();
    EXPECT_FALSE(viewer.Visible());
    viewer.setRequest("z");
    viewer.Show();
    EXPECT_EQ(viewer.TheForm()->parentWidget(), nullptr);

    QWidget second;
    viewer.SetParent(&second);
    viewer.Show();
    EXPECT_EQ(viewer.TheForm()->parentWidget(), &second);
    EXPECT_TRUE(viewer.Visible());
}

}  // namespace
}  // namespace korvane
