#include "shell/desktop/look/decoration.h"

#include <QIcon>
#include <QTabBar>
#include <algorithm>
#include <iterator>

namespace korvane {
namespace {

// Middle tones, visible on light and dark; none is the red of a refused field.
constexpr QColor kPages[] = {{0x3d, 0x7e, 0xdb}, {0x1f, 0x9a, 0x8a}, {0x8a, 0x63, 0xd2}, {0xc9, 0x82, 0x1a},
                             {0x4f, 0x9a, 0x3d}, {0xb9, 0x51, 0x9e}, {0x6b, 0x7f, 0x95}, {0x2a, 0x8f, 0xbd}};
constexpr int kQuietAlpha = 130;
constexpr int kTintAlpha = 36;
constexpr int kLowerLine = 2;  ///< by which the desktop's style draws tabs lower that are not chosen, in pixels
constexpr int kDarkLightness = 128;
constexpr int kDarkerThanPage = 129;  ///< percent; the desktop's style draws tabs that much lighter than a dark palette's buttons

QColor WithAlpha(QColor colour, int alpha) {
    colour.setAlpha(alpha);
    return colour;
}

void DrawExclamation(QPainter& painter, const QRect& tab, const QColor& colour) {
    const double side = std::max(8.0, tab.height() * 0.36);
    const QRectF disc(tab.right() - side + 1, tab.top() + 4, side, side);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawEllipse(disc);
    painter.setPen(QPen(Qt::white, side / 6, Qt::SolidLine, Qt::RoundCap));
    const QPointF middle = disc.center();
    painter.drawLine(middle - QPointF(0, side * 0.25), middle + QPointF(0, side * 0.06));
    painter.drawPoint(middle + QPointF(0, side * 0.27));
}

}  // namespace

QColor AccentColour(const QPalette& palette) {
    const bool isDark = palette.color(QPalette::Button).lightness() < kDarkLightness;
    return isDark ? QColor(0x7a, 0xb6, 0xff) : QColor(0x1f, 0x63, 0xb8);
}

QColor MarkColour(const QPalette& palette) {
    return QColor::fromHsv(0, 200, palette.color(QPalette::Base).lightness() < kDarkLightness ? 255 : 200);
}

QPalette PagePalette(QPalette palette) {
    const QColor window = palette.color(QPalette::Window);
    if (window.lightness() < kDarkLightness) palette.setColor(QPalette::Button, window.darker(kDarkerThanPage));
    return palette;
}

void ColourTab(QPainter& painter, const QStyleOptionTab& tab, const QTabBar* bar) {
    const bool isChosen = tab.state.testFlag(QStyle::State_Selected);
    const bool isRefused = bar != nullptr && bar->tabTextColor(tab.tabIndex).isValid();
    const QColor colour = isRefused ? MarkColour(tab.palette) : kPages[std::max(0, tab.tabIndex) % std::ssize(kPages)];
    const QRect shape = tab.rect.adjusted(1, isChosen ? 1 : 1 + kLowerLine, -1, 0);
    painter.save();
    if (isChosen) painter.fillRect(shape, WithAlpha(colour, kTintAlpha));
    painter.fillRect(QRect(shape.topLeft(), QSize(shape.width(), isChosen ? 4 : 3)),
                     isChosen ? colour : WithAlpha(colour, kQuietAlpha));
    if (isRefused) DrawExclamation(painter, shape, colour);
    painter.restore();
}

QStyleOptionButton WithLivelyPicture(const QStyleOptionButton& button, double pixelRatio) {
    QStyleOptionButton lively = button;
    if (button.icon.isNull() || !button.state.testFlag(QStyle::State_Enabled)) return lively;
    const bool isPressed = button.state.testFlag(QStyle::State_Sunken);
    const bool isUnderMouse = isPressed || button.state.testFlag(QStyle::State_MouseOver);
    const auto mode = isPressed ? QIcon::Active : QIcon::Normal;
    lively.icon = button.icon.pixmap(button.iconSize, pixelRatio, mode, isUnderMouse ? QIcon::On : QIcon::Off);
    return lively;
}

}  // namespace korvane
