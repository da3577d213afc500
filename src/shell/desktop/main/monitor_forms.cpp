#include "shell/desktop/main/monitor_forms.h"

#include <utility>

#include "notify/dispatcher.h"
#include "shell/desktop/settings/frm_global_email.h"
#include "shell/desktop/small/frm_about.h"
#include "shell/desktop/small/frm_wizard.h"
#include "shell/desktop/small/web_form_dialogs.h"

namespace korvane {

MonitorForms::MonitorForms(Desk desk, QWidget& owner, std::function<void()> loadMonitors)
    : desk_(std::move(desk)), owner_(owner), help_(desk_.pages), emails_(desk_.files, desk_.dir, std::move(loadMonitors)) {
    help_.SetParent(&owner_);
    desk_.pages.OnShow([this] { help_.Show(); });
}

// A hidden window would hide its dialogs.
QWidget* MonitorForms::Parent() const {
    return owner_.isVisible() ? &owner_ : nullptr;
}

template <class Form, class... More>
Form* MonitorForms::Open(const std::string& name, More... more) {
    QPointer<QDialog>& form = open_[name];
    Form* made = nullptr;
    if (form == nullptr) {
        form = made = new Form(desk_, std::move(more)..., Parent());
        form->open();
    }
    form->raise();
    form->activateWindow();
    return made;
}

OptionsCommands MonitorForms::CommandsOfOptions() {
    ServiceMode& service = desk_.service;
    return {.proxyServer = desk_.proxyServer,
            .PlaySound = [this](const std::string& path) { desk_.sound.PlaySound(path); },
            .IsWindowsNT = [&service] { return service.IsWindowsNT(); },
            .chkService_Click = [&service](bool checked) { return service.chkService_Click(checked); },
            .chkStartup_Click = [&service](bool checked) { return service.chkStartup_Click(checked); },
            .IsInStartupGroup = [&service] { return service.IsInStartupGroup(); },
            .TestShutDown = [this](const auto& answered) { desk_.restart.TestShutDown(answered); },
            .CheckVersion = [this] { desk_.versionCheck.CheckForVersion(); },
            .GlobalEmail = [this](QWidget* over) { (new frmGlobalEmail(desk_, emails_, over))->open(); },
            .HelpService = [this] { desk_.pages.Show(WebPage::ServiceHelp); },
            .HelpShutDown = [this] { desk_.pages.Show(WebPage::ShutdownHelp); }};
}

void MonitorForms::ShowOptions() {
    if (auto* form = Open<frmOptions>("frmOptions", CommandsOfOptions()); form != nullptr)
        QObject::connect(form, &QDialog::accepted, &owner_, [this] { desk_.service.FollowSettings(); });
}

void MonitorForms::SetStartMarks(bool mnuTrayNTService, bool mnuTrayStartup) {
    if (QDialog* form = open_["frmOptions"]; form != nullptr)
        static_cast<frmOptions*>(form)->SetStartMarks(mnuTrayNTService, mnuTrayStartup);
}

void MonitorForms::ShowAbout() {
    Open<frmAbout>("frmAbout");
}

void MonitorForms::ShowFeedback() {
    Open<frmFeedback>("frmFeedback");
}

void MonitorForms::ShowTellFriend() {
    Open<frmTellFriend>("frmTellFriend");
}

void MonitorForms::SetUpForTheFirstTime() {
    const auto ask = [this](const WizardPage& page) { return frmWizard::Ask(desk_.events, Parent(), page); };
    SetUpFirstRun(desk_, ask, [this](const std::string& address) {
        for (const ResourceMonitor monitor :
             {ResourceMonitor::Disk, ResourceMonitor::Memory, ResourceMonitor::CPU, ResourceMonitor::Services})
            emails_.setEmail(monitor, address);
        emails_.LoadData();
    });
}

}  // namespace korvane
