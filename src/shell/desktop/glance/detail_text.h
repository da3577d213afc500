// Formatted text to read, which can be selected and copied. Lines that do not wrap end in dots where they are cut; a tool tip has
// them whole.
#pragma once

#include <QTextBlock>
#include <QTextEdit>

namespace korvane {

class DetailText : public QTextEdit {
public:
    DetailText(const char* name, const QString& accessibleName, QWidget* parent);
    /// A new text keeps the place of what is selected.
    void Show(const QString& html);
    QSize minimumSizeHint() const override { return {0, 0}; }

protected:
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    /// Copying with nothing selected is left to the window.
    void keyPressEvent(QKeyEvent* event) override;

private:
    /// The line goes on beyond the right edge.
    bool IsCut(const QTextBlock& line) const;
    /// Ends the first line of two where a part of the sentence ends, if only a word or two would be left for the second.
    void BreakWell();

    QString html_;
};

}  // namespace korvane
