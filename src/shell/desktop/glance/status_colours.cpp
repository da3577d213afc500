#include "shell/desktop/glance/status_colours.h"

#include <QEvent>
#include <QPlainTextEdit>
#include <QRegularExpression>

#include "shell/desktop/glance/state_colours.h"

namespace korvane {
namespace {

const QString kAfterTime = " - ";

/// What reports use when something did not work. "Updating Failure Report" and "Recent failure recorded" are no failures.
const QRegularExpression kFailureWords(
    "\\bfail(ed|s)\\b|\\bfailure[:!]|\\berror\\b|\\b(can't|couldn't|could not|cannot|did not|didn't|timed out|refused|not "
    "saved|set "
    "aside|is down)\\b",
    QRegularExpression::CaseInsensitiveOption);
const QRegularExpression kRule("^>?-{4,}$");

}  // namespace

StatusColours::StatusColours(QPlainTextEdit& box) : QSyntaxHighlighter(box.document()), box_(box) {
    box.installEventFilter(this);
}

bool StatusColours::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::PaletteChange) rehighlight();
    return QSyntaxHighlighter::eventFilter(watched, event);
}

// What a server answered to a check that passed may contain any word.
bool StatusColours::IsFailure(const QString& text) {
    return !text.startsWith("Success") && kFailureWords.match(text).hasMatch();
}

void StatusColours::highlightBlock(const QString& line) {
    const qsizetype at = line.indexOf(kAfterTime);
    const int start = at < 0 ? 0 : static_cast<int>(at + kAfterTime.size());
    const QString text = line.mid(start);
    const int length = static_cast<int>(text.size());
    setFormat(0, start, QuietInk(box_.palette()));
    if (kRule.match(text).hasMatch()) setFormat(start, length, box_.palette().color(QPalette::Disabled, QPalette::Text));
    if (IsFailure(text)) setFormat(start, length, ColoursOf(RowIcon::Bad, box_.palette()).ink);
}

}  // namespace korvane
