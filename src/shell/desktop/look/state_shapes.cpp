#include "shell/desktop/look/state_shapes.h"

#include <QPainterPath>
#include <QPolygonF>
#include <algorithm>
#include <cmath>
#include <functional>

namespace korvane {
namespace {

// The colours of the pictures in the reports: middle tones, visible on both white and dark backgrounds.
const QColor kUp(0x1f, 0x9a, 0x58);
const QColor kDown(0xd4, 0x3c, 0x3c);
const QColor kFailing(0xed, 0xa2, 0x11);
const QColor kOnFailing(0x24, 0x1a, 0x00);
const QColor kDownTime(0x3d, 0x7e, 0xdb);
const QColor kInactive(0x83, 0x8c, 0x98);
const QColor kCurrent(0x22, 0x92, 0x9b);
const QColor kGlyph(0xff, 0xff, 0xff);

/// Coordinates of shapes refer to a sheet of 32 by 32.
constexpr double kSheet = 32;

QPen Line(const QColor& colour, double width) {
    return {colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

QPainterPath Closed(const QPolygonF& corners) {
    QPainterPath path;
    path.addPolygon(corners);
    path.closeSubpath();
    return path;
}

QPainterPath Octagon() {
    return Closed({{10, 1}, {22, 1}, {31, 10}, {31, 22}, {22, 31}, {10, 31}, {1, 22}, {1, 10}});
}

/// A pen of width 4 rounds its corners.
QPainterPath Triangle() {
    return Closed({{16, 4}, {28.7, 28}, {3.3, 28}});
}

void DrawTriangle(QPainter& painter, const QColor& colour) {
    painter.setPen(Line(colour, 4));
    painter.setBrush(colour);
    painter.drawPath(Triangle());
}

void DrawExclamation(QPainter& painter, const QColor& colour) {
    painter.setPen(Line(colour, 4));
    painter.drawLine(QPointF(16, 11), QPointF(16, 19));
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawEllipse(QPointF(16, 25.2), 2.3, 2.3);
}

void DrawCross(QPainter& painter, const QColor& colour) {
    painter.setPen(Line(colour, 4.5));
    painter.drawLine(QPointF(10.5, 10.5), QPointF(21.5, 21.5));
    painter.drawLine(QPointF(21.5, 10.5), QPointF(10.5, 21.5));
}

void Good(QPainter& painter) {
    painter.setBrush(kUp);
    painter.drawEllipse(QPointF(16, 16), 15, 15);
    painter.setPen(Line(kGlyph, 4.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(QPolygonF({{9, 16.5}, {14, 22}, {23.5, 11}}));
}

void Warn(QPainter& painter) {
    DrawTriangle(painter, kFailing);
    DrawExclamation(painter, kOnFailing);
}

void Bad(QPainter& painter) {
    painter.setBrush(kDown);
    painter.drawPath(Octagon());
    DrawCross(painter, kGlyph);
}

void Inactive(QPainter& painter) {
    painter.setPen(Line(kInactive, 4));
    painter.drawEllipse(QPointF(16, 16), 13, 13);
    painter.drawLine(QPointF(10, 16), QPointF(22, 16));
}

void DrawBars(QPainter& painter, const QColor& colour) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    for (const double left : {9.0, 18.0})
        painter.drawRoundedRect(QRectF(left, 8, 5, 16), 1, 1);
}

void DownTimeShape(QPainter& painter) {
    painter.setBrush(kDownTime);
    painter.drawRoundedRect(QRectF(2, 2, 28, 28), 4, 4);
    DrawBars(painter, kGlyph);
}

/// Draws almost half a circle with an arrow head at its end.
void DrawTurn(QPainter& painter) {
    painter.setPen(QPen(kCurrent, 4.5, Qt::SolidLine, Qt::FlatCap));
    painter.setBrush(Qt::NoBrush);
    painter.drawArc(QRectF(4.5, 4.5, 23, 23), 172 * 16, -122 * 16);
    painter.setPen(QPen(kCurrent, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(kCurrent);
    painter.drawPath(Closed({{19.5, 13}, {29.5, 13}, {29.5, 3}}));
}

void Current(QPainter& painter) {
    DrawTurn(painter);
    painter.translate(kSheet, kSheet);
    painter.rotate(180);
    DrawTurn(painter);
}

/// Returns the distance of the emblem's tile from the edge: space for its outline, in whole pixels.
int Outline(int side) {
    return std::max(1, side / 24);
}

/// Draws a tile with a pulse line or another sign.
void DrawTile(QPainter& painter, int side, const QColor& colour, const std::function<void(QPainter& painter)>& sign) {
    const double edge = Outline(side);
    const double corner = side * 0.2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 215));
    painter.drawRoundedRect(QRectF(0, 0, side, side), corner, corner);
    painter.setBrush(colour);
    painter.drawRoundedRect(QRectF(edge, edge, side - 2 * edge, side - 2 * edge), corner - edge / 2, corner - edge / 2);
    painter.save();
    painter.scale(side / kSheet, side / kSheet);
    painter.setPen(Line(kGlyph, 3));
    painter.setBrush(Qt::NoBrush);
    sign(painter);
    painter.restore();
}

void Pulse(QPainter& painter) {
    painter.drawPolyline(QPolygonF({{4.5, 17}, {9.5, 17}, {12.5, 8}, {18, 24}, {21.5, 14.5}, {23, 17}, {27.5, 17}}));
}

void FlatLine(QPainter& painter) {
    painter.drawLine(QPointF(6, 16.5), QPointF(26, 16.5));
}

QColor ColourOf(TrayPicture picture) {
    switch (picture) {
        case TrayPicture::Warning:
            return kFailing;
        case TrayPicture::Error:
            return kDown;
        case TrayPicture::Off:
            return kInactive;
        default:
            return kUp;
    }
}

/// Draws the shape of the state in white, separated from the picture below it, with its sign inside.
void DrawBadge(QPainter& painter, const QColor& tile, bool warning) {
    constexpr double kApart = 7;
    const double rounding = warning ? 4 : 0;
    const QPainterPath shape = warning ? Triangle() : Octagon();
    painter.strokePath(shape, Line(tile, kApart + rounding));
    painter.setPen(warning ? Line(kGlyph, rounding) : QPen(Qt::NoPen));
    painter.setBrush(kGlyph);
    painter.drawPath(shape);
    if (warning)
        DrawExclamation(painter, kOnFailing);
    else
        DrawCross(painter, tile);
}

}  // namespace

void DrawState(QPainter& painter, int side, RowIcon icon) {
    painter.scale(side / kSheet, side / kSheet);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::NoBrush);
    switch (icon) {
        case RowIcon::Good:
            return Good(painter);
        case RowIcon::Warn:
            return Warn(painter);
        case RowIcon::Bad:
            return Bad(painter);
        case RowIcon::Inactive:
            return Inactive(painter);
        case RowIcon::DownTime:
            return DownTimeShape(painter);
        case RowIcon::Cur:
            return Current(painter);
    }
}

void DrawTray(QPainter& painter, int side, TrayPicture picture) {
    if (picture == TrayPicture::Off) return DrawTile(painter, side, kInactive, [](QPainter& tile) { DrawBars(tile, kGlyph); });
    const QColor colour = ColourOf(picture);
    DrawTile(painter, side, colour, Pulse);
    if (picture == TrayPicture::Normal) return;
    const double badge = std::round(side * 0.56);
    const double corner = side - badge - 2 * Outline(side);
    painter.setClipRect(QRectF(0, 0, side - Outline(side), side - Outline(side)));
    painter.translate(corner, corner);
    painter.scale(badge / kSheet, badge / kSheet);
    DrawBadge(painter, colour, picture == TrayPicture::Warning);
}

void DrawEmblem(QPainter& painter, int side, bool on) {
    DrawTile(painter, side, on ? kUp : kInactive, on ? Pulse : FlatLine);
}

}  // namespace korvane
