// The commands of the settings dialog except saving: those that test, choose, install and reset.
#include <QFileDialog>
#include <QPointer>
#include <QPushButton>
#include <utility>

#include "shell/desktop/settings/frm_options.h"
#include "shell/options/options_proxy.h"

namespace korvane {

void frmOptions::ConnectCommands() {
    const auto onClick = [this](QAbstractButton* button, auto command) {
        connect(button, &QAbstractButton::clicked, this, command);
    };
    const auto playsSound = [&](QAbstractButton* button, const QLineEdit* box) {
        onClick(button, [this, box] { commands_.PlaySound(S(box->text())); });
    };
    const auto resets = [&](QAbstractButton* button, OptionsReset reset) {
        onClick(button, [desk = desk_, reset] { ResetForAll(desk, reset); });
    };
    onClick(cmdCheckVersion_, [this] { cmdCheckVersion_Click(); });
    onClick(mail_->cmdTestEmail, [this] { cmdTestEmail_Click(); });
    onClick(mail_->cmdGlobalEmail, [this] { commands_.GlobalEmail(this); });
    onClick(reports_->cmdReportPath, [this] { ChooseReportPath(); });
    onClick(reports_->cmdYellowAlertWav, [this] { ChooseSound(*reports_->txtYellowAlertWav); });
    onClick(reports_->cmdRedAlertWav, [this] { ChooseSound(*reports_->txtRedAlertWav); });
    playsSound(reports_->cmdTestYellowAlert, reports_->txtYellowAlertWav);
    playsSound(reports_->cmdTestRedAlert, reports_->txtRedAlertWav);
    onClick(restart_->cmdTestShutDown, [this] { cmdTestShutDown_Click(); });
    onClick(restart_->cmdHelpShutDown, [this] { commands_.HelpShutDown(); });
    onClick(proxy_->cmdSetProxy, [this] { cmdSetProxy_Click(); });
    ConnectMark(service_->chkService, &frmOptions::chkService_Click);
    ConnectMark(service_->chkStartup, &frmOptions::chkStartup_Click);
    onClick(service_->cmdHelpService, [this] { commands_.HelpService(); });
    resets(resets_->cmdResetSummary, OptionsReset::Summary);
    resets(resets_->cmdDeleteResponse, OptionsReset::ResponseData);
    resets(resets_->cmdDeleteAll, OptionsReset::All);
}

// Covers every way to change the mark, including a screen reader, which does not click. The handler may destroy this dialog, and
// Qt still needs the mark after its signal, so the handler runs from the pump.
void frmOptions::ConnectMark(QCheckBox* mark, void (frmOptions::*changed)(bool checked)) {
    connect(mark, &QCheckBox::toggled, this, [this, changed](bool checked) {
        if (loading_) return;
        QMetaObject::invokeMethod(
            this, [this, changed, checked] { (this->*changed)(checked); }, Qt::QueuedConnection);
    });
}

void frmOptions::cmdTestEmail_Click() {
    if (std::exchange(mailing_, true)) return;
    const QPointer<frmOptions> self = this;
    const auto setStatus = [self](const std::string& text) {
        if (self != nullptr && !self->IsClosed()) self->SetStatus(text);
    };
    TestMailSettings(desk_, Read(), askText, setStatus, [self] {
        if (self != nullptr) self->mailing_ = false;
    });
}

void frmOptions::cmdSetProxy_Click() {
    const QPointer<frmOptions> self = this;
    const ProxyBoxes boxes = ProxyFromDetected(proxyServer_);
    if (boxes.name) proxy_->txtProxyName->setText(Q(*boxes.name));
    if (self != nullptr) proxy_->txtProxyPort->setText(Q(boxes.port));
}

// The manager is slow: neither mark can be clicked meanwhile, and the focus then returns to the one that had it.
void frmOptions::chkService_Click(bool checked) {
    const OptionsCommands commands = commands_;
    const QPointer<frmOptions> self = this;
    service_->setEnabled(false);
    const bool isInstalled = commands.chkService_Click(checked);
    if (self == nullptr) return;
    service_->setEnabled(true);
    ShowMark(*service_->chkService, isInstalled);
    ShowMark(*service_->chkStartup, commands.IsInStartupGroup());
    if (!IsClosed()) service_->chkService->setFocus();
}

void frmOptions::chkStartup_Click(bool checked) {
    const OptionsCommands commands = commands_;
    const QPointer<frmOptions> self = this;
    const bool isInGroup = commands.chkStartup_Click(checked);
    if (self != nullptr) ShowMark(*service_->chkStartup, isInGroup);
}

void frmOptions::cmdTestShutDown_Click() {
    const OptionsCommands commands = commands_;
    commands.TestShutDown([self = QPointer<frmOptions>(this)] {
        if (self != nullptr && !self->IsClosed()) self->SetStatus(kRestartTested);
    });
}

void frmOptions::cmdCheckVersion_Click() {
    const OptionsCommands commands = commands_;
    const QPointer<frmOptions> self = this;
    cmdCheckVersion_->setEnabled(false);
    commands.CheckVersion();
    if (self != nullptr) cmdCheckVersion_->setEnabled(true);
}

void frmOptions::ChooseSound(QLineEdit& box) {
    askForFile({.title = "Choose Sound File", .name = "xxxx", .extension = "wav", .filter = "*.wav"},
               [&box](const QString& path) { box.setText(path); });
}

void frmOptions::ChooseReportPath() {
    askForFile({.title = "Choose Report Folder", .name = "*.*", .extension = "", .filter = "*.* (*)"},
               [this](const QString& path) { reports_->txtReportPath->setText(Q(FolderOfFile(S(path)))); });
}

void frmOptions::AskForFile(const FileQuestion& question, const std::function<void(const QString& path)>& chosen) {
    auto* dialog = new QFileDialog(this, question.title);
    dialog->setObjectName("fileDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setNameFilter(question.filter);
    dialog->setOption(QFileDialog::HideNameFilterDetails);
    dialog->setDefaultSuffix(question.extension);
    dialog->selectFile(question.name);
    connect(dialog, &QFileDialog::fileSelected, this, chosen);
    dialog->open();
}

}  // namespace korvane
