#include "shell/desktop/small/frm_wizard.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>
#include <chrono>

#include "shell/desktop/look/icons.h"
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

QFrame* NewLine(QWidget* parent) {
    auto* line = new QFrame(parent);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

QLabel* NewHeading(const QString& text, QWidget* parent) {
    auto* heading = new QLabel(text, parent);
    heading->setObjectName("lblHeading");
    heading->setTextFormat(Qt::PlainText);
    QFont font = heading->font();
    font.setPointSizeF(font.pointSizeF() * kWizardHeadingSize);
    font.setBold(true);
    heading->setFont(font);
    return heading;
}

}  // namespace

frmWizard::frmWizard(const WizardPage& page, QWidget* parent) : QDialog(parent) {
    setObjectName("frmWizard");
    setWindowTitle(Q(page.title));
    setWindowIcon(ProgramIcon(true));
    setWindowModality(Qt::WindowModal);
    auto* layout = new QVBoxLayout(this);
    auto* content = new QHBoxLayout;
    const int air = fontMetrics().height();
    content->setContentsMargins(air / 2, air / 2, air / 2, air / 2);
    content->setSpacing(air);
    content->addStrut(fontMetrics().lineSpacing() * kPageLines);
    content->addWidget(Picture(), 0, Qt::AlignTop);
    content->addLayout(Page(page), 1);
    layout->addLayout(content, 1);
    layout->addWidget(NewLine(this));
    layout->addLayout(Buttons(page));
    TextboxVisible(page.textboxVisible);
}

QWidget* frmWizard::Picture() {
    auto* picture = new QLabel(this);
    picture->setObjectName("imgKorvane");
    picture->setAccessibleName("Korvane");
    const int side = fontMetrics().height() * kWizardPictureLines;
    picture->setPixmap(ProgramIcon(true).pixmap(QSize(side, side), devicePixelRatioF()));
    return picture;
}

QLayout* frmWizard::Page(const WizardPage& page) {
    auto* lblPrompt = new ReadingText(this);
    lblPrompt->setObjectName("lblPrompt");
    lblPrompt->setAccessibleName("Message");
    lblPrompt->setFocusPolicy(Qt::ClickFocus);
    lblPrompt->SetText(Lines(page.prompt));
    lblPrompt->document()->setDocumentMargin(0);
    lblPrompt->FitText(kWizardCharacters, kWizardMostLines);
    lblPrompt->setMinimumWidth(fontMetrics().averageCharWidth() * kWizardCharacters);
    txtAnswer_ = new QLineEdit(Q(page.defaultText), this);
    txtAnswer_->setObjectName("txtAnswer");
    txtAnswer_->setAccessibleName("Answer");
    txtAnswer_->setAccessibleDescription(Lines(page.prompt));
    txtAnswer_->selectAll();
    setAccessibleDescription(Lines(page.prompt));

    auto* layout = new QVBoxLayout;
    layout->setSpacing(fontMetrics().height() / 2);
    layout->addWidget(NewHeading(Q(page.title), this));
    layout->addWidget(lblPrompt);
    layout->addWidget(txtAnswer_);
    layout->addStretch();
    return layout;
}

QLayout* frmWizard::Buttons(const WizardPage& page) {
    auto* row = new QHBoxLayout;
    row->addStretch();
    AddButton(*row, "cmdButton1", page.firstButton, 1);
    AddButton(*row, "cmdButton2", page.secondButton, 2);
    if (last_ != nullptr) last_->setDefault(true);
    return row;
}

void frmWizard::AddButton(QLayout& row, const char* name, const std::string& caption, int number) {
    if (caption.empty()) return;
    last_ = new QPushButton("&" + Q(caption), this);
    last_->setObjectName(name);
    last_->setAccessibleName(Q(caption));
    connect(last_, &QPushButton::clicked, this, [this, number] { Click(number); });
    row.addWidget(last_);
}

void frmWizard::TextboxVisible(bool flag) {
    txtAnswer_->setVisible(flag);
    if (flag)
        txtAnswer_->setFocus();
    else if (last_ != nullptr)
        last_->setFocus();
}

void frmWizard::Click(int number) {
    button_ = number;
    answer_ = S(txtAnswer_->text());
    hide();
}

std::string frmWizard::Ask(Events& events, QWidget* parent, const WizardPage& page) {
    const QPointer<frmWizard> form = new frmWizard(page, parent);
    form->open();
    while (form != nullptr && form->isVisible())
        events.WaitForEvent(kLook);
    const std::string answer = form == nullptr ? "" : form->Answer();
    delete form.data();
    return answer;
}

}  // namespace korvane
