// The commands of the settings dialog except saving: those that test, choose, install and reset.
#include <QPointer>
#include <QPushButton>
#include <utility>

#include "shell/desktop/settings/frm_options.h"
#include "shell/desktop/small/frm_input.h"

namespace korvane {

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
    const AskText ask = [self](const std::string& title, const std::string& prompt, const auto& answered) {
        if (self != nullptr) (new frmInput(title, prompt, answered, self))->open();
    };
    TestMailSettings(desk_, Read(), ask, setStatus, [self] {
        if (self != nullptr) self->mailing_ = false;
    });
}

void frmOptions::cmdSetProxy_Click() {
    const QPointer<frmOptions> self = this;
    const ProxyBoxes boxes = ProxyFromDetected(proxyServer_);
    if (boxes.name) inputs_.Box(&OptionsFields::ProxyName)->setText(Q(*boxes.name));
    if (self != nullptr) inputs_.Box(&OptionsFields::ProxyPort)->setText(Q(boxes.port));
}

// The manager is slow: neither mark can be clicked meanwhile, and the focus then returns to the one that had it.
void frmOptions::chkService_Click(bool checked) {
    ServiceMode& service = desk_.service;
    const QPointer<frmOptions> self = this;
    servicePage_->setEnabled(false);
    const bool isInstalled = service.chkService_Click(checked);
    if (self == nullptr) return;
    servicePage_->setEnabled(true);
    ShowMark(*chkService_, isInstalled);
    ShowMark(*chkStartup_, service.IsInStartupGroup());
    if (!IsClosed()) chkService_->setFocus();
}

void frmOptions::chkStartup_Click(bool checked) {
    const QPointer<frmOptions> self = this;
    const bool isInGroup = desk_.service.chkStartup_Click(checked);
    if (self != nullptr) ShowMark(*chkStartup_, isInGroup);
}

void frmOptions::cmdTestShutDown_Click() {
    desk_.restart.TestShutDown([self = QPointer<frmOptions>(this)] {
        if (self != nullptr && !self->IsClosed()) self->SetStatus(kRestartTested);
    });
}

void frmOptions::cmdCheckVersion_Click() {
    const QPointer<frmOptions> self = this;
    cmdCheckVersion_->setEnabled(false);
    desk_.versionCheck.CheckForVersion();
    if (self != nullptr) cmdCheckVersion_->setEnabled(true);
}

void frmOptions::ChooseSound(QLineEdit& box) {
    AskForFile("Choose Sound File", "xxxx", "wav", "*.wav", [&box](const QString& path) { box.setText(path); });
}

void frmOptions::ChooseReportPath() {
    AskForFile("Choose Report Folder", "*.*", "", "*.* (*)",
               [this](const QString& path) { inputs_.Box(&OptionsFields::ReportPath)->setText(Q(FolderOfFile(S(path)))); });
}

}  // namespace korvane
