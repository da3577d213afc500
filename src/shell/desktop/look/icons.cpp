#include "shell/desktop/look/icons.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <algorithm>
#include <cmath>
#include <functional>

#include "shell/desktop/look/decoration.h"
#include "shell/desktop/look/shapes.h"

namespace korvane {
namespace {

// How strongly a picture is filled under the mouse, and while its button is pressed.
constexpr int kHoverAlpha = 70;
constexpr int kPressedAlpha = 190;

/// Draws one picture into a square of this many device pixels, with its corner at 0, 0.
using DrawPicture = std::function<void(QPainter& painter, int side, QIcon::Mode mode, QIcon::State state)>;

class DrawnIcon : public QIconEngine {
public:
    explicit DrawnIcon(DrawPicture draw) : draw_(std::move(draw)) {}

    // Paints in whole device pixels, wherever the painter's scale puts the rectangle.
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        const QRectF device = painter->deviceTransform().mapRect(QRectF(rect));
        const int side = static_cast<int>(std::lround(std::min(device.width(), device.height())));
        if (side < 1) return;
        painter->save();
        painter->setTransform(painter->transform() * painter->deviceTransform().inverted());
        painter->translate(std::round(device.center().x() - side / 2.0), std::round(device.center().y() - side / 2.0));
        painter->setRenderHint(QPainter::Antialiasing);
        draw_(*painter, side, mode, state);
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
    DrawPicture draw_;
};

QIcon Drawn(DrawPicture draw) {
    return QIcon(new DrawnIcon(std::move(draw)));
}

/// Draws on a separate pixmap, since parts of a picture overlap.
QPixmap Whole(int side, const std::function<void(QPainter& painter, int side)>& draw) {
    QPixmap whole(side, side);
    whole.fill(Qt::transparent);
    QPainter painter(&whole);
    painter.setRenderHint(QPainter::Antialiasing);
    draw(painter, side);
    return whole;
}

QPixmap Tinted(QPixmap shape, const QColor& colour) {
    QPainter painter(&shape);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(shape.rect(), colour);
    return shape;
}

/// Separates the picture from a selection of the same colour.
void DrawSeam(QPainter& painter, const QPixmap& seam) {
    const int width = std::max(1, seam.width() / 20);
    for (const int x : {-width, 0, width})
        for (const int y : {-width, 0, width})
            painter.drawPixmap(x, y, seam);
}

enum class Kind { Filled, Lines };

/// A disabled coloured picture keeps its colours, only paler. In a selection a filled picture has a seam, and lines have the
/// colour of the text.
DrawPicture Coloured(std::function<void(QPainter& painter, int side)> draw, Kind kind = Kind::Filled) {
    return [draw = std::move(draw), kind](QPainter& painter, int side, QIcon::Mode mode, QIcon::State /*state*/) {
        if (mode == QIcon::Disabled) {
            painter.setOpacity(painter.opacity() * 0.4);
            painter.drawPixmap(0, 0, Whole(side, draw));
            return;
        }
        if (mode == QIcon::Selected) {
            const QPixmap plain =
                Tinted(Whole(side, draw), QGuiApplication::palette().color(QPalette::Active, QPalette::HighlightedText));
            if (kind == Kind::Lines) return painter.drawPixmap(0, 0, plain);
            DrawSeam(painter, plain);
        }
        draw(painter, side);
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
    const bool lines = icon == RowIcon::Inactive || icon == RowIcon::Cur;
    return Drawn(
        Coloured([icon](QPainter& painter, int side) { DrawState(painter, side, icon); }, lines ? Kind::Lines : Kind::Filled));
}

QIcon TrayIcon(TrayPicture picture) {
    return Drawn(Coloured([picture](QPainter& painter, int side) { DrawTray(painter, side, picture); }));
}

QIcon ProgramIcon(bool on) {
    return Drawn(Coloured([on](QPainter& painter, int side) { DrawEmblem(painter, side, on); }));
}

QIcon CommandIcon(CommandPicture picture) {
    return Drawn([picture](QPainter& painter, int side, QIcon::Mode mode, QIcon::State state) {
        if (state == QIcon::Off || mode == QIcon::Disabled)
            return DrawCommand(painter, side, picture, Ink(mode), Qt::transparent);
        const QColor accent = AccentColour(QGuiApplication::palette());
        QColor inside = accent;
        inside.setAlpha(mode == QIcon::Active ? kPressedAlpha : kHoverAlpha);
        DrawCommand(painter, side, picture, accent, inside);
    });
}

}  // namespace korvane
