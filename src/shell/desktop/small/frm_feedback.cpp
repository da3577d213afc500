#include "shell/desktop/small/frm_feedback.h"

#include <QEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <utility>

#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/desktop/toolkit/reading_text.h"

namespace korvane {

frmFeedback::frmFeedback(const WebFormPorts& ports, std::string version, QWidget* parent)
    : WebFormDialog(ports, "frmFeedback", "Send Feedback", parent), version_(std::move(version)) {
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
    const bool hasBrowser = ports_.pages.TheirBrowser2();
    lblNoBrowser_->setVisible(!hasBrowser);
    cmdSend_->setEnabled(hasBrowser);
    setAccessibleDescription(hasBrowser ? QString() : lblNoBrowser_->toPlainText());
    return hasBrowser;
}

WebForm frmFeedback::Form() {
    return FeedbackForm({.email = S(txtEmail_->text()),
                         .comment = S(txtComment_->toPlainText()),
                         .version = version_,
                         .browserType = ports_.pages.BrowserType()},
                        ports_.events);
}

void frmFeedback::MarkInput(const QString& refusal) {
    MarkRefused(*txtComment_, refusal);
}

}  // namespace korvane
