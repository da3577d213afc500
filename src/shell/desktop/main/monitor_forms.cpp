#include "shell/desktop/main/monitor_forms.h"

#include <utility>

#include "notify/dispatcher.h"
#include "shell/desktop/small/frm_about.h"
#include "shell/desktop/small/frm_feedback.h"
#include "shell/desktop/small/frm_tell_friend.h"
#include "shell/desktop/small/frm_wizard.h"

namespace korvane {

MonitorForms::MonitorForms(Desk desk, QWidget& owner, std::function<void()> loadMonitors)
    : ask([this](const WizardPage& page) { return frmWizard::Ask(desk_.events, Parent(), page); }),
      desk_(std::move(desk)),
      owner_(owner),
      help_(desk_.pages),
      emails_(desk_.files, desk_.dir, std::move(loadMonitors)) {
    help_.SetParent(&owner_);
    desk_.pages.OnShow([this] { help_.Show(); });
}

// A hidden window would hide its dialogs.
QWidget* MonitorForms::Parent() const {
    return owner_.isVisible() ? &owner_ : nullptr;
}

template <class MakeForm>
void MonitorForms::Open(const std::string& name, MakeForm makeForm) {
    QPointer<QDialog>& form = open_[name];
    if (form == nullptr) {
        form = makeForm(Parent());
        form->open();
    }
    form->raise();
    form->activateWindow();
}

void MonitorForms::ShowOptions() {
    Open("frmOptions", [this](QWidget* parent) {
        auto* form = new frmOptions(desk_, emails_, parent);
        QObject::connect(form, &QDialog::accepted, &owner_, [this] { desk_.service.FollowSettings(); });
        return form;
    });
}

void MonitorForms::SetStartMarks(bool mnuTrayNTService, bool mnuTrayStartup) {
    if (QDialog* form = open_["frmOptions"]; form != nullptr)
        static_cast<frmOptions*>(form)->SetStartMarks(mnuTrayNTService, mnuTrayStartup);
}

void MonitorForms::ShowAbout() {
    Open("frmAbout", [this](QWidget* parent) {
        return new frmAbout({.version = desk_.version,
                             .systemInfo = GetSysInfoString(desk_.systemInfo, desk_.version),
                             .showPage = [this] { desk_.pages.Show(WebPage::AboutLink); }},
                            parent);
    });
}

void MonitorForms::ShowFeedback() {
    Open("frmFeedback", [this](QWidget* parent) {
        return new frmFeedback({desk_.pages, desk_.events, desk_.person}, desk_.version, parent);
    });
}

void MonitorForms::ShowTellFriend() {
    Open("frmTellFriend", [this](QWidget* parent) {
        return new frmTellFriend({desk_.pages, desk_.events, desk_.person}, parent);
    });
}

void MonitorForms::SetUpForTheFirstTime() {
    ServiceMode& service = desk_.service;
    SetUpFirstRun(desk_, {.ask = ask,
                          .IsWindows95 = [&service] { return service.IsWindows95(); },
                          .IsWindowsNT = [&service] { return service.IsWindowsNT(); },
                          .AddOrRemoveGroupShortCut = [&service](bool add) { service.AddOrRemoveGroupShortCut(add); },
                          .InstallService = [&service](const std::string& name) { return service.InstallService(name, true); },
                          .WarnIfInStartupGroup = [&service] { service.WarnIfInStartupGroup(); },
                          .checkTrayStartup = [&service] { service.CheckTrayStartup(); },
                          .checkTrayNTService = [&service] { service.CheckTrayNTService(); },
                          .setEmailOfMonitors =
                              [this](const std::string& address) {
                                  for (const ResourceMonitor monitor : {ResourceMonitor::Disk, ResourceMonitor::Memory,
                                                                        ResourceMonitor::CPU, ResourceMonitor::Services})
                                      emails_.setEmail(monitor, address);
                                  emails_.LoadData();
                              }});
}

}  // namespace korvane
