#include "shell/desktop/editor/frm_url_data_pages.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace korvane {

EMailPage::EMailPage(EntryInputs& inputs, QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    auto* form = NewForm(this);
    layout->addLayout(form);
    txtEmailList1 = inputs.AddBox(&EntryFields::strEmailList1, "txtEmailList1", "Email Notify 1", this);
    AddRow(*form, "Email Notify #&1:", "lblEmailList1", txtEmailList1);
    txtEmailList2 = inputs.AddBox(&EntryFields::strEmailList2, "txtEmailList2", "Email Notify 2", this);
    AddRow(*form, "Email Notify #&2:", "lblEmailList2", txtEmailList2);
    AddRow(*form, "&From:", "lblEmailFrom", inputs.AddBox(&EntryFields::strEmailFrom, "txtEmailFrom", "From", this));
    AddRow(*form, "&Subject:", "lblEmailText", inputs.AddBox(&EntryFields::strEmailText, "txtEmailText", "Subject", this));
    AddRow(*form, "&Body (Line 1):", "lblEmailBody",
           inputs.AddBox(&EntryFields::strEmailBody, "txtEmailBody", "Body (Line 1)", this));
    layout->addSpacing(fontMetrics().height() / 2);
    layout->addWidget(inputs.AddMark(&EntryFields::bNotSendBody, "ckNotSendBody",
                                     "Do &not use the default Korvane Email Body Text. Use only what's on 'Body (Line 1)'",
                                     this));
    layout->addWidget(
        inputs.AddMark(&EntryFields::bSendUpNotify, "ckSendUpNotify", "Send mail when the server comes back &up", this));
    layout->addStretch();
    cmdTestEmail = NewButton("cmdTestEmail", "Send Test &Mail", "Send Test Mail", this);
    layout->addWidget(cmdTestEmail, 0, Qt::AlignLeft);
}

DownTimesPage::DownTimesPage(EntryInputs& inputs, QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(
        NewExplanation("The server is not checked from each of these times on, for that many minutes, every day. "
                       "Write the time of day as 3:00am or 15:30.",
                       this));
    layout->addSpacing(fontMetrics().height() / 2);
    auto* form = NewForm(this);
    layout->addLayout(form);
    // The boxes are created in the order of keyboard navigation.
    const auto add = [&](const QString& label, const char* labelName, QLineEdit* time, QLineEdit* minutes) {
        KeepShort(*time);
        KeepShort(*minutes);
        auto* row = NewRow({time, new QLabel("for", this), minutes, new QLabel("minutes", this)});
        row->addStretch();
        AddRow(*form, label, labelName, time, row);
    };
    auto* time1 = inputs.AddBox(&EntryFields::strDownTime1, "txtDownTime1", "Down time 1", this);
    auto* minutes1 = inputs.AddBox(&EntryFields::nDownDuration1, "txtDownDuration1", "Minutes of down time 1", this);
    auto* time2 = inputs.AddBox(&EntryFields::strDownTime2, "txtDownTime2", "Down time 2", this);
    auto* minutes2 = inputs.AddBox(&EntryFields::nDownDuration2, "txtDownDuration2", "Minutes of down time 2", this);
    add("Down time &1 at:", "lblDownTime1", time1, minutes1);
    add("Down time &2 at:", "lblDownTime2", time2, minutes2);
    layout->addStretch();
}

AuthenticationPage::AuthenticationPage(EntryInputs& inputs, QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(NewExplanation("For a web page that asks for a log-in. Leave both blank for a page that does not.", this));
    layout->addSpacing(fontMetrics().height() / 2);
    auto* form = NewForm(this);
    layout->addLayout(form);
    AddRow(*form, "&User name:", "lblUserName", inputs.AddBox(&EntryFields::strUserName, "txtUserName", "User name", this));
    auto* txtPassword = inputs.AddBox(&EntryFields::strPassword, "txtPassword", "Password", this);
    txtPassword->setEchoMode(QLineEdit::Password);
    auto* cmdShowPassword = NewButton("cmdShowPassword", "S&how", "Show the password", this);
    cmdShowPassword->setCheckable(true);
    cmdShowPassword->setAutoDefault(false);
    connect(cmdShowPassword, &QPushButton::toggled, txtPassword,
            [txtPassword](bool shown) { txtPassword->setEchoMode(shown ? QLineEdit::Normal : QLineEdit::Password); });
    AddRow(*form, "&Password:", "lblPassword", txtPassword, NewRow({txtPassword, cmdShowPassword}));
    layout->addStretch();
}

ScanTextPage::ScanTextPage(QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(
        NewExplanation("A web server may answer although the page behind it has failed, "
                       "with the error page of a firewall for example. List the texts by which such answers are known: "
                       "a response that holds one of them counts as a failure, and each may have a command of its own.",
                       this));
    layout->addSpacing(fontMetrics().height() / 2);
    cmdCommands = NewButton("cmdCommands", "&Failure Texts and Commands...", "Failure Texts and Commands", this);
    layout->addWidget(cmdCommands, 0, Qt::AlignLeft);
    layout->addSpacing(fontMetrics().height() / 2);
    layout->addWidget(NewExplanation("The list is saved by its own OK.", this));
    layout->addStretch();
    cmdHelpRules = NewButton("cmdHelpRules", "&Help", "Help on failure texts", this);
    layout->addWidget(cmdHelpRules, 0, Qt::AlignLeft);
}

CommandsPage::CommandsPage(EntryInputs& inputs, QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    auto* down = new QGroupBox("When the server goes down", this);
    auto* downForm = NewForm(this);
    down->setLayout(downForm);
    txtCMD = inputs.AddBox(&EntryFields::strCMD, "txtCMD", "Command when the server goes down", this);
    cmdChooseCMD = NewButton("cmdChooseCMD", "&Browse...", "Browse for the failure command", this);
    cmdTestCMD = NewButton("cmdTestCMD", "Tr&y", "Try the failure command", this);
    AddRow(*downForm, "Ru&n:", "lblCMD", txtCMD, NewRow({txtCMD, cmdChooseCMD, cmdTestCMD}));
    ckRestart = new QCheckBox("Re&start this computer", this);
    ckRestart->setObjectName("ckRestart");
    ckRestart->setAccessibleName("Restart this computer");
    downForm->addRow(QString(), ckRestart);
    layout->addWidget(down);

    auto* up = new QGroupBox("When the server comes back up", this);
    auto* upForm = NewForm(this);
    up->setLayout(upForm);
    txtCMDUP = inputs.AddBox(&EntryFields::strCMDUP, "txtCMDUP", "Command when the server comes back up", this);
    cmdChooseCMDUP = NewButton("cmdChooseCMDUP", "Bro&wse...", "Browse for the up command", this);
    cmdTestCMDUP = NewButton("cmdTestCMDUP", "T&ry", "Try the up command", this);
    AddRow(*upForm, "R&un:", "lblCMDUP", txtCMDUP, NewRow({txtCMDUP, cmdChooseCMDUP, cmdTestCMDUP}));
    layout->addWidget(up);
    layout->addStretch();
}

}  // namespace korvane
