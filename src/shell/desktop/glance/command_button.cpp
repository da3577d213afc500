#include "shell/desktop/glance/command_button.h"

#include <QStyleOptionButton>
#include <QStylePainter>
#include <algorithm>

namespace korvane {

bool CommandButton::IsNarrow() const {
    return window()->width() < kNarrowWindow;
}

QSize CommandButton::sizeHint() const {
    const QSize whole = QPushButton::sizeHint();
    return {IsNarrow() ? iconSize().width() * 9 / 4 : whole.width(), whole.height()};
}

void CommandButton::paintEvent(QPaintEvent* /*event*/) {
    QStyleOptionButton option;
    initStyleOption(&option);
    const int needed = 2 * iconSize().width() + fontMetrics().size(Qt::TextShowMnemonic, text()).width();
    if (IsNarrow() || width() < std::min(needed, sizeHint().width())) option.text.clear();
    QStylePainter(this).drawControl(QStyle::CE_PushButton, option);
}

}  // namespace korvane
