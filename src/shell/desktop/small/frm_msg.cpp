#include "shell/desktop/small/frm_msg.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QStyle>
#include <QTextDocument>
#include <QVBoxLayout>

#include "shell/desktop/toolkit/qt_text.h"
#include "shell/desktop/toolkit/reading_text.h"

namespace korvane {
namespace {

constexpr int kMessageWidest = 72;  ///< characters per line
constexpr int kMessageMostLines = 15;

struct Picture {
    QStyle::StandardPixmap pixmap;
    const char* name;
};

Picture PictureOf(frmMSG::Kind kind) {
    switch (kind) {
        case frmMSG::Kind::StopSign:
            return {QStyle::SP_MessageBoxCritical, "Error"};
        case frmMSG::Kind::Question:
            return {QStyle::SP_MessageBoxQuestion, "Question"};
        case frmMSG::Kind::Information:
            break;
    }
    return {QStyle::SP_MessageBoxInformation, "Information"};
}

QLabel* NewLine(const char* name, const QString& text, QWidget* parent) {
    auto* line = new QLabel(text, parent);
    line->setObjectName(name);
    line->setTextFormat(Qt::PlainText);
    line->setTextInteractionFlags(Qt::TextSelectableByMouse);
    line->setWordWrap(true);
    line->setIndent(static_cast<int>(QTextDocument().documentMargin()));  // aligned with the text above
    line->setVisible(!text.isEmpty());
    return line;
}

}  // namespace

frmMSG::frmMSG(Kind kind, const std::string& title, const std::string& text, Answers answers, QWidget* parent,
               const std::string& line1, const std::string& line2)
    : QDialog(parent), text_(Lines(text)) {
    setObjectName("frmMSG");
    setWindowTitle(Q(title));
    // A window-modal message would not get the keyboard beside another window-modal dialog and a window next to it.
    setWindowModality(Qt::ApplicationModal);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(Message(kind, Lines(line1), Lines(line2)));
    layout->addWidget(Buttons(answers));
    layout->setSizeConstraint(QLayout::SetFixedSize);
    setAccessibleDescription(text_);
}

QLayout* frmMSG::Message(Kind kind, const QString& line1, const QString& line2) {
    const Picture picture = PictureOf(kind);
    auto* image = new QLabel(this);
    image->setObjectName("Image1");
    image->setAccessibleName(picture.name);
    const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    image->setPixmap(style()->standardIcon(picture.pixmap, nullptr, this).pixmap(size));

    auto* message = new ReadingText(this);
    message->setObjectName("lblMSG");
    message->setAccessibleName("Message");
    message->SetText(text_);
    message->FitText(kMessageWidest, kMessageMostLines);

    auto* lines = new QVBoxLayout;
    lines->addWidget(message);
    lines->addWidget(NewLine("lblLine1", line1, this));
    lines->addWidget(NewLine("lblLine2", line2, this));

    auto* layout = new QHBoxLayout;
    layout->addWidget(image, 0, Qt::AlignTop);
    layout->addLayout(lines, 1);
    for (const QString& line : {line1, line2}) {
        if (!line.isEmpty()) text_ += "\n" + line;
    }
    return layout;
}

QWidget* frmMSG::Buttons(Answers answers) {
    auto* buttons = new QDialogButtonBox(this);
    const auto add = [&](const char* name, const QString& text, QDialogButtonBox::ButtonRole role) {
        QPushButton* button = buttons->addButton(text, role);
        button->setObjectName(name);
        return button;
    };
    QPushButton* first = nullptr;
    if (answers == Answers::YesNo) {
        add("cmdYes", "&Yes", QDialogButtonBox::AcceptRole);
        first = add("cmdNo", "&No", QDialogButtonBox::RejectRole);  // most questions are about something that cannot be undone
    } else {
        first = add("cmdOk", "O&K", QDialogButtonBox::AcceptRole);
    }
    first->setDefault(true);
    first->setFocus();
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { accept(); });
    connect(buttons, &QDialogButtonBox::rejected, this, [this] { reject(); });
    return buttons;
}

void frmMSG::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy))
        QApplication::clipboard()->setText(text_);
    else
        QDialog::keyPressEvent(event);
}

namespace {

// The parent window may be gone before the answer comes, and the message with it.
bool Execute(frmMSG* message) {
    const QPointer<frmMSG> form = message;
    const bool accepted = form->exec() == QDialog::Accepted;
    delete form.data();
    return accepted;
}

}  // namespace

void frmMSG::Show(QWidget* parent, Kind kind, const std::string& title, const std::string& text) {
    Execute(new frmMSG(kind, title, text, Answers::Ok, parent));
}

bool frmMSG::Ask(QWidget* parent, const std::string& title, const std::string& text) {
    return Execute(new frmMSG(Kind::Question, title, text, Answers::YesNo, parent));
}

}  // namespace korvane
