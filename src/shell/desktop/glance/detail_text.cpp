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
namespace {

constexpr double kFewWords = 0.3;  ///< of the width
constexpr QStringView kEndsOfParts[] = {u"· ", u": ", u", "};

bool EndsPart(const QString& text, int at) {
    return std::ranges::any_of(kEndsOfParts, [&](QStringView end) { return QStringView(text).left(at).endsWith(end); });
}

/// Returns the margin by which the first of two lines ends after the last part that it has whole; 0 if nothing is to be done, or
/// the rest does not fit into one line.
double MarginForBreak(const QTextBlock& block) {
    const QTextLayout& layout = *block.layout();
    if (layout.lineCount() != 2) return 0;
    const QTextLine first = layout.lineAt(0), second = layout.lineAt(1);
    if (second.naturalTextWidth() > first.width() * kFewWords) return 0;
    int at = second.textStart() - 1;
    while (at > 0 && !EndsPart(block.text(), at))
        --at;
    const double kept = first.cursorToX(at), moved = first.cursorToX(second.textStart()) - kept;
    return moved + second.naturalTextWidth() < kept ? first.width() - kept : 0;
}

void SetRightMargin(const QTextBlock& block, double margin) {
    QTextBlockFormat format;
    format.setRightMargin(margin);
    QTextCursor(block).mergeBlockFormat(format);
}

}  // namespace

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
    BreakWell();
    const int end = document()->characterCount() - 1;
    QTextCursor cursor(document());
    cursor.setPosition(std::min(anchor, end));
    cursor.setPosition(std::min(position, end), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    verticalScrollBar()->setValue(scrolled);
}

void DetailText::BreakWell() {
    if (wordWrapMode() == QTextOption::NoWrap) return;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().rightMargin() > 0) SetRightMargin(block, 0);
        document()->documentLayout()->blockBoundingRect(block);  // lays it out
        if (const double margin = MarginForBreak(block); margin > 0) SetRightMargin(block, margin);
    }
}

void DetailText::resizeEvent(QResizeEvent* event) {
    QTextEdit::resizeEvent(event);
    BreakWell();
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
