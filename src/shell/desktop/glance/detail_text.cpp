#include "shell/desktop/glance/detail_text.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <algorithm>

namespace korvane {

DetailText::DetailText(const char* name, const QString& accessibleName, QWidget* parent) : QTextEdit(parent) {
    setObjectName(name);
    setAccessibleName(accessibleName);
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(0);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
}

void DetailText::Show(const QString& html) {
    if (html == html_) return;
    html_ = html;
    const int anchor = textCursor().anchor(), position = textCursor().position();
    const int scrolled = verticalScrollBar()->value();
    setHtml(html);
    const int end = document()->characterCount() - 1;
    QTextCursor cursor(document());
    cursor.setPosition(std::min(anchor, end));
    cursor.setPosition(std::min(position, end), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    verticalScrollBar()->setValue(scrolled);
}

void DetailText::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy) && !textCursor().hasSelection())
        event->ignore();
    else
        QTextEdit::keyPressEvent(event);
}

}  // namespace korvane
