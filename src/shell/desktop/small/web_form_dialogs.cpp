#include "shell/desktop/small/web_form_dialogs.h"

#include <QEvent>
#include <QFormLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/operator.h"
#include "shell/desktop/small/dialog_parts.h"
#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/desktop/toolkit/reading_text.h"

namespace korvane {
namespace {

constexpr int kWebFormCharacters = 52;
constexpr int kFewestLines = 3;
constexpr int kWebNoteCharacters = 70;
constexpr int kNoteLines = 6;

/// Returns the label as a name: without the key's "&" and the colon.
QString WithoutSigns(QString label) {
    return label.remove('&').remove(':');
}

}  // namespace

WebFormDialog::WebFormDialog(const Desk& desk, const char* name, const QString& title, QWidget* parent)
    : QDialog(parent), desk_(desk), form_(NewForm(this)) {
    setObjectName(name);
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    setSizeGripEnabled(true);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form_, 1);
}

// Its height does not depend on its width; the layout of a small screen would otherwise cut it.
ReadingText* WebFormDialog::AddNote(const char* name, const QString& text) {
    ReadingText* note = NewReadingText(name, "Message", text, kWebNoteCharacters, kNoteLines, this);
    form_->addRow(note);
    return note;
}

QLineEdit* WebFormDialog::AddBox(const char* name, const QString& label) {
    QLineEdit* box = NewBox(name, WithoutSigns(label), this);
    box->setMinimumWidth(fontMetrics().averageCharWidth() * kWebFormCharacters);
    AddRow(*form_, label, "", box);
    return box;
}

QPlainTextEdit* WebFormDialog::AddTextBox(const char* name, const QString& label) {
    auto* box = new QPlainTextEdit(this);
    box->setObjectName(name);
    box->setAccessibleName(WithoutSigns(label));
    box->setTabChangesFocus(true);
    box->setMinimumHeight(box->fontMetrics().lineSpacing() * kFewestLines);
    AddRow(*form_, label, "", box);
    return box;
}

void WebFormDialog::AddButtons(const QString& send) {
    layout()->addWidget(NewButtons(
        this, {{"cmdSend", send, QDialogButtonBox::AcceptRole}, {"cmdCancel", "Cance&l", QDialogButtonBox::RejectRole}},
        "cmdSend"));
    cmdSend_ = findChild<QPushButton*>("cmdSend");
}

// The pump runs while long texts are encoded: only one attempt runs at a time, and the dialog may be gone afterwards.
void WebFormDialog::cmdSend_Click() {
    if (sending_ || !CanSend()) return;
    TakeMarksAway();
    const QPointer<WebFormDialog> self = this;
    WebPages& pages = desk_.pages;
    sending_ = true;
    const WebForm form = Form();
    if (self == nullptr) return;
    const bool sent = form.refusal.empty() && pages.OpenAddress(form.address);
    if (self == nullptr) return;
    sending_ = false;
    if (sent)
        QDialog::accept();
    else if (!form.refusal.empty())
        Refuse(form.refusal);
}

void WebFormDialog::TakeMarksAway() {
    for (QLineEdit* box : findChildren<QLineEdit*>())
        TakeMarkAway(*box);
    for (QPlainTextEdit* box : findChildren<QPlainTextEdit*>())
        TakeMarkAway(*box);
}

void WebFormDialog::Refuse(const std::string& refusal) {
    const QPointer<WebFormDialog> self = this;
    desk_.person.ShowMessage(kMessageTitle, refusal);
    if (self != nullptr) MarkInput(Lines(refusal));
}

frmFeedback::frmFeedback(const Desk& desk, QWidget* parent) : WebFormDialog(desk, "frmFeedback", "Send Feedback", parent) {
    AddNote("lblNote", "Your browser opens and sends this, with the version of Korvane and the name of the browser.");
    txtComment_ = AddTextBox("txtComment", "&Comment or question:");
    txtEmail_ = AddBox("txtEmail", "Your &email address:");
    lblNoBrowser_ = AddNote("lblNoBrowser", Q(kFeedbackNeedsBrowser) + "\n\n" + Q(kFeedbackDisabled));
    AddButtons("&Send Comment");
    lblNoBrowser_->setVisible(false);
    CanSend();
    txtComment_->setFocus();
}

// The operator may have chosen a browser meanwhile.
void frmFeedback::changeEvent(QEvent* event) {
    WebFormDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && cmdSend_ != nullptr && isActiveWindow()) CanSend();
}

bool frmFeedback::CanSend() {
    const bool hasBrowser = desk_.pages.TheirBrowser2();
    lblNoBrowser_->setVisible(!hasBrowser);
    cmdSend_->setEnabled(hasBrowser);
    setAccessibleDescription(hasBrowser ? QString() : lblNoBrowser_->toPlainText());
    return hasBrowser;
}

WebForm frmFeedback::Form() {
    return FeedbackForm({.email = S(txtEmail_->text()),
                         .comment = S(txtComment_->toPlainText()),
                         .version = desk_.version,
                         .browserType = desk_.pages.BrowserType()},
                        desk_.events);
}

void frmFeedback::MarkInput(const QString& refusal) {
    MarkRefused(*txtComment_, refusal);
}

frmTellFriend::frmTellFriend(const Desk& desk, QWidget* parent) : WebFormDialog(desk, "frmTellFriend", "Tell a Friend", parent) {
    AddNote("lblNote", "Your browser opens and sends these addresses and your message to the website of Korvane.");
    txtEmails_[0] = AddBox("txtEmail1", "Email of a &friend:");
    txtEmails_[1] = AddBox("txtEmail2", "Email of a se&cond friend:");
    txtEmails_[2] = AddBox("txtEmail3", "Email of a &third friend:");
    txtFromName_ = AddBox("txtFromName", "Your &name:");
    txtFromEmail_ = AddBox("txtFromEmail", "Your &email address:");
    txtMessage_ = AddTextBox("txtMessage", "&Message:");
    AddButtons("&Send");
    txtEmails_[0]->setFocus();
}

WebForm frmTellFriend::Form() {
    return TellAFriendForm({.emails = {S(txtEmails_[0]->text()), S(txtEmails_[1]->text()), S(txtEmails_[2]->text())},
                            .fromEmail = S(txtFromEmail_->text()),
                            .fromName = S(txtFromName_->text()),
                            .message = S(txtMessage_->toPlainText())},
                           desk_.events);
}

// In the order of the checks: the message, then the address that the refusal quotes.
void frmTellFriend::MarkInput(const QString& refusal) {
    if (txtMessage_->toPlainText().trimmed().isEmpty()) return MarkRefused(*txtMessage_, refusal);
    const auto quoted = [&](const QLineEdit* box) { return !box->text().isEmpty() && refusal.contains("'" + box->text() + "'"); };
    const auto found = std::find_if(txtEmails_.begin(), txtEmails_.end(), quoted);
    MarkRefused(found == txtEmails_.end() ? *txtEmails_[0] : **found, refusal);
}

}  // namespace korvane
