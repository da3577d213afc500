// The editor's commands except saving: those that test, show and reset.
#include <QCursor>
#include <QFileDialog>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QToolButton>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "notify/mail_message.h"
#include "shell/desktop/editor/frm_commands.h"
#include "shell/desktop/editor/frm_text_to_find.h"
#include "shell/desktop/editor/frm_url_data.h"
#include "shell/desktop/editor/frm_url_data_pages.h"
#include "shell/desktop/editor/frm_url_data_server_page.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/entry/entry_commands.h"
#include "shell/entry/entry_save.h"
#include "shell/entry/entry_test.h"
#include "shell/run/message_title.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr int kNoListPosition = 0;

}  // namespace

void frmURLData::ConnectCommands() {
    const auto onClick = [this](QAbstractButton* button, auto command) {
        connect(button, &QAbstractButton::clicked, this, command);
    };
    onClick(cmdTestURL_, [this] { cmdTestURL_Click(); });
    onClick(eMail_->cmdTestEmail, [this] { cmdTestEmail_Click(); });
    onClick(commands_->cmdTestCMD, [this] { TestCommand(kTestFailureCommand, *commands_->txtCMD); });
    onClick(commands_->cmdTestCMDUP, [this] { TestCommand(kTestUpCommand, *commands_->txtCMDUP); });
    onClick(commands_->cmdChooseCMD,
            [this] { ChooseCommand("Choose a Server Down command (*.bat or *.exe)", *commands_->txtCMD); });
    onClick(commands_->cmdChooseCMDUP,
            [this] { ChooseCommand("Choose a Server UP command (*.bat or *.exe)", *commands_->txtCMDUP); });
    onClick(server_->cmdTraceRoute, [this] { cmdTraceRoute_Click(); });
    onClick(server_->cmdLastResponse, [this] { cmdLastResponse_Click(); });
    onClick(server_->cmdReport, [this] { desk_.reports.DisplayReport("0", Read().strGroup); });
    onClick(server_->cmdReset, [this] { cmdReset_Click(); });
    onClick(server_->cmdTextToFind, [this] { cmdTextToFind_Click(); });
    onClick(scanText_->cmdCommands, [this] { cmdCommands_Click(); });
    onClick(scanText_->cmdHelpRules, [this] { desk_.pages.Show(WebPage::RulesHelp); });
}

void frmURLData::SetBusy(bool busy) {
    busyPointer_ = busy;
    cmdTestURL_->setEnabled(!busy);
    if (busy)
        setCursor(Qt::WaitCursor);
    else
        unsetCursor();
}

void frmURLData::cmdTestURL_Click() {
    if (busyPointer_) return;
    const Desk desk = desk_;
    const EntryFields fields = Read();
    const QPointer<frmURLData> self = this;
    const auto isGone = [&self] { return self == nullptr || self->IsClosed(); };
    const bool hadFocus = cmdTestURL_->hasFocus();
    SetStatus(TestBegins(fields));
    desk.conversation.Show();
    SetBusy(true);
    const auto result = RunEntryTest(desk, fields);
    // Without a result the pointer stays busy: an invalid address must be corrected first, and can be tested when the editor is
    // opened again.
    if (isGone()) return;
    if (!result) {
        ShowPageOf(server_->txtAddress_IP);
        MarkRefused(*server_->txtAddress_IP, Lines(NotAnAddressMessage(fields.strAddress_IP)));
        return;
    }
    SetBusy(false);
    if (hadFocus) cmdTestURL_->setFocus();  // disabling the command moved it
    const TestVerdict verdict =
        JudgeEntryTest(fields, *result, [&, strID = strID_] { return FindUrlFailure(desk, result->response, strID); });
    SetStatus(verdict.text);
    if (!verdict.failed) return desk.person.ShowMessage(kMessageTitle, "The test was a success!");
    desk.person.ShowError(kMessageTitle, verdict.text);
    const std::string advice = PortAdvice(fields);
    if (isGone() || advice.empty()) return;
    desk.person.ShowMessage(kMessageTitle, advice);
    if (isGone()) return;
    ShowPageOf(server_->txtPort);
    server_->txtPort->setFocus();
    server_->txtPort->selectAll();
}

void frmURLData::cmdTestEmail_Click() {
    if (mailing_) return;
    EntryFields fields = Read();
    inputs_.TakeMarksAway();
    if (Trim(fields.strEmailList1).empty() && Trim(fields.strEmailList2).empty()) {
        MarkRefused(*eMail_->txtEmailList1, Q(kNoRecipientMessage));
        return desk_.person.ShowMessage(kMessageTitle, kNoRecipientMessage);
    }
    fields.strEmailList1 = NormaliseRecipients(fields.strEmailList1);
    fields.strEmailList2 = NormaliseRecipients(fields.strEmailList2);
    eMail_->txtEmailList1->setText(Q(fields.strEmailList1));
    eMail_->txtEmailList2->setText(Q(fields.strEmailList2));
    SetStatus("Please refer to the Korvane main window to see progress indications.");
    mailing_ = true;
    const QPointer<frmURLData> self = this;
    desk_.mail.TestEmail(fields.strEmailList1, fields.strEmailList2, fields.bNotSendBody, fields.strEmailBody,
                         fields.strEmailText, fields.strDesc, fields.strEmailFrom, "", "", [self](bool sent) {
                             if (self != nullptr) self->MailTestEnds(sent);
                         });
}

void frmURLData::MailTestEnds(bool sent) {
    mailing_ = false;
    if (IsClosed()) return;
    SetStatus("Sending email.");
    SetStatus(sent ? "Email Test Concluded."
                   : "EMAIL SEND FAILED.  CLICK The 'VIEW LOG' BUTTON and scroll to the bottom to see the error.");
}

void frmURLData::TestCommand(const char* question, const QLineEdit& box) {
    const std::string command = S(box.text());
    const QPointer<frmURLData> self = this;
    desk_.person.Ask(kMessageTitle, TestCommandQuestion(question, command), [self, command] {
        if (self == nullptr) return;
        self->SetStatus("Testing Command " + command + "\r\n\r\nPress Start to resume... ");
        self->desk_.commands.RunCommand(command, 0, WindowStyle::Normal);
    });
}

void frmURLData::ChooseCommand(const QString& title, QLineEdit& box) {
    askForFile(title, [this, &box](const QString& path) { box.setText(Q(CommandOfFile(desk_.files, S(path)))); });
}

void frmURLData::AskForFile(const QString& title, const std::function<void(const QString& path)>& chosen) {
    auto* dialog = new QFileDialog(this, title);
    dialog->setObjectName("fileDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    // ExistingFile would add the extension to programs that have none.
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setNameFilter("*.* (*)");
    dialog->setOption(QFileDialog::HideNameFilterDetails);
    connect(dialog, &QFileDialog::fileSelected, this, chosen);
    dialog->open();
}

void frmURLData::cmdTraceRoute_Click() {
    bool isThere = false;
    std::string file;
    IgnoreErrors([&] {
        file = desk_.trace.GetTracertFile(ParseWhole(strID_));
        isThere = desk_.files.Exists(file);
    });
    if (!isThere) return desk_.person.ShowMessage(kMessageTitle, NoTraceMessage(getURLText()));
    OpenInEditor(desk_.processes, desk_.person, file);
}

void frmURLData::cmdLastResponse_Click() {
    desk_.conversation.Show();
    desk_.conversation.setRequest("Server: " + getURLText() + "\r\n" + savedLastResponse_);
}

// Publishing delivers events, so only one reset runs at a time.
void frmURLData::cmdReset_Click() {
    if (resetting_) return;
    resetting_ = true;
    const QPointer<frmURLData> self = this;
    const auto ends = [self] {
        if (self != nullptr) self->resetting_ = false;
    };
    const auto reset = [desk = desk_, strID = strID_, self, ends] {
        desk.maintenance.ResetStatData(strID, true);
        desk.maintenance.ResetResponseData(strID);
        desk.reports.PublishReports(false);
        ends();
        if (self != nullptr && !self->IsClosed()) desk.person.ShowMessage(kMessageTitle, "Data Reset");
    };
    desk_.person.Ask(kMessageTitle, ResetQuestion(getURLText()), reset, ends);
}

void frmURLData::cmdCommands_Click() {
    (new frmCommands(desk_, OdbcConnectionText(desk_.dir), kNoListPosition, strID_, this))->open();
}

void frmURLData::cmdTextToFind_Click() {
    TextToFindEditor editor{.expectedText = [this] { return ExpectedText(); },
                            .setExpectedText = [this](const std::string& text) { SetExpectedText(text); },
                            .getURLText = [this] { return getURLText(); },
                            .cmdTestURL_Click = [this] { cmdTestURL_Click(); }};
    (new frmTextToFind(std::move(editor), this))->open();
}

}  // namespace korvane
