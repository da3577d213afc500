// The style of the windows: the desktop's style, with an outline around check boxes and radio buttons where theirs is invisible
// on a dark background.
#pragma once

#include <QProxyStyle>

namespace korvane {

class MarkStyle : public QProxyStyle {
public:
    /// Wraps the application's current style.
    MarkStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

}  // namespace korvane
