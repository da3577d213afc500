#include "shell/desktop/look/mark_style.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>

namespace korvane {
namespace {

bool OnDarkGround(const QPalette& palette) {
    return palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
}

}  // namespace

MarkStyle::MarkStyle() : QProxyStyle(QApplication::style()->name()) {}

void MarkStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool isBox = element == PE_IndicatorCheckBox || element == PE_IndicatorItemViewItemCheck;
    if ((!isBox && element != PE_IndicatorRadioButton) || !OnDarkGround(option->palette)) return;
    painter->save();
    painter->setBrush(Qt::NoBrush);
    painter->setPen(option->palette.color(QPalette::PlaceholderText));
    const QRectF outline = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (isBox) {
        painter->drawRect(outline);
    } else {
        painter->setRenderHint(QPainter::Antialiasing);
        painter->drawEllipse(outline);
    }
    painter->restore();
}

}  // namespace korvane
