#include "shell/desktop/look/command_shapes.h"

#include <QPainterPath>
#include <QPolygonF>
#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace korvane {
namespace {

struct Place {
    double x, y;
};
using Places = std::initializer_list<Place>;

/// A sheet of 16 by 16 with a pen. A place is the middle of a line: it is moved so that the edges of the line lie between pixels.
class Sheet {
public:
    Sheet(QPainter& painter, int side, const QColor& ink)
        : painter_(painter), unit_(side / 16.0), width_(std::max(1.0, std::round(unit_ * 1.4))), ink_(ink) {
        painter_.setPen(QPen(ink, width_, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter_.setBrush(Qt::NoBrush);
    }

    void Line(Places places) { painter_.drawPolyline(Polygon(places)); }
    void Shape(Places places) { painter_.drawPolygon(Polygon(places)); }
    void Box(Place from, Place to) { painter_.drawRect(QRectF(At(from), At(to))); }

    /// Like Shape, but filled.
    void Solid(Places places) {
        painter_.setBrush(ink_);
        Shape(places);
        painter_.setBrush(Qt::NoBrush);
    }

    void Circle(Place centre, double radius) { painter_.drawEllipse(At(centre), radius * unit_, radius * unit_); }

    /// Draws two arcs between the places, like an eye.
    void Lens(Place from, Place to, double bend) {
        const QPointF left = At(from), right = At(to);
        const QPointF bow(0, bend * unit_), third((right.x() - left.x()) / 3.4, 0);
        QPainterPath path(left);
        path.cubicTo(left + third - bow, right - third - bow, right);
        path.cubicTo(right - third + bow, left + third + bow, left);
        painter_.drawPath(path);
    }

private:
    double Snapped(double place) const {
        const bool odd = static_cast<int>(width_) % 2 == 1;
        return odd ? std::floor(place * unit_) + 0.5 : std::round(place * unit_);
    }
    QPointF At(Place place) const { return {Snapped(place.x), Snapped(place.y)}; }
    QPolygonF Polygon(Places places) const {
        QPolygonF polygon;
        for (const Place& place : places)
            polygon.append(At(place));
        return polygon;
    }

    QPainter& painter_;
    double unit_;
    double width_;
    QColor ink_;
};

void Eye(Sheet& sheet) {
    sheet.Lens({1.5, 8}, {14.5, 8}, 5.5);
    sheet.Circle({8, 8}, 2);
}

void DrawShape(Sheet& sheet, CommandPicture picture) {
    switch (picture) {
        case CommandPicture::Start:
            sheet.Shape({{4.5, 2.5}, {13, 8}, {4.5, 13.5}});
            break;
        case CommandPicture::Stop:
            sheet.Box({3.5, 3.5}, {12.5, 12.5});
            break;
        case CommandPicture::StartNow:
            sheet.Shape({{2.5, 3}, {9.5, 8}, {2.5, 13}});
            sheet.Line({{13, 3}, {13, 13}});
            break;
        case CommandPicture::Add:
            sheet.Line({{8, 2.5}, {8, 13.5}});
            sheet.Line({{2.5, 8}, {13.5, 8}});
            break;
        case CommandPicture::Edit:
            sheet.Shape({{2.5, 13.5}, {3.5, 10}, {11, 2.5}, {13.5, 5}, {6, 12.5}});
            sheet.Line({{9, 4.5}, {11.5, 7}});
            break;
        case CommandPicture::Copy:
            sheet.Box({6, 6}, {13.5, 13.5});
            sheet.Line({{3, 10}, {2.5, 10}, {2.5, 2.5}, {10, 2.5}, {10, 3}});
            break;
        case CommandPicture::Paste:
            sheet.Line({{5, 3.5}, {3, 3.5}, {3, 14}, {13, 14}, {13, 3.5}, {11, 3.5}});
            sheet.Solid({{6, 2.5}, {10, 2.5}, {10, 4.5}, {6, 4.5}});
            sheet.Line({{6, 8}, {10, 8}});
            sheet.Line({{6, 11}, {10, 11}});
            break;
        case CommandPicture::Delete:
            sheet.Line({{2.5, 4.5}, {13.5, 4.5}});
            sheet.Line({{6, 4.5}, {6, 2.5}, {10, 2.5}, {10, 4.5}});
            sheet.Line({{4, 4.5}, {4, 13.5}, {12, 13.5}, {12, 4.5}});
            sheet.Line({{8, 7.5}, {8, 10.5}});
            break;
        case CommandPicture::Save:
            sheet.Shape({{2.5, 2.5}, {10.5, 2.5}, {13.5, 5.5}, {13.5, 13.5}, {2.5, 13.5}});
            sheet.Line({{5.5, 13.5}, {5.5, 9.5}, {10.5, 9.5}, {10.5, 13.5}});
            sheet.Line({{5.5, 2.5}, {5.5, 5.5}, {9, 5.5}});
            break;
        case CommandPicture::Reports:
            sheet.Line({{2.5, 2.5}, {2.5, 13.5}, {13.5, 13.5}});
            sheet.Line({{6, 10}, {6, 13}});
            sheet.Line({{9, 5}, {9, 13}});
            sheet.Line({{12, 7.5}, {12, 13}});
            break;
        case CommandPicture::Settings:  // three slides
            sheet.Line({{2.5, 4}, {13.5, 4}});
            sheet.Line({{2.5, 8}, {13.5, 8}});
            sheet.Line({{2.5, 12}, {13.5, 12}});
            sheet.Solid({{5, 3}, {6, 3}, {6, 5}, {5, 5}});
            sheet.Solid({{10, 7}, {11, 7}, {11, 9}, {10, 9}});
            sheet.Solid({{7, 11}, {8, 11}, {8, 13}, {7, 13}});
            break;
        case CommandPicture::Help:
            sheet.Circle({8, 8}, 6);
            sheet.Line({{6, 6.5}, {6.5, 5}, {8, 4.5}, {9.5, 5}, {10, 6.5}, {8, 8}, {8, 9.5}});
            sheet.Line({{8, 11.5}, {8, 11.6}});
            break;
        case CommandPicture::Exit:
            sheet.Line({{8, 2.5}, {2.5, 2.5}, {2.5, 13.5}, {8, 13.5}});
            sheet.Line({{6.5, 8}, {13.5, 8}});
            sheet.Line({{10.5, 5}, {13.5, 8}, {10.5, 11}});
            break;
        case CommandPicture::Test:
            sheet.Line({{1.5, 8.5}, {4.5, 8.5}, {6.5, 3}, {9.5, 13}, {11.5, 8.5}, {14.5, 8.5}});
            break;
        case CommandPicture::Mail:
            sheet.Box({1.5, 3}, {14.5, 13});
            sheet.Line({{1.5, 4}, {8, 9}, {14.5, 4}});
            break;
        case CommandPicture::Folder:
            sheet.Shape({{1.5, 3}, {6, 3}, {7.5, 5}, {14.5, 5}, {14.5, 13}, {1.5, 13}});
            break;
        case CommandPicture::Show:
            Eye(sheet);
            break;
        case CommandPicture::Hide:
            Eye(sheet);
            sheet.Line({{3, 13.5}, {13, 2.5}});
            break;
    }
}

}  // namespace

void DrawCommand(QPainter& painter, int side, CommandPicture picture, const QColor& ink) {
    Sheet sheet(painter, side, ink);
    DrawShape(sheet, picture);
}

}  // namespace korvane
