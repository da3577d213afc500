#include "shell/desktop/trace/trace_windows.h"

#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QScreen>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocumentFragment>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/desktop/small/dialog_parts.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/desktop/trace/long_lines.h"

namespace korvane {
namespace {

constexpr int kTraceColumns = 90;
constexpr int kLines = 28;

constexpr const char* kOldestHaveGone =
    "[The oldest lines of this window have gone: it keeps the newest 10,000,000 characters.]\n";

QString Ruled(const QString& text) {
    constexpr qsizetype kRule = 56;
    return text + "\n" + QString(kRule, '-') + "\n";
}

/// Returns the lowest of the dialogs over which it opens, which is the editor, or null if there is none.
const QWidget* EditorBelow(const QWidget* parent) {
    const QWidget* editor = nullptr;
    for (; parent != nullptr; parent = parent->parentWidget()) {
        if (qobject_cast<const QDialog*>(parent) != nullptr) editor = parent;
    }
    return editor;
}

}  // namespace

class TraceBox : public QPlainTextEdit {
public:
    explicit TraceBox(QWidget* parent) : QPlainTextEdit(parent) {
        setObjectName("txtTrace");
        setAccessibleName("Conversation");
        setReadOnly(true);
        setUndoRedoEnabled(false);
        setTabChangesFocus(true);
        setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    }

    void Append(const QString& text);

    QSize sizeHint() const override {
        return {fontMetrics().averageCharWidth() * kTraceColumns, fontMetrics().lineSpacing() * kLines};
    }

private:
    void DropOldest();
};

void TraceBox::Append(const QString& text) {
    QScrollBar& bar = *verticalScrollBar();
    const bool atEnd = bar.value() == bar.maximum();
    const QTextCursor top(firstVisibleBlock());  // moves with its line when the lines above it are dropped
    const int below = bar.value() - top.block().firstLineNumber();

    QTextCursor selection = textCursor();
    const int anchor = selection.anchor();
    const int position = selection.position();
    QTextCursor end(document());
    end.movePosition(QTextCursor::End);
    end.insertText(WithoutEndlessLines(text.right(kMostOfATrace)));
    selection.setPosition(anchor);  // so that new text does not lengthen a selection at the end
    selection.setPosition(position, QTextCursor::KeepAnchor);
    setTextCursor(selection);
    DropOldest();
    bar.setValue(atEnd ? bar.maximum() : top.block().firstLineNumber() + below);
}

// Drops more than the excess at once, so that a full window does not drop lines with each new one.
void TraceBox::DropOldest() {
    const int count = document()->characterCount();
    if (count <= kMostOfATrace) return;
    const int excess = count - kMostOfATrace / 4 * 3;
    const QTextBlock next = document()->findBlock(excess).next();
    QTextCursor oldest(document());
    oldest.setPosition(next.isValid() ? next.position() : excess, QTextCursor::KeepAnchor);
    oldest.insertText(kOldestHaveGone);
}

TraceWindow::TraceWindow(const char* name, const QString& title, QWidget* parent)
    : QDialog(parent), txtTrace_(new TraceBox(this)) {
    setObjectName(name);
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    setSizeGripEnabled(true);
    setWindowFlag(Qt::WindowMaximizeButtonHint);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(txtTrace_);
    layout->addWidget(NewButtons(this,
                                 {{"cmdCopy", "Co&py", QDialogButtonBox::ActionRole, [this] { cmdCopy_Click(); }},
                                  {"cmdClose", "&Close", QDialogButtonBox::RejectRole}},
                                 "cmdClose"));
    resize(sizeHint().boundedTo(screen()->availableSize() * 9 / 10));
}

void TraceWindow::Append(const QString& text) {
    txtTrace_->Append(text);
}

void TraceWindow::cmdCopy_Click() {
    const QTextCursor selection = txtTrace_->textCursor();
    QApplication::clipboard()->setText(selection.hasSelection() ? selection.selection().toPlainText() : txtTrace_->toPlainText());
}

frmReqRes::frmReqRes(QWidget* parent) : TraceWindow("frmReqRes", "Request and Response", parent) {
    if (const QWidget* const editor = EditorBelow(parent); editor != nullptr) PlaceBeside(*editor);
}

void frmReqRes::changeEvent(QEvent* event) {
    TraceWindow::changeEvent(event);
    if (event->type() != QEvent::ParentChange) return;
    const QWidget* const editor = EditorBelow(parentWidget());
    if (editor != nullptr && editor->frameGeometry().intersects(frameGeometry())) PlaceBeside(*editor);
}

void frmReqRes::PlaceBeside(const QWidget& editor) {
    const QRect screen = editor.screen()->availableGeometry();
    const QRect taken = editor.frameGeometry();
    const QSize frame = taken.size() - editor.size();  // this window gets a frame of the same size
    const QSize wanted = size() + frame;
    const int left = taken.left() - screen.left();
    const int right = screen.right() - taken.right();
    const bool goesRight = right >= std::min(left, wanted.width());
    const int room = goesRight ? right : left;
    const int width = room * 2 >= wanted.width() ? std::min(room, wanted.width()) : wanted.width();
    const int x =
        goesRight ? std::min(taken.right() + 1, screen.right() + 1 - width) : std::max(taken.left() - width, screen.left());
    resize(width - frame.width(), height());
    move(x, std::clamp(taken.top(), screen.top(), std::max(screen.top(), screen.bottom() + 1 - wanted.height())));
}

void ConversationViewer::setRequest(const std::string& text) {
    if (frmReqRes* form = TheForm()) form->Append(Ruled("Request ---> " + Lines(text) + " "));
}

void ConversationViewer::setResponse(const std::string& text) {
    // The window keeps no more than this, and a page may be many megabytes.
    const std::size_t kept = std::min(text.size(), std::size_t{4} * kMostOfATrace);
    if (frmReqRes* form = TheForm()) form->Append(Ruled("Response: " + Lines(std::string_view(text).substr(text.size() - kept))));
}

void MailTraceViewer::setMsg(const std::string& sent) {
    if (frmDebug* form = TheForm()) form->Append("\n-->'" + Lines(sent) + "'");
}

void MailTraceViewer::setReceiveMsg(const std::string& received) {
    if (frmDebug* form = TheForm()) form->Append("\n<--'" + Lines(received) + "'");
}

}  // namespace korvane
