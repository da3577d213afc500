#include "shell/desktop/icons.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <algorithm>
#include <cmath>
#include <functional>

#include "shell/desktop/command_shapes.h"
#include "shell/desktop/state_shapes.h"

namespace korvane {
namespace {

/// Draws one picture into a square of this many pixels of the device, its corner at 0, 0.
using Draw = std::function<void(QPainter& painter, int side, QIcon::Mode mode)>;

class DrawnIcon : public QIconEngine {
public:
    explicit DrawnIcon(Draw draw) : draw_(std::move(draw)) {}

    // In whole pixels of the device, wherever the painter's scale puts the rectangle.
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State /*state*/) override {
        const QRectF device = painter->deviceTransform().mapRect(QRectF(rect));
        const int side = static_cast<int>(std::lround(std::min(device.width(), device.height())));
        if (side < 1) return;
        painter->save();
        painter->setTransform(painter->transform() * painter->deviceTransform().inverted());
        painter->translate(std::round(device.center().x() - side / 2.0), std::round(device.center().y() - side / 2.0));
        painter->setRenderHint(QPainter::Antialiasing);
        draw_(*painter, side, mode);
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    QList<QSize> availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        QList<QSize> sizes;
        for (const int side : {16, 22, 24, 32, 48, 64, 128})
            sizes.append(QSize(side, side));
        return sizes;
    }

    QIconEngine* clone() const override { return new DrawnIcon(*this); }

private:
    Draw draw_;
};

QIcon Drawn(Draw draw) {
    return QIcon(new DrawnIcon(std::move(draw)));
}

/// On a pixmap of its own, since parts of a picture overlap.
QPixmap Whole(int side, const std::function<void(QPainter& painter, int side)>& draw) {
    QPixmap whole(side, side);
    whole.fill(Qt::transparent);
    QPainter painter(&whole);
    painter.setRenderHint(QPainter::Antialiasing);
    draw(painter, side);
    return whole;
}

/// A seam around the picture, so that it stands off a selection of its own colour.
void DrawSeam(QPainter& painter, QPixmap shape) {
    QPainter inside(&shape);
    inside.setCompositionMode(QPainter::CompositionMode_SourceIn);
    inside.fillRect(shape.rect(), QGuiApplication::palette().color(QPalette::Active, QPalette::HighlightedText));
    inside.end();
    const int width = std::max(1, shape.width() / 20);
    for (const QPoint& to :
         {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1), QPoint(1, 1), QPoint(-1, 1), QPoint(1, -1), QPoint(-1, -1)})
        painter.drawPixmap(to * width, shape);
}

/// A coloured picture keeps its colours where it is disabled or selected.
Draw Coloured(std::function<void(QPainter& painter, int side)> draw) {
    return [draw = std::move(draw)](QPainter& painter, int side, QIcon::Mode mode) {
        if (mode == QIcon::Selected) DrawSeam(painter, Whole(side, draw));
        if (mode != QIcon::Disabled) return draw(painter, side);
        painter.setOpacity(painter.opacity() * 0.4);
        painter.drawPixmap(0, 0, Whole(side, draw));
    };
}

QColor Ink(QIcon::Mode mode) {
    const QPalette palette = QGuiApplication::palette();
    switch (mode) {
        case QIcon::Disabled:
            return palette.color(QPalette::Disabled, QPalette::ButtonText);
        case QIcon::Selected:
            return palette.color(QPalette::Active, QPalette::HighlightedText);
        default:
            return palette.color(QPalette::Active, QPalette::ButtonText);
    }
}

}  // namespace

QIcon StateIcon(RowIcon icon) {
    return Drawn(Coloured([icon](QPainter& painter, int side) { DrawState(painter, side, icon); }));
}

QIcon TrayIcon(TrayPicture picture) {
    return Drawn(Coloured([picture](QPainter& painter, int side) { DrawTray(painter, side, picture); }));
}

QIcon ProgramIcon(bool on) {
    return Drawn(Coloured([on](QPainter& painter, int side) { DrawEmblem(painter, side, on); }));
}

QIcon CommandIcon(CommandPicture picture) {
    return Drawn([picture](QPainter& painter, int side, QIcon::Mode mode) { DrawCommand(painter, side, picture, Ink(mode)); });
}

}  // namespace korvane
