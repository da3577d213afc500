#include "shell/desktop/look/shapes.h"

#include <QPainterPath>
#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <functional>
#include <map>
#include <string_view>
#include <vector>

namespace korvane {
namespace {

// A shape is a text in the manner of a path in SVG: M draws lines between places, Z closes them, O is a circle (centre, radius),
// A an arc (corner and side of its square, angle of its start, sweep), R a rectangle (corner, size, radius of its corners), and E
// an eye (its two corners, bend).

/// The picture of a command on a sheet of 16 by 16: a line, and a shape that is filled too. A place is the middle of a line.
struct CommandShape {
    CommandPicture picture;
    std::string_view line;
    std::string_view filled = "";
};

constexpr CommandShape kCommandShapes[] = {
    {CommandPicture::Start, "M4.5 2.5 13 8 4.5 13.5Z"},
    {CommandPicture::Stop, "M3.5 3.5 12.5 3.5 12.5 12.5 3.5 12.5Z"},
    {CommandPicture::StartNow, "M2.5 3 9.5 8 2.5 13Z M13 3 13 13"},
    {CommandPicture::Add, "M8 2.5 8 13.5 M2.5 8 13.5 8"},
    {CommandPicture::Edit, "M2.5 13.5 3.5 10 11 2.5 13.5 5 6 12.5Z M9 4.5 11.5 7"},
    {CommandPicture::Copy, "M6 6 13.5 6 13.5 13.5 6 13.5Z M3 10 2.5 10 2.5 2.5 10 2.5 10 3"},
    {CommandPicture::Paste, "M5 3.5 3 3.5 3 14 13 14 13 3.5 11 3.5 M6 8 10 8 M6 11 10 11", "M6 2.5 10 2.5 10 4.5 6 4.5Z"},
    {CommandPicture::Delete, "M2.5 4.5 13.5 4.5 M6 4.5 6 2.5 10 2.5 10 4.5 M4 4.5 4 13.5 12 13.5 12 4.5 M8 7.5 8 10.5"},
    {CommandPicture::Save,
     "M2.5 2.5 10.5 2.5 13.5 5.5 13.5 13.5 2.5 13.5Z M5.5 13.5 5.5 9.5 10.5 9.5 10.5 13.5 M5.5 2.5 5.5 5.5 9 5.5"},
    {CommandPicture::Reports, "M2.5 2.5 2.5 13.5 13.5 13.5 M6 10 6 13 M9 5 9 13 M12 7.5 12 13"},
    {CommandPicture::Settings, "M2.5 4 13.5 4 M2.5 8 13.5 8 M2.5 12 13.5 12",  // three slides
     "M5 3 6 3 6 5 5 5Z M10 7 11 7 11 9 10 9Z M7 11 8 11 8 13 7 13Z"},
    {CommandPicture::Help, "O8 8 6 M6 6.5 6.5 5 8 4.5 9.5 5 10 6.5 8 8 8 9.5 M8 11.5 8 11.6"},
    {CommandPicture::Exit, "M8 2.5 2.5 2.5 2.5 13.5 8 13.5 M6.5 8 13.5 8 M10.5 5 13.5 8 10.5 11"},
    {CommandPicture::Test, "M1.5 8.5 4.5 8.5 6.5 3 9.5 13 11.5 8.5 14.5 8.5"},
    {CommandPicture::Mail, "M1.5 3 14.5 3 14.5 13 1.5 13Z M1.5 4 8 9 14.5 4"},
    {CommandPicture::Folder, "M1.5 3 6 3 7.5 5 14.5 5 14.5 13 1.5 13Z"},
    {CommandPicture::Show, "E1.5 8 14.5 8 5.5 O8 8 2"},
    {CommandPicture::Hide, "E1.5 8 14.5 8 5.5 O8 8 2 M3 13.5 13 2.5"},
};

// The colours of the pictures in the reports: middle tones, visible on both white and dark backgrounds.
constexpr QColor kUp(0x1f, 0x9a, 0x58);
constexpr QColor kDown(0xd4, 0x3c, 0x3c);
constexpr QColor kFailing(0xed, 0xa2, 0x11);
constexpr QColor kOnFailing(0x24, 0x1a, 0x00);
constexpr QColor kDownTime(0x3d, 0x7e, 0xdb);
constexpr QColor kInactive(0x83, 0x8c, 0x98);
constexpr QColor kCurrent(0x22, 0x92, 0x9b);
constexpr QColor kGlyph(0xff, 0xff, 0xff);
constexpr QColor kTileEdge(255, 255, 255, 215);
constexpr QColor kNone;

/// Coloured pictures are on a sheet of 32 by 32.
constexpr double kSheet = 32;

/// A part of a coloured picture; later ones cover earlier ones.
struct Layer {
    QColor fill;
    QColor line;
    double width;
    std::string_view path;
    Qt::PenCapStyle cap = Qt::RoundCap;
};
using Layers = std::vector<Layer>;

constexpr std::string_view kOctagon = "M10 1 22 1 31 10 31 22 22 31 10 31 1 22 1 10Z";
constexpr std::string_view kTriangle = "M16 4 28.7 28 3.3 28Z";  ///< a pen of width 4 rounds its corners
constexpr std::string_view kCross = "M10.5 10.5 21.5 21.5 M21.5 10.5 10.5 21.5";
// Two turns, each almost half a circle with an arrow head at its end.
constexpr std::string_view kTurns = "A4.5 4.5 23 172 -122 A4.5 4.5 23 352 -122";
constexpr std::string_view kArrowHeads = "M19.5 13 29.5 13 29.5 3Z M12.5 19 2.5 19 2.5 29Z";
constexpr Layer kExclamation{kNone, kOnFailing, 4, "M16 11 16 19"};
constexpr Layer kExclamationDot{kOnFailing, kNone, 0, "O16 25.2 2.3"};
constexpr Layer kPulse{kNone, kGlyph, 3, "M4.5 17 9.5 17 12.5 8 18 24 21.5 14.5 23 17 27.5 17"};
constexpr Layer kFlatLine{kNone, kGlyph, 3, "M6 16.5 26 16.5"};
constexpr Layer kBars{kGlyph, kNone, 0, "R9 8 5 16 1 R18 8 5 16 1"};

const Layers& StateLayers(RowIcon icon) {
    static const std::map<RowIcon, Layers> kStates{
        {RowIcon::Good, {{kUp, kNone, 0, "O16 16 15"}, {kNone, kGlyph, 4.5, "M9 16.5 14 22 23.5 11"}}},
        {RowIcon::Warn, {{kFailing, kFailing, 4, kTriangle}, kExclamation, kExclamationDot}},
        {RowIcon::Bad, {{kDown, kNone, 0, kOctagon}, {kNone, kGlyph, 4.5, kCross}}},
        {RowIcon::Inactive, {{kNone, kInactive, 4, "O16 16 13 M10 16 22 16"}}},
        {RowIcon::DownTime, {{kDownTime, kNone, 0, "R2 2 28 28 4"}, kBars}},
        {RowIcon::Cur, {{kNone, kCurrent, 4.5, kTurns, Qt::FlatCap}, {kCurrent, kCurrent, 1.5, kArrowHeads}}}};
    return kStates.at(icon);
}

/// Returns the shape of the state in white, separated from the picture below it, with its sign inside.
Layers BadgeLayers(TrayPicture picture, const QColor& tile) {
    constexpr double kApart = 7;
    constexpr double kRounding = 4;
    if (picture == TrayPicture::Warning) {
        return {
            {kNone, tile, kApart + kRounding, kTriangle}, {kGlyph, kGlyph, kRounding, kTriangle}, kExclamation, kExclamationDot};
    }
    return {{kNone, tile, kApart, kOctagon}, {kGlyph, kNone, 0, kOctagon}, {kNone, tile, 4.5, kCross}};
}

/// Draws two arcs between the places.
void AddEye(QPainterPath& path, QPointF left, QPointF right, double bend) {
    const QPointF bow(0, bend), third((right.x() - left.x()) / 3.4, 0);
    path.moveTo(left);
    path.cubicTo(left + third - bow, right - third - bow, right);
    path.cubicTo(right - third + bow, left + third + bow, left);
}

using PlaceOf = std::function<QPointF(double x, double y)>;

/// Places are moved by `at`, and lengths are multiplied by `unit`.
void AddElement(QPainterPath& path, char sign, const std::vector<double>& n, const PlaceOf& at, double unit) {
    if (sign == 'Z') return path.closeSubpath();
    const QPointF place = at(n[0], n[1]);
    if (sign == 'M') {
        path.moveTo(place);
        for (std::size_t i = 2; i < n.size(); i += 2)
            path.lineTo(at(n[i], n[i + 1]));
    } else if (sign == 'A') {
        const QRectF square(place, QSizeF(n[2], n[2]) * unit);
        path.arcMoveTo(square, n[3]);
        path.arcTo(square, n[3], n[4]);
    }
    if (sign == 'O') path.addEllipse(place, n[2] * unit, n[2] * unit);
    if (sign == 'R') path.addRoundedRect(QRectF(place, QSizeF(n[2], n[3]) * unit), n[4] * unit, n[4] * unit);
    if (sign == 'E') AddEye(path, place, at(n[2], n[3]), n[4] * unit);
}

QPainterPath Path(std::string_view text, const PlaceOf& at, double unit) {
    QPainterPath path;
    const char* const end = text.data() + text.size();
    for (const char* next = text.data(); next != end;) {
        const char sign = *next++;
        std::vector<double> numbers;
        while (next != end && std::isupper(*next) == 0)
            next = *next == ' ' ? next + 1 : std::from_chars(next, end, numbers.emplace_back()).ptr;
        AddElement(path, sign, numbers, at, unit);
    }
    return path;
}

QPen Pen(const QColor& colour, double width, Qt::PenCapStyle cap = Qt::RoundCap) {
    return {colour, width, Qt::SolidLine, cap, Qt::RoundJoin};
}

void DrawLayers(QPainter& painter, const Layers& layers) {
    for (const Layer& layer : layers) {
        painter.setPen(layer.line.isValid() ? Pen(layer.line, layer.width, layer.cap) : QPen(Qt::NoPen));
        painter.setBrush(layer.fill.isValid() ? QBrush(layer.fill) : QBrush(Qt::NoBrush));
        painter.drawPath(Path(
            layer.path, [](double x, double y) { return QPointF(x, y); }, 1));
    }
}

/// Returns the distance of the emblem's tile from the edge: space for its outline, in whole pixels.
int Outline(int side) {
    return std::max(1, side / 24);
}

void DrawTile(QPainter& painter, int side, const QColor& colour, const Layer& sign) {
    const double edge = Outline(side);
    const double corner = side * 0.2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(kTileEdge);
    painter.drawRoundedRect(QRectF(0, 0, side, side), corner, corner);
    painter.setBrush(colour);
    painter.drawRoundedRect(QRectF(edge, edge, side - 2 * edge, side - 2 * edge), corner - edge / 2, corner - edge / 2);
    painter.save();
    painter.scale(side / kSheet, side / kSheet);
    DrawLayers(painter, {sign});
    painter.restore();
}

}  // namespace

void DrawCommand(QPainter& painter, int side, CommandPicture picture, const QColor& ink, const QColor& inside) {
    const double unit = side / 16.0;
    const double width = std::max(1.0, std::round(unit * 1.4));
    const bool odd = static_cast<int>(width) % 2 == 1;
    // The edges of a line lie between pixels.
    const auto snapped = [&](double place) { return odd ? std::floor(place * unit) + 0.5 : std::round(place * unit); };
    const auto at = [&](double x, double y) { return QPointF(snapped(x), snapped(y)); };
    const auto& shape = *std::find_if(std::begin(kCommandShapes), std::end(kCommandShapes),
                                      [&](const CommandShape& each) { return each.picture == picture; });
    painter.setPen(Pen(ink, width));
    const bool isClosed = shape.line.find_first_of("ZOE") != std::string_view::npos;
    painter.setBrush(isClosed ? inside : QColor(Qt::transparent));
    painter.drawPath(Path(shape.line, at, unit));
    painter.setBrush(ink);
    painter.drawPath(Path(shape.filled, at, unit));
}

void DrawState(QPainter& painter, int side, RowIcon icon) {
    painter.scale(side / kSheet, side / kSheet);
    DrawLayers(painter, StateLayers(icon));
}

void DrawTray(QPainter& painter, int side, TrayPicture picture) {
    if (picture == TrayPicture::Off) return DrawTile(painter, side, kInactive, kBars);
    if (picture == TrayPicture::Normal) return DrawTile(painter, side, kUp, kPulse);
    const QColor colour = picture == TrayPicture::Warning ? kFailing : kDown;
    DrawTile(painter, side, colour, kPulse);
    const double badge = std::round(side * 0.56);
    const double corner = side - badge - 2 * Outline(side);
    painter.setClipRect(QRectF(0, 0, side - Outline(side), side - Outline(side)));
    painter.translate(corner, corner);
    painter.scale(badge / kSheet, badge / kSheet);
    DrawLayers(painter, BadgeLayers(picture, colour));
}

void DrawEmblem(QPainter& painter, int side, bool on) {
    DrawTile(painter, side, on ? kUp : kInactive, on ? kPulse : kFlatLine);
}

}  // namespace korvane
