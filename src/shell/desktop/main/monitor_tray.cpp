#include "shell/desktop/main/monitor_tray.h"

#include <utility>

#include "base/text.h"
#include "shell/desktop/look/icons.h"
#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

constexpr std::size_t kLongestTip = 64;

}  // namespace

MonitorTray::MonitorTray(std::function<void()> open) {
    menu_.setObjectName("mnuTray");
    icon_.setContextMenu(&menu_);
    icon_.setIcon(TrayIcon(picture_));
    QObject::connect(&icon_, &QSystemTrayIcon::messageClicked, &icon_, open);
    QObject::connect(&icon_, &QSystemTrayIcon::activated, &icon_,
                     [open = std::move(open)](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) open();
                     });
}

void MonitorTray::MenuIsBuilt() {
    menu_.setDefaultAction(&Action("mnuTraySettings"));
    for (const char* mark : {"mnuTrayOn", "mnuTrayOff", "mnuTrayNTService", "mnuTrayStartup"})
        Action(mark).setCheckable(true);
    SetMonitoring(true);
}

void MonitorTray::SetPicture(TrayPicture picture) {
    if (picture == picture_) return;
    picture_ = picture;
    icon_.setIcon(TrayIcon(picture_));
}

void MonitorTray::SetTip(const std::string& tip) {
    icon_.setToolTip(Q(Left(tip, kLongestTip)));
}

void MonitorTray::SetMonitoring(bool on) {
    Action("mnuTrayOn").setChecked(on);
    Action("mnuTrayOn").setText(on ? "&Monitoring ON" : "Resume &Monitoring");
    Action("mnuTrayOff").setChecked(!on);
    Action("mnuTrayOff").setText(on ? "&Pause Monitoring" : "Monitoring &Paused");
}

void MonitorTray::SetStartMarks(bool hasServices, bool mnuTrayNTService, bool mnuTrayStartup) {
    Action("mnuTrayNTService").setVisible(hasServices);
    Action("mnuTrayNTService").setChecked(mnuTrayNTService);
    Action("mnuTrayStartup").setChecked(mnuTrayStartup);
}

void MonitorTray::Notify(const std::string& title, const std::string& text, bool alarming) {
    if (!Available()) return;
    Show();
    icon_.showMessage(Q(title), Q(text), alarming ? QSystemTrayIcon::Critical : QSystemTrayIcon::Information);
}

void MonitorTray::Modify() {
    icon_.setIcon(icon_.icon());
    icon_.setToolTip(icon_.toolTip());
}

}  // namespace korvane
