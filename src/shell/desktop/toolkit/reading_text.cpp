#include "shell/desktop/toolkit/reading_text.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <QStyle>
#include <QTextBlock>
#include <QTextDocument>
#include <algorithm>
#include <cmath>

#include "shell/desktop/trace/long_lines.h"

namespace korvane {
namespace {

constexpr int kLongestLog = 15000;
constexpr int kLeastLines = 2;
constexpr int kSpare = 2;  ///< spare pixels, without which the box considers its last line cut off

void MakeReadable(QPlainTextEdit& box) {
    box.setReadOnly(true);
    box.setUndoRedoEnabled(false);
    box.setTabChangesFocus(true);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

}  // namespace

ReadingText::ReadingText(QWidget* parent) : QPlainTextEdit(parent) {
    MakeReadable(*this);
    setFrameShape(QFrame::NoFrame);
    setBackgroundRole(QPalette::Window);
    setForegroundRole(QPalette::WindowText);
    viewport()->setAutoFillBackground(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

ReadingText::ReadingText(const char* name, const QString& accessibleName, int lines, QWidget* parent) : ReadingText(parent) {
    setObjectName(name);
    setAccessibleName(accessibleName);
    setMinimumHeight(HeightOfLines(std::min(lines, kLeastLines)));
    setMaximumHeight(HeightOfLines(lines));
}

void ReadingText::SetText(const QString& text) {
    setPlainText(WithoutEndlessLines(text));
}

// Measured in a separate document, since this one is laid out only when it is visible.
void ReadingText::FitText(int characters, int lines) {
    const QString text = toPlainText();
    QTextDocument measured;
    measured.setDefaultFont(font());
    measured.setDocumentMargin(document()->documentMargin());
    QTextOption wrapping;
    wrapping.setWrapMode(wordWrapMode());
    measured.setDefaultTextOption(wrapping);
    measured.setPlainText(
        text.left(qsizetype{characters} * (lines + 1)));  // the rest of a megabyte of text cannot be seen at once
    measured.setTextWidth(fontMetrics().averageCharWidth() * characters);

    const int height = static_cast<int>(std::ceil(measured.size().height())) + kSpare + 2 * frameWidth();
    const int most = HeightOfLines(lines);
    const bool scrolls = height > most;
    // A scroll bar that appears would reduce the width for wrapping, and would then become necessary.
    setVerticalScrollBarPolicy(scrolls ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    const int scrollBar = scrolls ? style()->pixelMetric(QStyle::PM_ScrollBarExtent) : 0;
    const int margins = 2 * (frameWidth() + static_cast<int>(std::ceil(document()->documentMargin())));
    setMinimumWidth(static_cast<int>(std::ceil(measured.idealWidth())) + margins + scrollBar);
    setFixedHeight(std::min(height, most));
}

int ReadingText::HeightOfLines(int lines) const {
    const double text = QFontMetricsF(font()).lineSpacing() * lines;
    return static_cast<int>(std::ceil(text + 2 * document()->documentMargin())) + kSpare + 2 * frameWidth();
}

void ReadingText::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy) && !textCursor().hasSelection())
        event->ignore();
    else
        QPlainTextEdit::keyPressEvent(event);
}

StatusBox::StatusBox() {
    MakeReadable(*this);
}

void StatusBox::AddLine(const QString& line) {
    QScrollBar& bar = *verticalScrollBar();
    const QTextCursor reading(firstVisibleBlock());
    const int below = bar.value() - firstVisibleBlock().firstLineNumber();
    const bool atTop = bar.value() == 0;
    QTextCursor cursor(document());
    cursor.insertText(line + "\n");
    if (document()->characterCount() - 1 > kLongestLog) {
        cursor.setPosition(kLongestLog);
        cursor.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
    }
    bar.setValue(atTop ? 0 : reading.block().firstLineNumber() + below);
}

}  // namespace korvane
