// Text to read in a dialog: it looks like a label, but it wraps anything, scrolls what is too long for it, and can be selected
// and copied.
#pragma once

#include <QPlainTextEdit>

namespace korvane {

class ReadingText : public QPlainTextEdit {
public:
    explicit ReadingText(QWidget* parent);

    /// Use this in place of setPlainText: lines of more than 1000 characters are broken.
    void SetText(const QString& text);

    /// Always room for this many lines.
    void SetLines(int lines);

    /// Room for the text at its width, of up to `characters` average ones and `lines` lines; a longer text scrolls.
    void FitText(int characters, int lines);

protected:
    /// Copy with nothing selected is left to the window.
    void keyPressEvent(QKeyEvent* event) override;

private:
    int HeightOfLines(int lines) const;
};

}  // namespace korvane
