// The tool tips of a table: under the pointer, a cell that is too narrow shows its whole text; other cells show nothing.
#pragma once

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QStyledItemDelegate>
#include <QToolTip>

namespace korvane {

class CutCellTips : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override {
        const int seen = option.rect.intersected(view->viewport()->rect()).width();
        if (event->type() != QEvent::ToolTip || sizeHint(option, index).width() > seen)
            return QStyledItemDelegate::helpEvent(event, view, option, index);
        QToolTip::hideText();
        return true;
    }
};

}  // namespace korvane
