#include "shell/desktop/editor/frm_text_to_find.h"

#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/desktop/editor/frm_url_data.h"
#include "shell/desktop/toolkit/reading_text.h"
#include "shell/entry/entry_hints.h"

namespace korvane {
namespace {

constexpr int kTextCharacters = 64;
constexpr int kTextStatusLines = 8;

}  // namespace

frmTextToFind::frmTextToFind(frmURLData& editor) : FormDialog("frmTextToFind", "Text to Find", &editor), editor_(editor) {
    txtExpected_ = NewBox("txtExpected", Q(TextToFindHeading(editor_.getURLText())), this);
    txtExpected_->setText(Q(editor_.ExpectedText()));
    txtExpected_->setMinimumWidth(fontMetrics().averageCharWidth() * kTextCharacters);
    connect(txtExpected_, &QLineEdit::textChanged, this, [this] { Explain(); });
    lblStatus_ = new ReadingText("lblStatus", "Explanation", kTextStatusLines, this);
    lblStatus_->setFocusPolicy(Qt::ClickFocus);

    content_->addWidget(Heading());
    content_->addWidget(txtExpected_);
    content_->addWidget(lblStatus_);
    content_->addStretch();
    content_->addWidget(Buttons());
    txtExpected_->setFocus();
    Explain();
}

QLabel* frmTextToFind::Heading() {
    auto* heading = new QLabel(this);
    heading->setObjectName("lblHeading");
    heading->setTextFormat(Qt::PlainText);
    heading->setText(txtExpected_->accessibleName().replace("&", "&&"));  // in a label with a buddy "&" would define a key
    heading->setWordWrap(true);
    heading->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);  // an address without a space must not widen the dialog
    heading->setBuddy(txtExpected_);
    return heading;
}

QDialogButtonBox* frmTextToFind::Buttons() {
    auto* buttons = new QDialogButtonBox(this);
    cmdTest_ = AddButton(*buttons, {"cmdTest", "&Test"}, QDialogButtonBox::ActionRole, [this] { cmdTest_Click(); });
    cmdTest_->setAutoDefault(false);
    AddButton(*buttons, {"cmdOk", "O&K"}, QDialogButtonBox::AcceptRole, [this] { cmdOk_Click(); })->setDefault(true);
    AddButton(*buttons, {"cmdCancel", "&Cancel"}, QDialogButtonBox::RejectRole, [this] { reject(); });
    return buttons;
}

void frmTextToFind::Explain() {
    const QString text = txtExpected_->text();
    const QString help = Lines(TextToFindHelp(S(text), S(text.toUpper())));
    lblStatus_->SetText(help);
    txtExpected_->setAccessibleDescription(help);
}

void frmTextToFind::WriteBack() {
    editor_.SetExpectedText(S(txtExpected_->text()));
}

void frmTextToFind::cmdOk_Click() {
    WriteBack();
    accept();
}

// The test waits through the event pump: only one runs at a time, and this dialog and the editor may be gone when it returns.
void frmTextToFind::cmdTest_Click() {
    const QPointer<frmTextToFind> self = this;
    const bool hadFocus = cmdTest_->hasFocus();
    cmdTest_->setEnabled(false);
    WriteBack();
    editor_.cmdTestURL_Click();
    if (self == nullptr) return;
    cmdTest_->setEnabled(true);
    if (hadFocus) cmdTest_->setFocus();  // disabling the command moved it
}

}  // namespace korvane
