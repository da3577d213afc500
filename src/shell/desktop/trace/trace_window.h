// Room `trace`: the windows that show conversations as they happen.
//
// A read-only window to which text is added while it is open, in a fixed-width font, with a limit that no ordinary session
// reaches, so that it may stay open for a year.
#pragma once

#include <QDialog>
#include <QPlainTextEdit>

namespace korvane {

/// Characters that are kept. The oldest lines are dropped first, and a line at the top says so.
constexpr int kMostOfATrace = 10'000'000;

/// Follows the end if it shows the end, and otherwise stays on the same lines. A selection stays.
class TraceBox : public QPlainTextEdit {
public:
    explicit TraceBox(QWidget* parent);

    /// Line ends are "\n"; lines of more than 1000 characters are broken.
    void Append(const QString& text);

    QSize sizeHint() const override;

private:
    void DropOldest();
};

/// The box with a Copy and a Close command; modeless, deleted when it is closed.
class TraceWindow : public QDialog {
public:
    TraceWindow(const QString& title, QWidget* parent);

protected:
    void Append(const QString& text) { txtTrace_->Append(text); }

private:
    void cmdCopy_Click();

    TraceBox* txtTrace_;
};

}  // namespace korvane
