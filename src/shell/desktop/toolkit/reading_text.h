// Text to read in a dialog: it looks like a label, but it wraps any text, scrolls a text that is too long, and can be selected
// and copied.
#pragma once

#include <QPlainTextEdit>

namespace korvane {

class ReadingText : public QPlainTextEdit {
public:
    explicit ReadingText(QWidget* parent);

    /// Use this instead of setPlainText: it breaks lines of more than 1000 characters.
    void SetText(const QString& text);

    /// Reserves space for this many lines.
    void SetLines(int lines);

    /// Fits the size to the text, of up to `characters` average characters per line and `lines` lines; a longer text scrolls.
    void FitText(int characters, int lines);

protected:
    /// Copying with nothing selected is left to the window.
    void keyPressEvent(QKeyEvent* event) override;

private:
    int HeightOfLines(int lines) const;
};

}  // namespace korvane
