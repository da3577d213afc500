#include "shell/desktop/glance/detail_text.h"

#include <QAbstractTextDocumentLayout>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextLayout>
#include <QToolTip>
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

bool DetailText::IsCut(const QTextBlock& line) const {
    if (wordWrapMode() != QTextOption::NoWrap || line.layout()->lineCount() == 0) return false;
    return line.layout()->lineAt(0).naturalTextWidth() - horizontalScrollBar()->value() > viewport()->width();
}

void DetailText::paintEvent(QPaintEvent* event) {
    QTextEdit::paintEvent(event);
    QPainter painter(viewport());
    const QString dots(QChar(0x2026));
    const double width = fontMetrics().horizontalAdvance(dots) + 1;
    for (QTextBlock line = document()->begin(); line.isValid(); line = line.next()) {
        if (!IsCut(line)) continue;
        const QRectF whole = document()->documentLayout()->blockBoundingRect(line);
        const QRectF end(viewport()->width() - width, whole.top() - verticalScrollBar()->value(), width, whole.height());
        painter.fillRect(end, palette().base());
        painter.drawText(end, Qt::AlignRight | Qt::AlignVCenter, dots);
    }
}

bool DetailText::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QTextEdit::viewportEvent(event);
    const auto& help = static_cast<const QHelpEvent&>(*event);
    const QTextBlock line = cursorForPosition(help.pos()).block();
    QToolTip::showText(help.globalPos(), IsCut(line) ? "<p>" + line.text().toHtmlEscaped() + "</p>" : "", viewport());
    return true;
}

void DetailText::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy) && !textCursor().hasSelection())
        event->ignore();
    else
        QTextEdit::keyPressEvent(event);
}

}  // namespace korvane
