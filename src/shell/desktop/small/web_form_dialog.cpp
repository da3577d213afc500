#include "shell/desktop/small/web_form_dialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/desktop/toolkit/reading_text.h"
#include "shell/run/message_title.h"

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

WebFormDialog::WebFormDialog(const WebFormPorts& ports, const char* name, const QString& title, QWidget* parent)
    : QDialog(parent), ports_(ports), form_(NewForm(this)) {
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
    auto* note = new ReadingText(this);
    note->setObjectName(name);
    note->setAccessibleName("Message");
    note->setFocusPolicy(Qt::ClickFocus);
    note->document()->setDocumentMargin(0);
    note->SetText(text);
    note->FitText(kWebNoteCharacters, kNoteLines);
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
    auto* buttons = new QDialogButtonBox(this);
    cmdSend_ = buttons->addButton(send, QDialogButtonBox::AcceptRole);
    cmdSend_->setObjectName("cmdSend");
    cmdSend_->setDefault(true);
    connect(cmdSend_, &QPushButton::clicked, this, [this] { cmdSend_Click(); });
    QPushButton* cmdCancel = buttons->addButton("Cance&l", QDialogButtonBox::RejectRole);
    cmdCancel->setObjectName("cmdCancel");
    connect(cmdCancel, &QPushButton::clicked, this, [this] { reject(); });
    layout()->addWidget(buttons);
}

// The pump runs while long texts are encoded: only one attempt runs at a time, and the dialog may be gone afterwards.
void WebFormDialog::cmdSend_Click() {
    if (sending_ || !CanSend()) return;
    TakeMarksAway();
    const QPointer<WebFormDialog> self = this;
    WebPages& pages = ports_.pages;
    sending_ = true;
    const WebForm form = Form();
    if (self == nullptr) return;
    const bool sent = form.refusal.empty() && pages.OpenAddress(form.address);
    if (self == nullptr) return;
    sending_ = false;
    if (sent)
        accept();
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
    ports_.person.ShowMessage(kMessageTitle, refusal);
    if (self != nullptr) MarkInput(Lines(refusal));
}

}  // namespace korvane
