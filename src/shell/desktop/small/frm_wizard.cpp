#include "shell/desktop/small/frm_wizard.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>
#include <chrono>
#include <utility>

#include "shell/desktop/look/icons.h"
#include "shell/desktop/small/dialog_parts.h"
#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/desktop/toolkit/reading_text.h"

namespace korvane {
namespace {

constexpr std::chrono::minutes kLook{
    1};  ///< longest time until the next check; closing the page is an event, so it causes no delay
constexpr int kWizardCharacters = 62;
constexpr int kWizardMostLines = 10;
constexpr int kPageLines = 15;  ///< the height of every page, whatever its text
constexpr int kWizardPictureLines = 5;
constexpr double kWizardHeadingSize = 1.3;

}  // namespace

frmWizard::frmWizard(const WizardPage& page, QWidget* parent) : QDialog(parent) {
    setObjectName("frmWizard");
    setWindowTitle(Q(page.title));
    setWindowIcon(ProgramIcon(true));
    setWindowModality(Qt::WindowModal);
    setAccessibleDescription(Lines(page.prompt));
    auto* layout = new QVBoxLayout(this);
    auto* content = new QHBoxLayout;
    const int air = fontMetrics().height();
    content->setContentsMargins(air / 2, air / 2, air / 2, air / 2);
    content->setSpacing(air);
    content->addStrut(fontMetrics().lineSpacing() * kPageLines);
    content->addWidget(NewEmblem(kWizardPictureLines, this), 0, Qt::AlignTop);
    content->addLayout(Page(page), 1);
    layout->addLayout(content, 1);
    auto* line = new QFrame(this);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    layout->addWidget(line);
    layout->addLayout(Buttons(page));
}

QLayout* frmWizard::Page(const WizardPage& page) {
    ReadingText* lblPrompt =
        NewReadingText("lblPrompt", "Message", Lines(page.prompt), kWizardCharacters, kWizardMostLines, this);
    lblPrompt->setMinimumWidth(fontMetrics().averageCharWidth() * kWizardCharacters);
    txtAnswer_ = NewBox("txtAnswer", "Answer", this);
    txtAnswer_->setText(Q(page.defaultText));
    txtAnswer_->setAccessibleDescription(Lines(page.prompt));
    txtAnswer_->selectAll();
    QLabel* lblHeading = NewLabel("lblHeading", Q(page.title), this);
    lblHeading->setTextFormat(Qt::PlainText);
    MakeHeading(*lblHeading, kWizardHeadingSize);

    auto* layout = new QVBoxLayout;
    layout->setSpacing(fontMetrics().height() / 2);
    layout->addWidget(lblHeading);
    layout->addWidget(lblPrompt);
    layout->addWidget(txtAnswer_);
    layout->addStretch();
    return layout;
}

QLayout* frmWizard::Buttons(const WizardPage& page) {
    auto* row = new QHBoxLayout;
    row->addStretch();
    QPushButton* last = nullptr;  // Return presses it
    for (const auto& [name, caption] : {std::pair("cmdButton1", page.firstButton), {"cmdButton2", page.secondButton}}) {
        if (caption.empty()) continue;
        last = NewButton(name, "&" + Q(caption), Q(caption), this);
        connect(last, &QPushButton::clicked, this, [this] { Click(); });
        row->addWidget(last);
    }
    if (last != nullptr) last->setDefault(true);
    txtAnswer_->setVisible(page.textboxVisible);
    if (page.textboxVisible)
        txtAnswer_->setFocus();
    else if (last != nullptr)
        last->setFocus();
    return row;
}

void frmWizard::Click() {
    answer_ = S(txtAnswer_->text());
    hide();
}

std::string frmWizard::Ask(Events& events, QWidget* parent, const WizardPage& page) {
    const QPointer<frmWizard> form = new frmWizard(page, parent);
    form->open();
    while (form != nullptr && form->isVisible())
        events.WaitForEvent(kLook);
    const std::string answer = form == nullptr ? "" : form->answer_;
    delete form.data();
    return answer;
}

}  // namespace korvane
