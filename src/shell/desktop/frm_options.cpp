#include "shell/desktop/frm_options.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>
#include <utility>

#include "base/raised_flag.h"
#include "base/text.h"
#include "shell/desktop/frm_input.h"
#include "shell/desktop/reading_text.h"
#include "shell/options_open.h"
#include "shell/options_proxy.h"
#include "shell/options_save.h"

namespace korvane {
namespace {

constexpr const char* kTitle = "Korvane";
constexpr int kStatusLines = 5;

}  // namespace

frmOptions::frmOptions(const Desk& desk, OptionsCommands commands, QWidget* parent)
    : QDialog(parent), desk_(desk), commands_(std::move(commands)) {
    setObjectName("frmOptions");
    setWindowTitle("Settings");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    setSizeGripEnabled(true);
    askText = [self = QPointer<frmOptions>(this)](const std::string& title, const std::string& prompt, const auto& answered) {
        if (self != nullptr) (new frmInput(title, prompt, answered, self))->open();
    };
    askForFile = [this](const FileQuestion& question, const auto& chosen) { AskForFile(question, chosen); };

    BuildPages();
    txtStatus_ = new ReadingText(this);
    txtStatus_->setObjectName("txtStatus");
    txtStatus_->setAccessibleName("Status");
    txtStatus_->SetLines(kStatusLines);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tabPages_, 1);
    layout->addWidget(txtStatus_);
    layout->addLayout(Buttons());

    ConnectTyping();
    ConnectCommands();
    WatchForHelp();
    Form_Load();
}

void frmOptions::BuildPages() {
    tabPages_ = new QTabWidget(this);
    tabPages_->setObjectName("tabPages");
    tabPages_->setAccessibleName("Pages of settings");
    monitoring_ = new OptionsMonitoringPage(inputs_, this);
    mail_ = new OptionsMailPage(inputs_, this);
    reports_ = new OptionsReportsPage(inputs_, this);
    restart_ = new OptionsRestartPage(inputs_, this);
    proxy_ = new OptionsProxyPage(inputs_, this);
    service_ = new OptionsServicePage(inputs_, this);
    resets_ = new OptionsResetsPage(this);
    tabPages_->addTab(monitoring_, "Monitoring");
    tabPages_->addTab(mail_, "E-Mail");
    tabPages_->addTab(reports_, "Reports and Sound");
    tabPages_->addTab(restart_, "Restart");
    tabPages_->addTab(proxy_, "Proxy");
    tabPages_->addTab(service_, "Service");
    tabPages_->addTab(resets_, "Resets");
    tabPages_->setMinimumWidth(tabPages_->tabBar()->sizeHint().width());  // no page is behind a scroll button
}

QLayout* frmOptions::Buttons() {
    const auto named = [](QPushButton* button, const char* name) {
        button->setObjectName(name);
        button->setAccessibleName(button->text().remove('&').remove("..."));
        return button;
    };
    cmdCheckVersion_ = named(new QPushButton("Check for New &Version...", this), "cmdCheckVersion");
    auto* buttons = new QDialogButtonBox(this);
    named(buttons->addButton("OK", QDialogButtonBox::AcceptRole), "cmdOk")->setDefault(true);
    named(buttons->addButton("Cancel", QDialogButtonBox::RejectRole), "cmdCancel");
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { cmdOk_Click(); });
    connect(buttons, &QDialogButtonBox::rejected, this, [this] { reject(); });
    auto* row = new QHBoxLayout;
    row->addWidget(cmdCheckVersion_);
    row->addWidget(buttons, 1);
    return row;
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
    tabPages_->setCurrentWidget(mail_);
    mail_->txtServer->setText(Q(kSampleMailHost));
    mail_->txtServer->setFocus();
    mail_->txtServer->selectAll();
    SetStatus(NoMailServerHint());
    desk_.person.ShowMessage(kTitle, NoMailServerMessage());
}

void frmOptions::LoadProxy() {
    proxyServer_ = commands_.proxyServer();
    const bool isDetected = !Trim(proxyServer_).empty();
    proxy_->cmdSetProxy->setVisible(isDetected);
    proxy_->lblProxy->setVisible(isDetected);
    if (isDetected) proxy_->lblProxy->setText(Q(ProxyDetectedText(proxyServer_)));
}

void frmOptions::SetStatus(std::string_view text) {
    txtStatus_->SetText(Lines(text));
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
    if (proxyChanged_) desk.person.ShowMessage(kTitle, std::string(kProxyChangedMessage));
    if (self != nullptr && !closed_) accept();
}

void frmOptions::Refuse(QLineEdit& box, const std::string& message) {
    ShowPageOf(&box);
    MarkRefused(box, Lines(message));
    desk_.person.ShowMessage(kTitle, message);
}

void frmOptions::ShowPageOf(const QWidget* input) {
    for (int page = 0; page < tabPages_->count(); ++page) {
        if (tabPages_->widget(page)->isAncestorOf(input)) tabPages_->setCurrentIndex(page);
    }
}

// Showing a dialog focuses its first input, which is no reason to talk over what the status line begins with.
void frmOptions::setVisible(bool visible) {
    const RaisedFlag showing(showing_);
    QDialog::setVisible(visible);
}

void frmOptions::done(int result) {
    closed_ = true;
    QDialog::done(result);
}

}  // namespace korvane
