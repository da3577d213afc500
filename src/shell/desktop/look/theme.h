// Room `look`: pictures, colours and styles.
//
// Light or dark, as the desktop wants it.
#pragma once

#include <QFontMetrics>
#include <QPalette>
#include <QProxyStyle>
#include <memory>

class QDBusConnection;

namespace korvane {

/// Follows the desktop's choice of light or dark: if Qt's own platform theme does not handle it, this reads and watches the
/// desktop's settings portal.
class DesktopTheme {
public:
    /// Concerns the current application. Does not wait: the application's palette changes when the desktop answers, and again
    /// with each change of the desktop's choice. Does nothing if Qt already has a dark palette. A theme named by GTK_THEME stays
    /// unchanged.
    DesktopTheme();
    /// The same, on the caller's bus.
    explicit DesktopTheme(const QDBusConnection& bus);
    ~DesktopTheme();
    DesktopTheme(const DesktopTheme&) = delete;
    DesktopTheme& operator=(const DesktopTheme&) = delete;

private:
    class Portal;

    void Follow(const QDBusConnection& bus);

    std::unique_ptr<Portal> portal_;
};

/// The style of the windows: the desktop's style, with an outline around check boxes and radio buttons where theirs is invisible
/// on a dark background, with coloured tabs, with heads of columns that end in dots where they are cut, and with pictures of
/// buttons that change under the mouse and when they are pressed. All of it changes at once: nothing moves.
class MarkStyle : public QProxyStyle {
public:
    /// Wraps the application's current style.
    MarkStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter, const QWidget* widget) const override;
};

/// Returns the pixels between a head that is aligned at the right and the end of its column.
inline int SpaceAfterNumber(const QFontMetrics& font) {
    return font.averageCharWidth();
}

/// The dark palette, for the Fusion style.
QPalette DarkPalette();

}  // namespace korvane
