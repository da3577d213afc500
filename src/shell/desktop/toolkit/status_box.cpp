#include "shell/desktop/toolkit/status_box.h"

#include <QScrollBar>
#include <QTextBlock>

namespace korvane {
namespace {

constexpr int kLongest = 15000;

}  // namespace

StatusBox::StatusBox() {
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void StatusBox::AddLine(const QString& line) {
    QScrollBar& bar = *verticalScrollBar();
    const QTextCursor reading(firstVisibleBlock());
    const int below = bar.value() - firstVisibleBlock().firstLineNumber();
    const bool atTop = bar.value() == 0;
    QTextCursor cursor(document());
    cursor.insertText(line + "\n");
    if (document()->characterCount() - 1 > kLongest) {
        cursor.setPosition(kLongest);
        cursor.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
    }
    bar.setValue(atTop ? 0 : reading.block().firstLineNumber() + below);
}

}  // namespace korvane
