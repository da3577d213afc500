#include "shell/desktop/glance/state_chip.h"

#include <QPainter>
#include <QStyle>
#include <algorithm>

#include "shell/desktop/glance/state_colours.h"
#include "shell/desktop/look/icons.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/list/list_filter.h"

namespace korvane {
namespace {

constexpr double kPressedEdge = 2;
constexpr float kFaint = 0.3F;  ///< opacity of the edge of a chip that is not pressed

bool IsAlarming(RowIcon state) {
    return state == RowIcon::Bad || state == RowIcon::Warn;
}

}  // namespace

StateChip::StateChip(RowIcon state, QWidget* parent) : QAbstractButton(parent), state_(state) {
    const QString word = Q(StateWord(state));
    setObjectName("chip" + QString(word).remove('-'));
    setText(word);
    setIcon(StateIcon(state));
    setAccessibleName("Show servers that are " + word);
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);  // a click leaves the keyboard in the list
    setAttribute(Qt::WA_Hover);
    SetCount(0);
}

void StateChip::SetCount(int count) {
    count_ = count;
    setAccessibleDescription(QString::number(count));
    updateGeometry();
    update();
}

void StateChip::SetCompact(bool compact) {
    compact_ = compact;
    updateGeometry();
    update();
}

QFont StateChip::CountFont() const {
    QFont bold = font();
    bold.setBold(true);
    return bold;
}

// With room for two digits, so that the chips do not move with each change.
QSize StateChip::sizeHint() const {
    const QFontMetrics digits(CountFont());
    const int count = std::max(digits.horizontalAdvance("88"), digits.horizontalAdvance(QString::number(count_)));
    const int word = compact_ ? 0 : fontMetrics().horizontalAdvance(text()) + Gap();
    return {2 * Padding() + iconSize().width() + Gap() + word + count, fontMetrics().height() + Padding() + 3};
}

void StateChip::paintEvent(QPaintEvent* /*event*/) {
    const StateColours colours = ColoursOf(state_, palette());
    const bool shaded = isChecked() || isDown() || underMouse();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double edge = isChecked() ? kPressedEdge : 1;
    QColor faint = palette().color(QPalette::Text);
    faint.setAlphaF(kFaint);
    painter.setPen(QPen(isChecked() ? colours.ink : faint, edge));
    painter.setBrush(shaded ? colours.ground : palette().color(QPalette::Base));
    const QRectF pill = QRectF(rect()).adjusted(edge / 2, edge / 2, -edge / 2, -edge / 2);
    painter.drawRoundedRect(pill, pill.height() / 2, pill.height() / 2);
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Text), 1, Qt::DotLine));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(pill.adjusted(3, 3, -3, -3), pill.height() / 2 - 3, pill.height() / 2 - 3);
    }
    QRect inside = rect().adjusted(Padding(), 0, -Padding(), 0);
    const QRect picture(QPoint(inside.left(), (height() - iconSize().height()) / 2), iconSize());
    icon().paint(&painter, picture, Qt::AlignCenter, count_ > 0 || isChecked() ? QIcon::Normal : QIcon::Disabled);
    inside.setLeft(inside.left() + iconSize().width() + Gap());
    const bool plain = !isChecked() && (count_ == 0 || !IsAlarming(state_));
    painter.setPen(isChecked() ? colours.ink : palette().color(QPalette::Text));
    if (!compact_) painter.drawText(inside, Qt::AlignLeft | Qt::AlignVCenter, text());
    painter.setFont(CountFont());
    painter.setPen(plain ? palette().color(QPalette::Text) : colours.ink);
    painter.drawText(inside, Qt::AlignRight | Qt::AlignVCenter, QString::number(count_));
}

}  // namespace korvane
