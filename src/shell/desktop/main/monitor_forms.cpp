#include "shell/desktop/main/monitor_forms.h"

#include <utility>

#include "notify/dispatcher.h"
#include "shell/desktop/small/frm_about.h"
#include "shell/desktop/small/frm_wizard.h"
#include "shell/desktop/small/web_form_dialogs.h"

namespace korvane {

MonitorForms::MonitorForms(Desk desk, QWidget& owner, std::function<void()> loadMonitors)
    : desk_(std::move(desk)),
      owner_(owner),
      help_(desk_.pages),
      manual_(desk_.pages, desk_.dataDir),
      emails_(desk_.files, desk_.dir, std::move(loadMonitors)) {
    help_.SetParent(&owner_);
    manual_.SetParent(&owner_);
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

void MonitorForms::ShowOptions() {
    if (auto* form = Open<frmOptions>("frmOptions", std::ref(emails_)); form != nullptr)
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
