// A label whose text ends in dots where there is no room for all of it; its tool tip has it whole.
#pragma once

#include <QLabel>
#include <QPainter>
#include <QStyle>

namespace korvane {

class ElidedLabel : public QLabel {
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
        style()->drawItemText(&painter, contentsRect(), static_cast<int>(alignment()), palette(), isEnabled(), shown,
                              foregroundRole());
    }
};

}  // namespace korvane
