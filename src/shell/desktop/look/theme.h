// Room `look`: pictures, colours and styles.
//
// Light or dark, as the desktop is: where Qt's own platform theme does not see to it, the desktop's settings portal is
// asked and listened to.
#pragma once

#include <QPalette>
#include <memory>

class QDBusConnection;

namespace korvane {

class DesktopTheme {
public:
    /// Of the application that there is. Does not wait: where the desktop answers, the palette of the application changes
    /// then, and again with each change of the desktop's choice. Nothing happens where Qt already has a dark palette.
    /// A theme that GTK_THEME names is taken as it is.
    DesktopTheme();
    /// As above, on a bus of the caller's.
    explicit DesktopTheme(const QDBusConnection& bus);
    ~DesktopTheme();
    DesktopTheme(const DesktopTheme&) = delete;
    DesktopTheme& operator=(const DesktopTheme&) = delete;

private:
    class Portal;

    void Follow(const QDBusConnection& bus);

    std::unique_ptr<Portal> portal_;
};

/// The dark palette, for the Fusion style.
QPalette DarkPalette();

}  // namespace korvane
