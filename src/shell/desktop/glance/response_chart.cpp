#include "shell/desktop/glance/response_chart.h"

#include <QAccessibleWidget>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>

#include "base/numbers.h"
#include "shell/desktop/glance/state_colours.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/list/entry_detail_text.h"

namespace korvane {
namespace {

constexpr int kHoursALabel = 6;
constexpr int kDaysALabel = 7;
constexpr double kMarkSide = 6;
constexpr int kGridAlpha = 40;
constexpr const char* kNoTimes = "No response times yet.";

/// The next round number that is not smaller.
double RoundTop(double most) {
    const double top = std::pow(10, std::floor(std::log10(std::max(most, 1.0))));
    for (const double times : {1, 2, 3, 4, 5, 6, 8})
        if (top * times >= most) return top * times;
    return top * 10;
}

QColor Grid(const QPalette& palette) {
    QColor grid = palette.color(QPalette::Text);
    grid.setAlpha(kGridAlpha);
    return grid;
}

QAccessibleInterface* AccessibleChart(const QString& /*className*/, QObject* object) {
    auto* const chart = dynamic_cast<ResponseChart*>(object);
    return chart == nullptr ? nullptr : new QAccessibleWidget(chart, QAccessible::Chart);
}

QString ScaleLabel(double ms) {
    return Q(FormatGrouped(ms, ms < 10 && ms != std::floor(ms) ? 1 : 0));
}

}  // namespace

ResponseChart::ResponseChart(QWidget* parent) : QWidget(parent) {
    static const bool known = (QAccessible::installFactory(&AccessibleChart), true);
    Q_UNUSED(known);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
}

void ResponseChart::SetTimes(const std::vector<EntryDetail::ResponseTime>& times, bool days) {
    times_ = times;
    days_ = days;
    double most = -1;
    for (const EntryDetail::ResponseTime& time : times_)
        most = std::max(most, time.ms.value_or(-1));
    top_ = most < 0 ? 0 : RoundTop(most);
    const std::string figures = InWords(times_);
    setAccessibleDescription(figures.empty() ? QString(kNoTimes) : Q(figures));
    update();
}

QString ResponseChart::Range() const {
    std::vector<double> all;
    for (const EntryDetail::ResponseTime& time : times_)
        if (time.ms) all.push_back(*time.ms);
    if (all.empty()) return "";
    const auto [least, most] = std::minmax_element(all.begin(), all.end());
    const QString to = Q(MillisecondsInWords(*most));
    return *least == *most ? to : ScaleLabel(*least < 10 ? *least : std::round(*least)) + QChar(0x2013) + to;
}

QSize ResponseChart::minimumSizeHint() const {
    return {0, fontMetrics().height() * 3};
}

QRectF ResponseChart::Area() const {
    const int left = fontMetrics().horizontalAdvance(ScaleLabel(top_)) + fontMetrics().averageCharWidth();
    const int half = fontMetrics().height() / 2;
    return QRectF(rect()).adjusted(left, half + kMarkSide, -1, -fontMetrics().height() - 3);
}

QRectF ResponseChart::BarOf(std::size_t at) const {
    const QRectF area = Area();
    const double slot = area.width() / static_cast<double>(times_.size());
    const double left = std::round(area.left() + slot * static_cast<double>(at));
    const double right = std::round(area.left() + slot * static_cast<double>(at + 1));
    const double share = top_ > 0 ? times_[at].ms.value_or(0) / top_ : 0;
    const double height = std::max(1.0, std::round(area.height() * share));
    return {left + 1, area.bottom() - height, std::max(1.0, right - left - 2), height};
}

void ResponseChart::DrawScale(QPainter& painter) const {
    const QRectF area = Area();
    const int line = fontMetrics().height();
    for (const double share : {0.0, 0.5, 1.0}) {
        const double y = std::round(area.bottom() - area.height() * share) - 0.5;
        painter.setPen(Grid(palette()));
        painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
        if (area.height() < 2 * line && share == 0.5) continue;
        painter.setPen(QuietInk(palette()));
        const QRectF label(0, y - line / 2.0, area.left() - fontMetrics().averageCharWidth() / 2.0, line);
        painter.drawText(label, Qt::AlignRight | Qt::AlignVCenter, ScaleLabel(top_ * share));
    }
}

void ResponseChart::DrawBar(QPainter& painter, std::size_t at) const {
    const EntryDetail::ResponseTime& time = times_[at];
    const QRectF bar = BarOf(at);
    if (time.ms)
        painter.fillRect(bar, time.failed ? ColoursOf(RowIcon::Bad, palette()).ink : palette().color(QPalette::Highlight));
    if (!time.failed) return;
    const double side = std::min(kMarkSide, bar.width());
    const QRectF mark(bar.center().x() - side / 2, bar.top() - side - 2, side, side);
    painter.setPen(QPen(ColoursOf(RowIcon::Bad, palette()).ink, 2));
    painter.drawLine(mark.topLeft(), mark.bottomRight());
    painter.drawLine(mark.topRight(), mark.bottomLeft());
}

QString ResponseChart::TimeLabel(std::size_t at) const {
    if (at + 1 == times_.size()) return days_ ? "today" : "now";
    const DateTime from = times_[at].from;
    if (days_) return QString("%1/%2").arg(from.Month()).arg(from.Day());
    return QString("%1 %2").arg((from.Hour() + 11) % 12 + 1).arg(from.Hour() < 12 ? "AM" : "PM");
}

void ResponseChart::DrawTimes(QPainter& painter) const {
    const QRectF area = Area();
    painter.setPen(QuietInk(palette()));
    const std::size_t step = days_ ? kDaysALabel : kHoursALabel;
    for (std::size_t at = 0; at < times_.size(); ++at) {
        const bool last = at + 1 == times_.size();
        if (!last && (at % step != 0 || at + step / 2 >= times_.size())) continue;
        const QString label = TimeLabel(at);
        const double width = fontMetrics().horizontalAdvance(label) + 2;
        const double middle = BarOf(at).center().x() - width / 2;
        const QRectF place(std::clamp(middle, area.left(), area.right() - width), area.bottom() + 3, width,
                           fontMetrics().height());
        painter.drawText(place, Qt::AlignCenter, label);
    }
}

void ResponseChart::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (times_.empty()) return;
    if (accessibleDescription() == kNoTimes) {
        painter.setPen(QuietInk(palette()));
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, accessibleDescription());
        return;
    }
    DrawScale(painter);
    for (std::size_t at = 0; at < times_.size(); ++at)
        DrawBar(painter, at);
    DrawTimes(painter);
}

bool ResponseChart::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || times_.empty()) return QWidget::event(event);
    const QPoint at = static_cast<QHelpEvent*>(event)->pos();
    for (std::size_t i = 0; i < times_.size(); ++i) {
        const QRectF bar = BarOf(i);
        if (at.x() < bar.left() - 1 || at.x() > bar.right() + 1) continue;
        const std::string words = times_[i].from.Text() + ": " + MillisecondsInWords(times_[i].ms);
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), Q(words + (times_[i].failed ? ", failures" : "")), this);
        return true;
    }
    QToolTip::hideText();
    return true;
}

}  // namespace korvane
