#include "shell/desktop/monitors/load_chart.h"

#include <QPainter>
#include <QPolygonF>
#include <algorithm>
#include <cmath>

namespace korvane {
namespace {

constexpr int kRows = 4;
constexpr int kColumns = 10;
constexpr double kFull = 100;
constexpr int kGridAlpha = 40;
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

LoadChart::LoadChart(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void LoadChart::SetSamples(const std::vector<std::int32_t>& samples) {
    if (samples == samples_) return;
    samples_ = samples;
    update();
}

QSize LoadChart::sizeHint() const {
    return {fontMetrics().averageCharWidth() * 52, fontMetrics().height() * 9};
}

QSize LoadChart::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * 20, fontMetrics().height() * 4};
}

void LoadChart::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF area = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const QColor ink = palette().color(QPalette::Highlight);
    const QPolygonF line = samples_.size() > 1 ? LineOf(samples_, area) : QPolygonF();
    painter.fillRect(rect(), palette().base());
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
}

}  // namespace korvane
