// A bar of a share with ticks at its quarters, and the level of the alert as a broken line.
#pragma once

#include <QPainter>
#include <QProgressBar>
#include <optional>

#include "shell/desktop/look/decoration.h"

namespace korvane {

class LevelBar : public QProgressBar {
public:
    using QProgressBar::QProgressBar;

    /// The place of the line in percent; nothing: no line. `meaning` is for those who cannot see it.
    void SetLevel(std::optional<int> percent, const QString& meaning) {
        if (percent == level_) return;
        level_ = percent;
        setAccessibleDescription(level_ ? meaning : QString());
        setToolTip(accessibleDescription());
        update();
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        QProgressBar::paintEvent(event);
        QPainter painter(this);
        for (const int quarter : {25, 50, 75})
            DrawLine(painter, quarter, height() * 3 / 4, QPen(palette().color(QPalette::Text), 1));
        if (!level_) return;
        DrawLine(painter, *level_, 0, QPen(palette().color(QPalette::Base), 6));  // separates it from the filled part
        DrawLine(painter, *level_, 0, QPen(MarkColour(palette()), 2, Qt::DashLine));
    }

private:
    void DrawLine(QPainter& painter, int percent, int top, const QPen& pen) const {
        painter.setPen(pen);
        const int x = 1 + (width() - 2) * percent / 100;
        painter.drawLine(x, top, x, height());
    }

    std::optional<int> level_;
};

}  // namespace korvane
