#include "shell/desktop/editor/frm_text_to_find.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "shell/desktop/toolkit/qt_text.h"
#include "shell/desktop/toolkit/reading_text.h"
#include "shell/entry/text_to_find.h"

namespace korvane {
namespace {

constexpr int kTextCharacters = 64;
constexpr int kTextStatusLines = 8;

}  // namespace

frmTextToFind::frmTextToFind(TextToFindEditor editor, QWidget* parent) : QDialog(parent), editor_(std::move(editor)) {
    setObjectName("frmTextToFind");
    setWindowTitle("Text to Find");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);

    txtExpected_ = new QLineEdit(Q(editor_.expectedText()), this);
    txtExpected_->setObjectName("txtExpected");
    txtExpected_->setMinimumWidth(fontMetrics().averageCharWidth() * kTextCharacters);
    connect(txtExpected_, &QLineEdit::textChanged, this, [this] { Explain(); });
    lblStatus_ = new ReadingText(this);
    lblStatus_->setObjectName("lblStatus");
    lblStatus_->setAccessibleName("Explanation");
    lblStatus_->setFocusPolicy(Qt::ClickFocus);
    lblStatus_->SetLines(kTextStatusLines);

    auto* layout = new QVBoxLayout(this);
    AddHeading(*layout);
    layout->addWidget(txtExpected_);
    layout->addWidget(lblStatus_);
    layout->addStretch();
    layout->addWidget(Buttons());
    txtExpected_->setFocus();
    Explain();
}

void frmTextToFind::AddHeading(QVBoxLayout& layout) {
    const QString text = Q(TextToFindHeading(editor_.getURLText()));
    auto* heading = new QLabel(this);
    heading->setObjectName("lblHeading");
    heading->setTextFormat(Qt::PlainText);
    heading->setText(QString(text).replace("&", "&&"));  // in a label with a buddy a single "&" would define a key
    heading->setWordWrap(true);
    heading->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);  // an address without a space must not widen the dialog
    heading->setBuddy(txtExpected_);
    txtExpected_->setAccessibleName(text);
    layout.addWidget(heading);
}

QWidget* frmTextToFind::Buttons() {
    auto* buttons = new QDialogButtonBox(this);
    cmdTest_ = buttons->addButton("&Test", QDialogButtonBox::ActionRole);
    cmdTest_->setObjectName("cmdTest");
    cmdTest_->setAutoDefault(false);
    connect(cmdTest_, &QPushButton::clicked, this, [this] { cmdTest_Click(); });
    QPushButton* cmdOk = buttons->addButton("O&K", QDialogButtonBox::AcceptRole);
    cmdOk->setObjectName("cmdOk");
    cmdOk->setDefault(true);
    connect(cmdOk, &QPushButton::clicked, this, [this] { cmdOk_Click(); });
    QPushButton* cmdCancel = buttons->addButton("&Cancel", QDialogButtonBox::RejectRole);
    cmdCancel->setObjectName("cmdCancel");
    connect(cmdCancel, &QPushButton::clicked, this, [this] { reject(); });
    return buttons;
}

void frmTextToFind::Explain() {
    const QString text = txtExpected_->text();
    const QString help = Lines(TextToFindHelp(S(text), S(text.toUpper())));
    lblStatus_->SetText(help);
    txtExpected_->setAccessibleDescription(help);
}

void frmTextToFind::WriteBack() {
    editor_.setExpectedText(S(txtExpected_->text()));
}

void frmTextToFind::cmdOk_Click() {
    WriteBack();
    accept();
}

// The test waits through the event pump: only one runs at a time, and this dialog and the editor may be gone when it returns.
void frmTextToFind::cmdTest_Click() {
    const QPointer<frmTextToFind> self = this;
    const auto test = editor_.cmdTestURL_Click;
    const bool hadFocus = cmdTest_->hasFocus();
    cmdTest_->setEnabled(false);
    WriteBack();
    test();
    if (self == nullptr) return;
    cmdTest_->setEnabled(true);
    if (hadFocus) cmdTest_->setFocus();  // disabling the command moved it
}

}  // namespace korvane
