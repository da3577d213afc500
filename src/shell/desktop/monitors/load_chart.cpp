#include "shell/desktop/monitors/load_chart.h"

#include <QPainter>
#include <QPolygonF>
#include <algorithm>
#include <cmath>

#include "shell/desktop/look/decoration.h"

namespace korvane {
namespace {

constexpr int kRows = 4;
constexpr int kColumns = 10;
constexpr double kFull = 100;
constexpr int kGridAlpha = 40;
constexpr int kGap = 4;
constexpr int kGroundAlpha = 200;    ///< of words over the area
constexpr double kFillShare = 0.35;  ///< share of the line's colour in that of the area

void DrawGrid(QPainter& painter, const QRectF& area, const QColor& ink) {
    painter.setPen(QPen(ink, 1));
    for (int row = 1; row < kRows; ++row) {
        const double y = std::round(area.top() + area.height() * row / kRows) + 0.5;
        painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
    }
    for (int column = 1; column < kColumns; ++column) {
        const double x = std::round(area.left() + area.width() * column / kColumns) + 0.5;
        painter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
    }
}

QPolygonF LineOf(const std::vector<std::int32_t>& samples, const QRectF& area) {
    QPolygonF line;
    const double step = area.width() / static_cast<double>(samples.size() - 1);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double share = std::clamp(samples[i] / kFull, 0.0, 1.0);
        line.append({area.left() + step * static_cast<double>(i), area.bottom() - area.height() * share});
    }
    return line;
}

QColor Mixed(const QColor& ink, const QColor& base) {
    const auto mix = [](int of, int with) { return static_cast<int>(std::lround(of * kFillShare + with * (1 - kFillShare))); };
    return {mix(ink.red(), base.red()), mix(ink.green(), base.green()), mix(ink.blue(), base.blue())};
}

// Opaque and column by column: a polygon with a hundred peaks, or a transparent one, takes fifty times as long.
void FillBelow(QPainter& painter, const QPolygonF& line, const QRectF& area, const QColor& colour) {
    int after = 1;
    for (int x = static_cast<int>(area.left()); x < area.right(); ++x) {
        while (after + 1 < line.size() && line[after].x() < x)
            ++after;
        const QPointF &from = line[after - 1], &to = line[after];
        const double y = from.y() + (to.y() - from.y()) * std::clamp((x - from.x()) / (to.x() - from.x()), 0.0, 1.0);
        const int top = static_cast<int>(std::lround(y));
        painter.fillRect(x, top, 1, static_cast<int>(area.bottom()) - top, colour);
    }
}

}  // namespace

LoadChart::LoadChart(const QString& oldest, QWidget* parent) : QWidget(parent), oldest_(oldest) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void LoadChart::SetSamples(const std::vector<std::int32_t>& samples) {
    if (samples == samples_) return;
    samples_ = samples;
    DescribeFigures();
    update();
}

void LoadChart::SetLevel(std::optional<int> percent) {
    if (percent == level_) return;
    level_ = percent;
    DescribeFigures();
    update();
}

void LoadChart::DescribeFigures() {
    if (samples_.empty()) return;
    const auto [lowest, highest] = std::ranges::minmax(samples_);
    const QString alert = level_ ? QString(" The alert is at %1 percent.").arg(*level_) : QString();
    setAccessibleDescription(QString("Now %1 percent, lowest %2, highest %3.").arg(samples_.back()).arg(lowest).arg(highest) +
                             alert);
}

QSize LoadChart::sizeHint() const {
    return {fontMetrics().averageCharWidth() * 52, fontMetrics().height() * 9};
}

QSize LoadChart::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * 20, fontMetrics().height() * 4};
}

void LoadChart::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF area = Area();
    const QColor ink = palette().color(QPalette::Highlight);
    const QPolygonF line = samples_.size() > 1 ? LineOf(samples_, area) : QPolygonF();
    painter.fillRect(area, palette().base());
    if (!line.isEmpty()) FillBelow(painter, line, area, Mixed(ink, palette().color(QPalette::Base)));
    QColor grid = palette().color(QPalette::Text);
    grid.setAlpha(kGridAlpha);
    DrawGrid(painter, area, grid);
    painter.setPen(QPen(ink, 1));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawPolyline(line);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(area);
    DrawScale(painter, area);
    if (level_) DrawLevel(painter, area);
}

// Half a line of text stands above the area and below it, beside the marks of its ends.
QRectF LoadChart::Area() const {
    const int line = fontMetrics().height(), numbers = fontMetrics().horizontalAdvance("100 %") + kGap;
    return QRectF(rect()).adjusted(numbers + 0.5, line / 2 + 0.5, -0.5, -line - kGap - 0.5);
}

void LoadChart::DrawScale(QPainter& painter, const QRectF& area) const {
    const double line = fontMetrics().height();
    painter.setPen(palette().color(QPalette::WindowText));
    for (int row = 0; row <= kRows; ++row) {
        if (row % 2 == 1 && area.height() < kRows * 1.6 * line) continue;
        const double y = area.bottom() - area.height() * row / kRows;
        painter.drawText(QRectF(0, y - line / 2, area.left() - kGap, line), Qt::AlignRight | Qt::AlignVCenter,
                         QString("%1 %").arg(static_cast<int>(kFull) * row / kRows));
    }
    const QRectF below(area.left(), area.bottom() + kGap, area.width(), line);
    painter.drawText(below, Qt::AlignLeft | Qt::AlignTop, oldest_);
    painter.drawText(below, Qt::AlignRight | Qt::AlignTop, "now");
}

// The words stand on the side of the line where there is room for them.
void LoadChart::DrawLevel(QPainter& painter, const QRectF& area) const {
    const double y = std::round(area.bottom() - area.height() * *level_ / kFull), line = fontMetrics().height();
    const QColor red = MarkColour(palette());
    painter.setPen(QPen(red, 2, Qt::DashLine));
    painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
    const QString words = QString("Alert at %1 %").arg(*level_);
    QRectF box(area.left() + kGap, y + 2, fontMetrics().horizontalAdvance(words) + 2 * kGap, line);
    if (box.bottom() > area.bottom()) box.moveBottom(y - 2);
    QColor ground = palette().color(QPalette::Base);
    ground.setAlpha(kGroundAlpha);
    painter.fillRect(box, ground);
    painter.setPen(red);
    painter.drawText(box, Qt::AlignCenter, words);
}

}  // namespace korvane
