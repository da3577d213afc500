// The style of the windows: that of the desktop, with an outline around check boxes and radio buttons where its own can't be seen
// on a dark ground.
#pragma once

#include <QProxyStyle>

namespace korvane {

class MarkStyle : public QProxyStyle {
public:
    /// Over the style that the application has now.
    MarkStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

}  // namespace korvane
