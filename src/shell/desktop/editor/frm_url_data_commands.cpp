// The editor's commands except saving: those that test, show and reset.
#include <QCursor>
#include <QPointer>
#include <QPushButton>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "notify/mail_message.h"
#include "platform/operator.h"
#include "shell/desktop/editor/frm_commands.h"
#include "shell/desktop/editor/frm_text_to_find.h"
#include "shell/desktop/editor/frm_url_data.h"
#include "shell/entry/entry_hints.h"
#include "shell/entry/entry_save.h"
#include "shell/entry/entry_test.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr int kNoListPosition = 0;
constexpr const char* kNoRecipientMessage =
    "You must type in a valid email address in the Email Notify #1 or #2 field.  "
    "A valid email address looks like 'you@example.com'";

}  // namespace

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
        ShowRefusal(*txtAddress_IP_, NotAnAddressMessage(fields.strAddress_IP));
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
    ShowPageOf(txtPort_);
    txtPort_->setFocus();
    txtPort_->selectAll();
}

void frmURLData::cmdTestEmail_Click() {
    if (mailing_) return;
    EntryFields fields = Read();
    inputs_.TakeMarksAway();
    if (Trim(fields.strEmailList1).empty() && Trim(fields.strEmailList2).empty()) {
        MarkRefused(*inputs_.Box(&EntryFields::strEmailList1), Q(kNoRecipientMessage));
        return desk_.person.ShowMessage(kMessageTitle, kNoRecipientMessage);
    }
    fields.strEmailList1 = NormaliseRecipients(fields.strEmailList1);
    fields.strEmailList2 = NormaliseRecipients(fields.strEmailList2);
    inputs_.Box(&EntryFields::strEmailList1)->setText(Q(fields.strEmailList1));
    inputs_.Box(&EntryFields::strEmailList2)->setText(Q(fields.strEmailList2));
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
    AskForFile(title, "", "", "*.* (*)",
               [this, &box](const QString& path) { box.setText(Q(CommandOfFile(desk_.files, S(path)))); });
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
    (new frmTextToFind(*this))->open();
}

}  // namespace korvane
