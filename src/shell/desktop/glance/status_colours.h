// The colours of the status log: lines that report a failure stand out, times and rules of dashes step back. The text itself is
// never changed.
#pragma once

#include <QSyntaxHighlighter>

class QPlainTextEdit;

namespace korvane {

class StatusColours : public QSyntaxHighlighter {
public:
    explicit StatusColours(QPlainTextEdit& box);

    /// Whether the text of a line, without its time, reports a failure.
    static bool IsFailure(const QString& text);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void highlightBlock(const QString& line) override;

private:
    QPlainTextEdit& box_;
};

}  // namespace korvane
