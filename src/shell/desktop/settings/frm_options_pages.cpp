#include "shell/desktop/settings/frm_options_pages.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace korvane {
namespace {

QVBoxLayout* NewPage(const QString& explanation, QWidget* page) {
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(NewExplanation(explanation, page));
    layout->addSpacing(page->fontMetrics().height() / 2);
    return layout;
}

QHBoxLayout* NumberRow(QLineEdit* box, QLabel* unit) {
    KeepShort(*box);
    auto* row = NewRow({box, unit});
    row->addStretch();
    return row;
}

QHBoxLayout* LeftRow(std::initializer_list<QWidget*> widgets) {
    auto* row = NewRow(widgets);
    row->addStretch();
    return row;
}

}  // namespace

OptionsMonitoringPage::OptionsMonitoringPage(OptionsInputs& inputs, QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    auto* form = NewForm(this);
    layout->addLayout(form);
    txtBegin = inputs.AddBox(&OptionsFields::Begin, "txtBegin", "Monitor activity begins, in minutes after start", this);
    AddRow(*form, "&Monitor activity begins:", "lblBegin", txtBegin,
           NumberRow(txtBegin, NewLabel("lblBeginUnit", "minutes after the start of Korvane", this)));
    txtGlobalRetryDuration = inputs.AddBox(&OptionsFields::GlobalRetryDuration, "txtGlobalRetryDuration",
                                           "Server retry interval after a failure, in seconds", this);
    lblInterval = NewLabel("lblInterval", "Seconds.", this);
    AddRow(*form, "Server &Retry interval:", "lblRetry", txtGlobalRetryDuration, NumberRow(txtGlobalRetryDuration, lblInterval));
    auto* txtSuccess = inputs.AddBox(&OptionsFields::SuccessLT, "txtSuccess", "Slow response timeout, in seconds", this);
    AddRow(*form, "&Slow Response Timeout:", "lblSuccess", txtSuccess,
           NumberRow(txtSuccess, NewLabel("lblSuccessUnit", "seconds", this)));
    layout->addStretch();
}

OptionsMailPage::OptionsMailPage(OptionsInputs& inputs, QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    auto* servers = new QHBoxLayout;
    layout->addLayout(servers);
    const auto addServer = [&](const QString& title) {
        auto* group = new QGroupBox(title, this);
        group->setLayout(NewForm(group));
        servers->addWidget(group);
        return static_cast<QFormLayout*>(group->layout());
    };
    const auto add = [&](QFormLayout* form, std::string OptionsFields::*field, const char* name, const QString& label,
                         const QString& accessibleName) {
        QLineEdit* box = inputs.AddBox(field, name, accessibleName, form->parentWidget());
        AddRow(*form, label, (QByteArray("lbl") + (name + 3)).constData(), box);
        return box;
    };
    QFormLayout* primary = addServer("Primary SMTP server");
    txtServer = add(primary, &OptionsFields::Server, "txtServer", "Mail &server:", "Primary SMTP server");
    add(primary, &OptionsFields::SMTPUser1, "txtSMTPUser1", "&User name:", "User name on the primary server");
    QLineEdit* password1 =
        add(primary, &OptionsFields::SMTPPass1, "txtSMTPPass1", "&Password:", "Password on the primary server");
    add(primary, &OptionsFields::SMTPPopHost1, "txtSMTPPopHost1", "P&OP server:", "POP server of the primary server");
    QFormLayout* backup = addServer("Backup SMTP server");
    add(backup, &OptionsFields::ServerBackup, "txtServerBackup", "Mail s&erver:", "Backup SMTP server");
    add(backup, &OptionsFields::SMTPUser2, "txtSMTPUser2", "User n&ame:", "User name on the backup server");
    QLineEdit* password2 = add(backup, &OptionsFields::SMTPPass2, "txtSMTPPass2", "Pass&word:", "Password on the backup server");
    add(backup, &OptionsFields::SMTPPopHost2, "txtSMTPPopHost2", "POP se&rver:", "POP server of the backup server");

    QCheckBox* ckShowPasswords = NewMark("ckShowPasswords", "S&how the passwords", this);
    const auto show = [password1, password2](bool shown) {
        for (QLineEdit* password : {password1, password2})
            password->setEchoMode(shown ? QLineEdit::Normal : QLineEdit::Password);
    };
    show(false);
    connect(ckShowPasswords, &QCheckBox::toggled, this, show);
    layout->addWidget(ckShowPasswords);

    auto* form = NewForm(this);
    layout->addLayout(form);
    QLineEdit* txtZone = inputs.AddBox(&OptionsFields::Zone, "txtZone", "Offset from GMT", this);
    AddRow(*form, "Offset from GM&T:", "lblZone", txtZone,
           NumberRow(txtZone, NewLabel("lblZoneExample", "such as -600; blank for GMT", this)));
    layout->addStretch();
    cmdTestEmail = NewButton("cmdTestEmail", "Send Test &Mail...", "Send Test Mail", this);
    cmdGlobalEmail = NewButton("cmdGlobalEmail", "&Global E-Mail Settings...", "Global E-Mail Settings", this);
    layout->addLayout(LeftRow({cmdTestEmail, cmdGlobalEmail}));
}

OptionsReportsPage::OptionsReportsPage(OptionsInputs& inputs, QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    auto* reports = new QGroupBox("Reports", this);
    auto* form = NewForm(reports);
    reports->setLayout(form);
    layout->addWidget(reports);
    txtReportPath = inputs.AddBox(&OptionsFields::ReportPath, "txtReportPath", "Report folder", reports);
    cmdReportPath = NewButton("cmdReportPath", "&Browse...", "Browse for the report folder", reports);
    AddRow(*form, "&Folder:", "lblReportPath", txtReportPath, NewRow({txtReportPath, cmdReportPath}));

    const auto addAlert = [&](const QString& title, QCheckBox* mark, QLineEdit* box, QPushButton* browse, QPushButton* play,
                              const QString& label, const char* labelName) {
        auto* group = new QGroupBox(title, this);
        auto* alert = NewForm(group);
        group->setLayout(alert);
        layout->addWidget(group);
        for (QWidget* input : std::initializer_list<QWidget*>{mark, box, browse, play})
            input->setParent(group);
        alert->addRow(mark);
        AddRow(*alert, label, labelName, box, NewRow({box, browse, play}));
        for (QWidget* before = mark; QWidget * each : std::initializer_list<QWidget*>{box, browse, play}) {
            setTabOrder(before, each);
            before = each;
        }
    };
    QCheckBox* ckYellowAlert =
        inputs.AddMark(&OptionsFields::bYellowAlert, "ckYellowAlert", "Play a sound when a server fail&s", this);
    txtYellowAlertWav = inputs.AddBox(&OptionsFields::YellowAlertWav, "txtYellowAlertWav", "Wave file of the yellow alert", this);
    cmdYellowAlertWav = NewButton("cmdYellowAlertWav", "B&rowse...", "Browse for the sound of the yellow alert", this);
    cmdTestYellowAlert = NewButton("cmdTestYellowAlert", "&Play", "Play the sound of the yellow alert", this);
    addAlert("Yellow alert", ckYellowAlert, txtYellowAlertWav, cmdYellowAlertWav, cmdTestYellowAlert,
             "&Wave file:", "lblYellowAlertWav");
    QCheckBox* ckRedAlert =
        inputs.AddMark(&OptionsFields::bRedAlert, "ckRedAlert", "Play a sound when a server goes &down", this);
    txtRedAlertWav = inputs.AddBox(&OptionsFields::RedAlertWav, "txtRedAlertWav", "Wave file of the red alert", this);
    cmdRedAlertWav = NewButton("cmdRedAlertWav", "Br&owse...", "Browse for the sound of the red alert", this);
    cmdTestRedAlert = NewButton("cmdTestRedAlert", "P&lay", "Play the sound of the red alert", this);
    addAlert("Red alert", ckRedAlert, txtRedAlertWav, cmdRedAlertWav, cmdTestRedAlert, "Wav&e file:", "lblRedAlertWav");
    layout->addStretch();
}

OptionsRestartPage::OptionsRestartPage(OptionsInputs& inputs, QWidget* parent) : QWidget(parent) {
    auto* layout = NewPage(
        "What restarts this computer is the command of a server entry. This mark tells your mails and reports that it does.",
        this);
    ckReboot = inputs.AddMark(&OptionsFields::Reboot, "ckReboot", "&Restart this computer when servers fail", this);
    layout->addWidget(ckReboot);
    const auto addChoice = [&](const char* name, const QString& text) {
        auto* choice = new QRadioButton(text, this);
        choice->setObjectName(name);
        choice->setAccessibleName(QString(text).remove('&'));
        auto* indented = NewRow({choice});
        indented->setContentsMargins(fontMetrics().height() * 3 / 2, 0, 0, 0);
        layout->addLayout(indented);
        return choice;
    };
    optRebootAny = addChoice("optRebootAny", "When &any server fails");
    optRebootAll = addChoice("optRebootAll", "When a&ll servers fail");
    layout->addStretch();
    cmdTestShutDown = NewButton("cmdTestShutDown", "&Test the Restart...", "Test the Restart", this);
    cmdTestShutDown->setAutoDefault(false);
    cmdHelpShutDown = NewButton("cmdHelpShutDown", "&Help", "Help on restarting computers", this);
    layout->addLayout(LeftRow({cmdTestShutDown, cmdHelpShutDown}));
}

OptionsProxyPage::OptionsProxyPage(OptionsInputs& inputs, QWidget* parent) : QWidget(parent) {
    auto* layout = NewPage("Leave both blank where this network needs no proxy server.", this);
    auto* form = NewForm(this);
    layout->addLayout(form);
    txtProxyName = inputs.AddBox(&OptionsFields::ProxyName, "txtProxyName", "Proxy server", this);
    AddRow(*form, "&Proxy server:", "lblProxyName", txtProxyName);
    txtProxyPort = inputs.AddBox(&OptionsFields::ProxyPort, "txtProxyPort", "Port of the proxy server", this);
    KeepShort(*txtProxyPort);
    AddRow(*form, "P&ort:", "lblProxyPort", txtProxyPort, LeftRow({txtProxyPort}));
    layout->addSpacing(fontMetrics().height() / 2);
    cmdSetProxy = NewButton("cmdSetProxy", "&Set Proxy", "Set Proxy", this);
    lblProxy = NewExplanation("", this);
    lblProxy->setObjectName("lblProxy");
    lblProxy->setTextFormat(Qt::PlainText);
    auto* row = NewRow({cmdSetProxy, lblProxy});
    row->setAlignment(cmdSetProxy, Qt::AlignTop);
    row->setStretch(1, 1);
    layout->addLayout(row);
    layout->addStretch();
}

OptionsServicePage::OptionsServicePage(OptionsInputs& inputs, QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    auto* form = NewForm(this);
    layout->addLayout(form);
    lblServiceName = NewLabel("lblServiceName", "", this);
    lblServiceName->setTextFormat(Qt::PlainText);
    lblServiceName->setTextInteractionFlags(Qt::TextSelectableByMouse);
    form->addRow("Service name:", lblServiceName);
    layout->addSpacing(fontMetrics().height() / 2);
    chkService = inputs.AddMark(&OptionsFields::Service, "chkService", "&Install Korvane as a service", this);
    layout->addWidget(chkService);
    chkStartup = NewMark("chkStartup", "&Add Korvane to the Startup Group", this);
    layout->addWidget(chkStartup);
    layout->addSpacing(fontMetrics().height() / 2);
    layout->addWidget(NewExplanation("A change here takes effect at once and is not undone by Cancel.", this));
    layout->addStretch();
    cmdHelpService = NewButton("cmdHelpService", "&Help", "Help on services", this);
    layout->addWidget(cmdHelpService, 0, Qt::AlignLeft);
}

OptionsResetsPage::OptionsResetsPage(QWidget* parent) : QWidget(parent) {
    auto* layout = NewPage("Each of these takes effect at once, for all servers, and is not undone by Cancel.", this);
    const auto add = [&](const char* name, const QString& text, const QString& what) {
        QPushButton* button = NewButton(name, text, QString(text).remove('&').remove("..."), this);
        button->setAutoDefault(false);  // Return means OK, even if the focus is on a command that cannot be undone
        layout->addWidget(button, 0, Qt::AlignLeft);
        layout->addWidget(NewExplanation(what, this));
        layout->addSpacing(fontMetrics().height());
        return button;
    };
    cmdResetSummary = add("cmdResetSummary", "Reset &Summary...", "Response time averages, counts, up-time and failure records.");
    cmdDeleteResponse = add("cmdDeleteResponse", "Delete &Response Data...", "The hourly and daily graphs.");
    cmdDeleteAll = add("cmdDeleteAll", "Delete &All...", "Both of these.");
    layout->addStretch();
}

}  // namespace korvane
