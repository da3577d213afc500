// The icon in the notification area with its tip and its menu, restored if the desktop loses it.
#pragma once

#include <QMenu>
#include <QSystemTrayIcon>
#include <functional>
#include <string>

#include "platform/operator.h"

namespace korvane {

class MonitorTray {
public:
    /// `open` is called when the icon is clicked.
    explicit MonitorTray(std::function<void()> open);

    /// Must be filled with the commands before MenuIsBuilt, which marks those that can be on or off.
    QMenu& mnuTray() { return menu_; }
    void MenuIsBuilt();

    /// Returns whether this desktop shows such icons right now.
    static bool Available() { return QSystemTrayIcon::isSystemTrayAvailable(); }

    void SetPicture(TrayPicture picture);
    /// At most 64 characters are shown.
    void SetTip(const std::string& tip);
    /// Sets the marks and captions of the two commands that resume and pause.
    void SetMonitoring(bool on);
    /// Sets those of the two commands for an automatic start. `hasServices`: there is a service manager; without one its command
    /// is not shown.
    void SetStartMarks(bool hasServices, bool mnuTrayNTService, bool mnuTrayStartup);

    /// Adds the icon if the desktop does not have it, or removes it.
    void Show() { icon_.show(); }
    void Remove() { icon_.hide(); }
    /// Shows the desktop's own notification, if there is a tray. A click on it is a click on the icon.
    void Notify(const std::string& title, const std::string& text, bool alarming);
    /// Sends picture and tip to the desktop again, in case it has lost them.
    void Modify();

private:
    QAction& Action(const char* name) { return *menu_.findChild<QAction*>(name); }

    QMenu menu_;
    QSystemTrayIcon icon_;
    TrayPicture picture_ = TrayPicture::Normal;
};

}  // namespace korvane
