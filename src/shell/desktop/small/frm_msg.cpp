#include "shell/desktop/small/frm_msg.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QTextDocument>
#include <QTimer>
#include <QVBoxLayout>

#include "shell/desktop/small/dialog_parts.h"
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

/// By frmMSG::Kind.
constexpr Picture kPictures[] = {{QStyle::SP_MessageBoxInformation, "Information"},
                                 {QStyle::SP_MessageBoxCritical, "Error"},
                                 {QStyle::SP_MessageBoxQuestion, "Question"}};

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

// The parent window may be gone before the answer comes, and the message with it.
bool Execute(frmMSG* message) {
    const QPointer<frmMSG> form = message;
    const bool accepted = form->exec() == QDialog::Accepted;
    delete form.data();
    return accepted;
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
    const DialogButton ok{"cmdOk", "O&K", QDialogButtonBox::AcceptRole};
    const DialogButton yes{"cmdYes", "&Yes", QDialogButtonBox::AcceptRole}, no{"cmdNo", "&No", QDialogButtonBox::RejectRole};
    // Most questions are about something that cannot be undone.
    buttons_ = answers == Answers::YesNo ? NewButtons(this, {yes, no}, "cmdNo") : NewButtons(this, {ok}, "cmdOk");
    layout->addWidget(buttons_);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    setAccessibleDescription(text_);
}

void frmMSG::AddOpenLog(const std::function<void()>& open) {
    QPushButton* const button = buttons_->addButton("Open Today's &Log", QDialogButtonBox::ActionRole);
    button->setObjectName("cmdOpenLog");
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, open);
}

QLayout* frmMSG::Message(Kind kind, const QString& line1, const QString& line2) {
    const Picture& picture = kPictures[static_cast<std::size_t>(kind)];
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

void frmMSG::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy))
        QApplication::clipboard()->setText(text_);
    else
        QDialog::keyPressEvent(event);
}

void frmMSG::Show(QWidget* parent, Kind kind, const std::string& title, const std::string& text) {
    Execute(new frmMSG(kind, title, text, Answers::Ok, parent));
}

bool frmMSG::Ask(QWidget* parent, const std::string& title, const std::string& text) {
    return Execute(new frmMSG(Kind::Question, title, text, Answers::YesNo, parent));
}

void MessageQueue::Add(Message message) {
    waiting_.push_back(std::move(message));
    QTimer::singleShot(0, &context_, [this] { ShowNext(); });
}

void MessageQueue::ShowNext() {
    if (waiting_.empty() || shown_ != nullptr) return;
    Message next = std::move(waiting_.front());
    waiting_.pop_front();
    shown_ = new frmMSG(next.kind, next.title, next.text, next.answers, parent_());
    if (next.openLog) shown_->AddOpenLog(next.openLog);
    shown_->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(shown_, &QDialog::finished, &context_,
                     [closed = std::move(next.closed)](int result) { closed(result == QDialog::Accepted); });
    // This also happens when its parent destroys it.
    QObject::connect(shown_, &QObject::destroyed, &context_,
                     [this] { QTimer::singleShot(0, &context_, [this] { ShowNext(); }); });
    shown_->show();
}

}  // namespace korvane
