#include "shell/desktop/trace/trace_window.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocumentFragment>
#include <QVBoxLayout>

#include "shell/desktop/trace/long_lines.h"

namespace korvane {
namespace {

constexpr int kTraceColumns = 90;
constexpr int kLines = 28;

constexpr const char* kOldestHaveGone =
    "[The oldest lines of this window have gone: it keeps the newest 10,000,000 characters.]\n";

}  // namespace

TraceBox::TraceBox(QWidget* parent) : QPlainTextEdit(parent) {
    setObjectName("txtTrace");
    setAccessibleName("Conversation");
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

QSize TraceBox::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    return {metrics.averageCharWidth() * kTraceColumns, metrics.lineSpacing() * kLines};
}

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

TraceWindow::TraceWindow(const QString& title, QWidget* parent) : QDialog(parent), txtTrace_(new TraceBox(this)) {
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    setSizeGripEnabled(true);
    setWindowFlag(Qt::WindowMaximizeButtonHint);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* cmdCopy = buttons->addButton("Co&py", QDialogButtonBox::ActionRole);
    cmdCopy->setObjectName("cmdCopy");
    cmdCopy->setAutoDefault(false);
    connect(cmdCopy, &QPushButton::clicked, this, [this] { cmdCopy_Click(); });
    QPushButton* cmdClose = buttons->addButton("&Close", QDialogButtonBox::RejectRole);
    cmdClose->setObjectName("cmdClose");
    cmdClose->setDefault(true);
    connect(cmdClose, &QPushButton::clicked, this, [this] { close(); });

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(txtTrace_);
    layout->addWidget(buttons);
    cmdClose->setFocus();
    resize(sizeHint().boundedTo(screen()->availableSize() * 9 / 10));
}

void TraceWindow::cmdCopy_Click() {
    const QTextCursor selection = txtTrace_->textCursor();
    QApplication::clipboard()->setText(selection.hasSelection() ? selection.selection().toPlainText() : txtTrace_->toPlainText());
}

}  // namespace korvane
