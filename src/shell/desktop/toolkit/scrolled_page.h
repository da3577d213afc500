// A page of a dialog that scrolls if the screen is too small for it, and otherwise is as large as its content.
#pragma once

#include <QScrollArea>

namespace korvane {

class ScrolledPage : public QScrollArea {
public:
    /// Takes ownership of `page`.
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
