#include "shell/desktop/small/frm_input.h"

#include <QLabel>
#include <QVBoxLayout>
#include <utility>

#include "shell/desktop/small/dialog_parts.h"
#include "shell/desktop/toolkit/form_inputs.h"
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
    QLabel* lblPrompt = NewLabel("lblPrompt", Lines(prompt), this);
    lblPrompt->setTextFormat(Qt::PlainText);
    lblPrompt->setWordWrap(true);
    txtInput_ = NewBox("txtInput", lblPrompt->text(), this);
    txtInput_->setMinimumWidth(fontMetrics().averageCharWidth() * kInputCharacters);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblPrompt);
    layout->addWidget(txtInput_);
    layout->addStretch();
    layout->addWidget(NewButtons(
        this, {{"cmdOk", "O&K", QDialogButtonBox::AcceptRole}, {"cmdCancel", "&Cancel", QDialogButtonBox::RejectRole}}, "cmdOk"));
    txtInput_->setFocus();
}

// The handler of the answer may destroy the parent window, and this dialog with it.
void frmInput::done(int result) {
    const std::string text = result == Accepted ? S(txtInput_->text()) : "";
    const auto answered = std::exchange(answered_, {});
    QDialog::done(result);
    if (answered) answered(text);
}

}  // namespace korvane
