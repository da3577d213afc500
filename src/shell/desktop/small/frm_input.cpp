#include "shell/desktop/small/frm_input.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

constexpr int kInputCharacters = 56;

}  // namespace

frmInput::frmInput(const std::string& title, const std::string& prompt, std::function<void(const std::string& text)> answered,
                   QWidget* parent)
    : QDialog(parent), answered_(std::move(answered)) {
    setObjectName("frmInput");
    setWindowTitle(Q(title));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    auto* lblPrompt = new QLabel(this);
    lblPrompt->setObjectName("lblPrompt");
    lblPrompt->setTextFormat(Qt::PlainText);
    lblPrompt->setText(Lines(prompt));
    lblPrompt->setWordWrap(true);
    txtInput_ = new QLineEdit(this);
    txtInput_->setObjectName("txtInput");
    txtInput_->setAccessibleName(lblPrompt->text());
    txtInput_->setMinimumWidth(fontMetrics().averageCharWidth() * kInputCharacters);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblPrompt);
    layout->addWidget(txtInput_);
    layout->addStretch();
    layout->addWidget(Buttons());
    txtInput_->setFocus();
}

QWidget* frmInput::Buttons() {
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* cmdOk = buttons->addButton("O&K", QDialogButtonBox::AcceptRole);
    cmdOk->setObjectName("cmdOk");
    cmdOk->setDefault(true);
    buttons->addButton("&Cancel", QDialogButtonBox::RejectRole)->setObjectName("cmdCancel");
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { accept(); });
    connect(buttons, &QDialogButtonBox::rejected, this, [this] { reject(); });
    return buttons;
}

// The handler of the answer may destroy the parent window, and this dialog with it.
void frmInput::done(int result) {
    const std::string text = result == Accepted ? S(txtInput_->text()) : "";
    const auto answered = std::exchange(answered_, {});
    QDialog::done(result);
    if (answered) answered(text);
}

}  // namespace korvane
