// Formatted text to read, which can be selected and copied.
#pragma once

#include <QTextEdit>

namespace korvane {

class DetailText : public QTextEdit {
public:
    DetailText(const char* name, const QString& accessibleName, QWidget* parent);
    /// A new text keeps the place of what is selected.
    void Show(const QString& html);
    QSize minimumSizeHint() const override { return {0, 0}; }

protected:
    /// Copying with nothing selected is left to the window.
    void keyPressEvent(QKeyEvent* event) override;

private:
    QString html_;
};

}  // namespace korvane
