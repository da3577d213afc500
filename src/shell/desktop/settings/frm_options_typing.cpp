// The settings dialog's reactions to changes of its inputs and to the focus.
#include <QLabel>
#include <QPointer>
#include <QRadioButton>
#include <QTabWidget>

#include "shell/desktop/settings/frm_options.h"
#include "shell/entry/entry_hints.h"
#include "shell/options/options_hints.h"
#include "shell/options/options_proxy.h"
#include "shell/run/message_title.h"

namespace korvane {

void frmOptions::ConnectTyping() {
    connect(proxy_->txtProxyName, &QLineEdit::textChanged, this, [this] {
        if (!loading_) ProxyNameChanged();
    });
    // The label must match the number even while it is being loaded.
    connect(monitoring_->txtGlobalRetryDuration, &QLineEdit::textChanged, this,
            [this](const QString& seconds) { monitoring_->lblInterval->setText(Q(IntervalInMinutes(S(seconds)))); });
    connect(restart_->ckReboot, &QCheckBox::toggled, this, [this](bool reboot) {
        if (!loading_) RebootToggled(reboot);
    });
    const auto explain = [this](QRadioButton* choice, std::string_view text) {
        connect(choice, &QRadioButton::toggled, this, [this, text](bool chosen) {
            if (!loading_ && chosen) SetStatus(text);
        });
    };
    explain(restart_->optRebootAny, kRestartsForAny);
    explain(restart_->optRebootAll, kRestartsForAll);
    connect(tabPages_, &QTabWidget::currentChanged, this, [this](int page) {
        if (!loading_) SetStatus(HelpOnOptionsPage(S(tabPages_->tabText(page))));
    });
}

// The message may outlive the dialog.
void frmOptions::ProxyNameChanged() {
    const QPointer<frmOptions> self = this;
    proxyChanged_ = true;
    if (LacksProxyScheme(S(proxy_->txtProxyName->text())))
        desk_.person.ShowMessage(kMessageTitle, std::string(kProxySchemeMessage));
    if (self != nullptr) SetStatus(kProxyChangedHint);
}

void frmOptions::ShowChoices(bool reboot) {
    restart_->optRebootAny->setVisible(reboot);
    restart_->optRebootAll->setVisible(reboot);
}

void frmOptions::RebootToggled(bool reboot) {
    ShowChoices(reboot);
    SetStatus(reboot ? kRestartsThisMachine : kDoesNotRestart);
}

}  // namespace korvane
