#include "shell/desktop/settings/frm_options.h"

#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTabWidget>
#include <utility>

#include "base/raised_flag.h"
#include "base/text.h"
#include "shell/desktop/small/frm_input.h"
#include "shell/entry/fresh_entry.h"
#include "shell/options/options_hints.h"
#include "shell/options/options_open.h"
#include "shell/options/options_proxy.h"
#include "shell/options/options_save.h"
#include "shell/run/message_title.h"

namespace korvane {

frmOptions::frmOptions(const Desk& desk, OptionsCommands commands, QWidget* parent)
    : TabbedDialog("frmOptions", "Settings", parent), desk_(desk), commands_(std::move(commands)) {
    askText = [self = QPointer<frmOptions>(this)](const std::string& title, const std::string& prompt, const auto& answered) {
        if (self != nullptr) (new frmInput(title, prompt, answered, self))->open();
    };
    askForFile = [this](const FileQuestion& question, const auto& chosen) { AskForFile(question, chosen); };

    BuildPages();
    cmdCheckVersion_ = AddStatusAndButtons("cmdCheckVersion", "Check for New &Version...", [this] { cmdOk_Click(); });

    ConnectTyping();
    ConnectCommands();
    WatchForHelp(HelpOnOptionsInput);
    Form_Load();
}

void frmOptions::BuildPages() {
    monitoring_ = new OptionsMonitoringPage(inputs_, this);
    mail_ = new OptionsMailPage(inputs_, this);
    reports_ = new OptionsReportsPage(inputs_, this);
    restart_ = new OptionsRestartPage(inputs_, this);
    proxy_ = new OptionsProxyPage(inputs_, this);
    service_ = new OptionsServicePage(inputs_, this);
    resets_ = new OptionsResetsPage(this);
    AddPage(monitoring_, "Monitoring");
    AddPage(mail_, "E-Mail");
    AddPage(reports_, "Reports and Sound");
    AddPage(restart_, "Restart");
    AddPage(proxy_, "Proxy");
    AddPage(service_, "Service");
    AddPage(resets_, "Resets");
    tabPages_->setMinimumWidth(tabPages_->tabBar()->sizeHint().width());  // so that no tab needs the scroll buttons
}

void frmOptions::Form_Load() {
    const OptionsFields fields = OptionsFromSettings(desk_.collection);
    inputs_.Fill(fields);
    serviceName_ = fields.ServiceName;
    (fields.RebootAny ? restart_->optRebootAny : restart_->optRebootAll)->setChecked(true);
    ShowChoices(fields.Reboot);
    monitoring_->txtBegin->setFocus();
    LoadService();
    LoadMailServer();
    LoadProxy();
    service_->chkStartup->setChecked(commands_.IsInStartupGroup());
    loading_ = false;
}

void frmOptions::LoadService() {
    service_->lblServiceName->setText(Q(serviceName_));
    if (commands_.IsWindowsNT()) return;
    service_->chkService->setChecked(false);
    service_->chkService->hide();
    SetStatus(kNoServiceHint);
}

void frmOptions::LoadMailServer() {
    if (!Trim(S(mail_->txtServer->text())).empty()) return;
    ShowPageOf(mail_->txtServer);
    mail_->txtServer->setText(Q(kSampleMailHost));
    mail_->txtServer->setFocus();
    mail_->txtServer->selectAll();
    SetStatus(NoMailServerHint());
    desk_.person.ShowMessage(kMessageTitle, NoMailServerMessage());
}

void frmOptions::LoadProxy() {
    proxyServer_ = commands_.proxyServer();
    const bool isDetected = !Trim(proxyServer_).empty();
    proxy_->cmdSetProxy->setVisible(isDetected);
    proxy_->lblProxy->setVisible(isDetected);
    if (isDetected) proxy_->lblProxy->setText(Q(ProxyDetectedText(proxyServer_)));
}

void frmOptions::SetStartMarks(bool mnuTrayNTService, bool mnuTrayStartup) {
    ShowMark(*service_->chkService, mnuTrayNTService && commands_.IsWindowsNT());
    ShowMark(*service_->chkStartup, mnuTrayStartup);
}

void frmOptions::ShowMark(QCheckBox& mark, bool checked) {
    const RaisedFlag loading(loading_);
    mark.setChecked(checked);
}

OptionsFields frmOptions::Read() const {
    OptionsFields fields = inputs_.Read();
    fields.RebootAny = restart_->optRebootAny->isChecked();
    fields.ServiceName = serviceName_;
    return fields;
}

void frmOptions::cmdOk_Click() {
    if (std::exchange(saving_, true)) return;
    const Desk desk = desk_;
    const QPointer<frmOptions> self = this;
    const auto refusal = SaveOptions(desk, Read());
    if (self == nullptr) return;
    saving_ = false;
    if (refusal) return Refuse(*inputs_.Box(refusal->field), refusal->message);
    if (proxyChanged_) desk.person.ShowMessage(kMessageTitle, std::string(kProxyChangedMessage));
    if (self != nullptr && !IsClosed()) accept();
}

void frmOptions::Refuse(QLineEdit& box, const std::string& message) {
    ShowPageOf(&box);
    MarkRefused(box, Lines(message));
    desk_.person.ShowMessage(kMessageTitle, message);
}

}  // namespace korvane
