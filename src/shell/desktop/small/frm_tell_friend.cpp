#include "shell/desktop/small/frm_tell_friend.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <algorithm>

#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {

frmTellFriend::frmTellFriend(const WebFormPorts& ports, QWidget* parent)
    : WebFormDialog(ports, "frmTellFriend", "Tell a Friend", parent) {
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
                           ports_.events);
}

// In the order of the checks: the message, then the address that the refusal quotes.
void frmTellFriend::MarkInput(const QString& refusal) {
    if (txtMessage_->toPlainText().trimmed().isEmpty()) return MarkRefused(*txtMessage_, refusal);
    const auto quoted = [&](const QLineEdit* box) { return !box->text().isEmpty() && refusal.contains("'" + box->text() + "'"); };
    const auto found = std::find_if(txtEmails_.begin(), txtEmails_.end(), quoted);
    MarkRefused(found == txtEmails_.end() ? *txtEmails_[0] : **found, refusal);
}

}  // namespace korvane
