#include "shell/desktop/toolkit/spoken_figures.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QLabel>
#include <QPixmap>
#include <algorithm>

namespace korvane {
namespace {

/// A text that can be read but has no cursor and no selection.
class SpokenFigure : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit SpokenFigure(QLabel* label) : QAccessibleWidget(label, QAccessible::StaticText), label_(*label) {}

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? label_.text() : QAccessibleWidget::text(kind);
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface*>(this)
                                                  : QAccessibleWidget::interface_cast(type);
    }

    QString text(int from, int to) const override { return label_.text().mid(from, std::max(0, to - from)); }
    int characterCount() const override { return static_cast<int>(label_.text().size()); }
    QRect characterRect(int /*offset*/) const override { return rect(); }
    int offsetAtPoint(const QPoint& /*point*/) const override { return -1; }
    QString attributes(int /*offset*/, int* from, int* to) const override {
        *from = 0;
        *to = characterCount();
        return {};
    }
    int cursorPosition() const override { return 0; }
    void setCursorPosition(int /*position*/) override {}
    void selection(int /*index*/, int* from, int* to) const override { *from = *to = 0; }
    int selectionCount() const override { return 0; }
    void addSelection(int /*from*/, int /*to*/) override {}
    void removeSelection(int /*index*/) override {}
    void setSelection(int /*index*/, int /*from*/, int /*to*/) override {}
    void scrollToSubstring(int /*from*/, int /*to*/) override {}

private:
    const QLabel& label_;
};

/// Labels of boxes, pictures and links stay what Qt makes of them.
QAccessibleInterface* FigureOf(const QString& /*className*/, QObject* object) {
    auto* const label = qobject_cast<QLabel*>(object);
    const bool isFigure = label != nullptr && !label->accessibleName().isEmpty() && label->buddy() == nullptr &&
                          label->pixmap(Qt::ReturnByValue).isNull() && label->textFormat() != Qt::RichText;
    return isFigure ? new SpokenFigure(label) : nullptr;
}

}  // namespace

void SpeakFigures() {
    QAccessible::installFactory(FigureOf);
}

}  // namespace korvane
