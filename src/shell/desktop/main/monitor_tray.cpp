#include "shell/desktop/main/monitor_tray.h"

#include "base/text.h"
#include "shell/desktop/look/icons.h"
#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

constexpr std::size_t kLongestTip = 64;

}  // namespace

MonitorTray::MonitorTray(Commands commands) : commands_(std::move(commands)) {
    BuildMenu();
    icon_.setContextMenu(&menu_);
    icon_.setIcon(TrayIcon(picture_));
    QObject::connect(&icon_, &QSystemTrayIcon::activated, &icon_, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) commands_.mnuTraySettings();
    });
}

void MonitorTray::BuildMenu() {
    menu_.setObjectName("mnuTray");
    const auto add = [this](const char* name, const char* caption, const std::function<void()>& command) {
        QAction* action = menu_.addAction(caption, [command] { command(); });
        action->setObjectName(name);
        return action;
    };
    menu_.setDefaultAction(add("mnuTraySettings", "&Open Korvane", commands_.mnuTraySettings));
    menu_.addSeparator();
    mnuTrayOn_ = add("mnuTrayOn", "&Monitoring ON", commands_.mnuTrayOn);
    mnuTrayOff_ = add("mnuTrayOff", "&Pause Monitoring", commands_.mnuTrayOff);
    menu_.addSeparator();
    add("mnuTrayReports", "&Reports", commands_.mnuTrayReports);
    menu_.addSeparator();
    mnuTrayNTService_ = add("mnuTrayNTService", "&Install as Service", commands_.mnuTrayNTService);
    mnuTrayStartup_ = add("mnuTrayStartup", "Start when I &Log On", commands_.mnuTrayStartup);
    menu_.addSeparator();
    add("mnuTrayTellFriend", "&Tell a Friend...", commands_.mnuTrayTellFriend);
    add("mnuTrayFeedback", "Send &Feedback...", commands_.mnuTrayFeedback);
    menu_.addSeparator();
    add("mnuTrayExit", "E&xit", commands_.mnuTrayExit);
    for (QAction* mark : {mnuTrayOn_, mnuTrayOff_, mnuTrayNTService_, mnuTrayStartup_})
        mark->setCheckable(true);
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
    mnuTrayOn_->setChecked(on);
    mnuTrayOn_->setText(on ? "&Monitoring ON" : "Resume &Monitoring");
    mnuTrayOff_->setChecked(!on);
    mnuTrayOff_->setText(on ? "&Pause Monitoring" : "Monitoring &Paused");
}

void MonitorTray::SetStartMarks(bool hasServices, bool mnuTrayNTService, bool mnuTrayStartup) {
    mnuTrayNTService_->setVisible(hasServices);
    mnuTrayNTService_->setChecked(mnuTrayNTService);
    mnuTrayStartup_->setChecked(mnuTrayStartup);
}

void MonitorTray::Modify() {
    icon_.setIcon(icon_.icon());
    icon_.setToolTip(icon_.toolTip());
}

}  // namespace korvane
