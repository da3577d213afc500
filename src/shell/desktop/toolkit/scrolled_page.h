// A page of a dialog that scrolls where the screen has no room for it, and otherwise is as large as what stands on it.
#pragma once

#include <QScrollArea>

namespace korvane {

class ScrolledPage : public QScrollArea {
public:
    /// `page` belongs to this from here on.
    explicit ScrolledPage(QWidget* page) {
        setFrameShape(QFrame::NoFrame);
        setWidgetResizable(true);
        setFocusPolicy(Qt::NoFocus);
        setWidget(page);
        page->setAutoFillBackground(false);
        viewport()->setAutoFillBackground(false);
    }

    QSize sizeHint() const override { return widget()->sizeHint(); }
    QSize minimumSizeHint() const override { return {widget()->minimumSizeHint().width(), fontMetrics().height() * 6}; }
};

}  // namespace korvane
