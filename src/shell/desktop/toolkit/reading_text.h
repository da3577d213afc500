// Boxes of text to read, which can be selected and copied.
#pragma once

#include <QPlainTextEdit>
#include <QString>

namespace korvane {

/// Looks like a label, but it wraps any text and scrolls a text that is too long.
class ReadingText : public QPlainTextEdit {
public:
    explicit ReadingText(QWidget* parent);
    /// With space for this many lines; in a window that is too low for them, for two.
    ReadingText(const char* name, const QString& accessibleName, int lines, QWidget* parent);

    /// Use this instead of setPlainText: it breaks lines of more than 1000 characters.
    void SetText(const QString& text);

    /// Fits the size to the text, of up to `characters` average characters per line and `lines` lines; a longer text scrolls.
    void FitText(int characters, int lines);

protected:
    /// Copying with nothing selected is left to the window.
    void keyPressEvent(QKeyEvent* event) override;

private:
    int HeightOfLines(int lines) const;
};

/// The status log of the main window: the newest line at the top, and a limited length.
class StatusBox : public QPlainTextEdit {
public:
    StatusBox();

    /// Adds the line at the top and keeps 15000 characters in all. The view does not move while the operator reads older lines.
    void AddLine(const QString& line);
};

}  // namespace korvane
