#include "shell/desktop/settings/frm_options.h"

#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <utility>

#include "base/raised_flag.h"
#include "base/text.h"
#include "platform/operator.h"
#include "shell/entry/entry_hints.h"
#include "shell/entry/fresh_entry.h"

namespace korvane {

frmOptions::frmOptions(const Desk& desk, ResourceEmailFiles& emails, QWidget* parent)
    : TabbedDialog("frmOptions", "Settings", parent), desk_(desk), emails_(emails), inputs_(OptionsInputs()) {
    AddPages();
    cmdCheckVersion_ = AddStatusAndButtons(
        {"cmdCheckVersion", "Check for New &Version...", "Asks whether there is a newer version of Korvane."},
        [this] { cmdCheckVersion_Click(); }, [this] { cmdOk_Click(); });
    ConnectTyping();
    WatchForHelp();
    Form_Load();
}

void frmOptions::Form_Load() {
    const OptionsFields fields = OptionsFromSettings(desk_.collection);
    inputs_.Fill(fields);
    safeguards_.Fill(SafeguardsFromSettings(desk_.collection));
    safeguards_.ShowCounts(desk_.safeguards.CountsText());
    serviceName_ = fields.ServiceName;
    (fields.RebootAny ? optRebootAny_ : optRebootAll_)->setChecked(true);
    ShowChoices(fields.Reboot);
    inputs_.Box(&OptionsFields::Begin)->setFocus();
    LoadService();
    LoadMailServer();
    LoadProxy();
    chkStartup_->setChecked(desk_.service.IsInStartupGroup());
    loading_ = false;
}

void frmOptions::LoadService() {
    lblServiceName_->setText(Q(serviceName_));
    if (desk_.service.IsWindowsNT()) return;
    chkService_->setChecked(false);
    chkService_->hide();
    SetStatus(kNoServiceHint);
}

void frmOptions::LoadMailServer() {
    QLineEdit& box = *inputs_.Box(&OptionsFields::Server);
    if (!Trim(S(box.text())).empty()) return;
    ShowPageOf(&box);
    box.setText(Q(kSampleMailHost));
    box.setFocus();
    box.selectAll();
    SetStatus(NoMailServerHint());
    desk_.person.ShowMessage(kMessageTitle, NoMailServerMessage());
}

void frmOptions::LoadProxy() {
    proxyServer_ = desk_.proxyServer();
    const bool isDetected = !Trim(proxyServer_).empty();
    cmdSetProxy_->setVisible(isDetected);
    lblProxy_->setVisible(isDetected);
    if (isDetected) lblProxy_->setText(Q(ProxyDetectedText(proxyServer_)));
}

void frmOptions::SetStartMarks(bool mnuTrayNTService, bool mnuTrayStartup) {
    ShowMark(*chkService_, mnuTrayNTService && desk_.service.IsWindowsNT());
    ShowMark(*chkStartup_, mnuTrayStartup);
}

void frmOptions::ShowMark(QCheckBox& mark, bool checked) {
    const RaisedFlag loading(loading_);
    mark.setChecked(checked);
}

OptionsFields frmOptions::Read() const {
    OptionsFields fields = inputs_.Read();
    fields.RebootAny = optRebootAny_->isChecked();
    fields.ServiceName = serviceName_;
    return fields;
}

void frmOptions::cmdOk_Click() {
    if (std::exchange(saving_, true)) return;
    const Desk desk = desk_;
    const QPointer<frmOptions> self = this;
    const auto refusal = SaveOptions(desk, Read(), safeguards_.Read());
    if (self == nullptr) return;
    saving_ = false;
    if (refusal) {
        ShowRefused(*refusal);
        return desk.person.ShowMessage(kMessageTitle, refusal->message);
    }
    if (proxyChanged_) desk.person.ShowMessage(kMessageTitle, std::string(kProxyChangedMessage));
    if (self != nullptr && !IsClosed()) accept();
}

void frmOptions::ShowRefused(const OptionsRefusal& refusal) {
    QCheckBox* mark = safeguards_.Mark(refusal.safeguard);
    if (mark != nullptr) {
        ShowPageOf(mark);
        return mark->setFocus();
    }
    QLineEdit* box = refusal.field != nullptr ? inputs_.Box(refusal.field) : safeguards_.Box(refusal.safeguard);
    ShowRefusal(*box, refusal.message);
}

void frmOptions::ConnectTyping() {
    connect(inputs_.Box(&OptionsFields::ProxyName), &QLineEdit::textChanged, this, [this] {
        if (!loading_) ProxyNameChanged();
    });
    // The label must match the number even while it is being loaded.
    connect(inputs_.Box(&OptionsFields::GlobalRetryDuration), &QLineEdit::textChanged, this, [this](const QString& seconds) {
        inputs_.Unit(&OptionsFields::GlobalRetryDuration)->setText(Q(IntervalInMinutes(S(seconds))));
    });
    connect(ckReboot_, &QCheckBox::toggled, this, [this](bool reboot) {
        if (!loading_) RebootToggled(reboot);
    });
    const auto explain = [this](QRadioButton* choice, std::string_view text) {
        connect(choice, &QRadioButton::toggled, this, [this, text](bool chosen) {
            if (!loading_ && chosen) SetStatus(text);
        });
    };
    explain(optRebootAny_, kRestartsForAny);
    explain(optRebootAll_, kRestartsForAll);
    ConnectMark(chkService_, &frmOptions::chkService_Click);
    ConnectMark(chkStartup_, &frmOptions::chkStartup_Click);
}

// The message may outlive the dialog.
void frmOptions::ProxyNameChanged() {
    const QPointer<frmOptions> self = this;
    proxyChanged_ = true;
    if (LacksProxyScheme(S(inputs_.Box(&OptionsFields::ProxyName)->text())))
        desk_.person.ShowMessage(kMessageTitle, std::string(kProxySchemeMessage));
    if (self != nullptr) SetStatus(kProxyChangedHint);
}

void frmOptions::ShowChoices(bool reboot) {
    optRebootAny_->setVisible(reboot);
    optRebootAll_->setVisible(reboot);
}

void frmOptions::RebootToggled(bool reboot) {
    ShowChoices(reboot);
    SetStatus(reboot ? kRestartsThisMachine : kDoesNotRestart);
}

}  // namespace korvane
