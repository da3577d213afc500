#include "shell/desktop/small/frm_about.h"

#include <QDialogButtonBox>
#include <QFocusEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "shell/desktop/look/icons.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/desktop/toolkit/reading_text.h"
#include "shell/web/web_pages.h"

namespace korvane {
namespace {

constexpr int kAboutPictureLines = 4;
constexpr int kAboutCharacters = 60;
constexpr int kAboutMostLines = 6;
constexpr double kAboutHeadingSize = 1.6;

QLabel* NewText(const char* name, const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

/// A link that Return opens as soon as the Tab key reaches it; in a plain label one more Tab is needed to reach its link.
class LinkLabel : public QLabel {
public:
    using QLabel::QLabel;

protected:
    void focusInEvent(QFocusEvent* event) override {
        QLabel::focusInEvent(event);
        const bool forward = event->reason() == Qt::TabFocusReason;
        if (forward || event->reason() == Qt::BacktabFocusReason) focusNextPrevChild(forward);
    }
};

}  // namespace

frmAbout::frmAbout(AboutKorvane about, QWidget* parent) : QDialog(parent), about_(std::move(about)) {
    setObjectName("frmAbout");
    setWindowTitle("About Korvane");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);

    auto* picture = new QLabel(this);
    picture->setObjectName("imgKorvane");
    picture->setAccessibleName("Korvane");
    const int side = fontMetrics().height() * kAboutPictureLines;
    picture->setPixmap(ProgramIcon(true).pixmap(QSize(side, side), devicePixelRatioF()));

    auto* top = new QHBoxLayout;
    top->setSpacing(fontMetrics().height());
    top->addWidget(picture, 0, Qt::AlignTop);
    top->addLayout(Content(), 1);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* cmdOk = buttons->addButton("O&K", QDialogButtonBox::AcceptRole);
    cmdOk->setObjectName("cmdOk");
    cmdOk->setDefault(true);
    cmdOk->setFocus();
    connect(cmdOk, &QPushButton::clicked, this, [this] { accept(); });

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

QLayout* frmAbout::Content() {
    QLabel* lblTitle = NewText("lblTitle", "Korvane", this);
    QFont font = lblTitle->font();
    font.setPointSizeF(font.pointSizeF() * kAboutHeadingSize);
    font.setBold(true);
    lblTitle->setFont(font);

    auto* layout = new QVBoxLayout;
    layout->addWidget(lblTitle);
    layout->addWidget(NewText("lblDescription", "Network Monitoring & Server Monitor by Brellix", this));
    layout->addWidget(NewText("lblVersion", "Version " + Q(about_.version), this));
    layout->addSpacing(fontMetrics().height() / 2);
    layout->addWidget(SystemInfo());
    layout->addWidget(Link());
    layout->addSpacing(fontMetrics().height() / 2);
    return layout;
}

QWidget* frmAbout::SystemInfo() {
    auto* info = new ReadingText(this);
    info->setObjectName("lblSysInfo");
    info->setAccessibleName("System");
    info->setFocusPolicy(Qt::ClickFocus);
    info->document()->setDocumentMargin(0);
    info->SetText(Lines(about_.systemInfo));
    info->FitText(kAboutCharacters, kAboutMostLines);
    return info;
}

QLabel* frmAbout::Link() {
    const QString address = Q(kWebsite);
    auto* link = new LinkLabel("<a href=\"" + address + "\">" + address + "</a>", this);
    link->setObjectName("lblLink");
    link->setAccessibleName("Website of Korvane");
    link->setTextFormat(Qt::RichText);
    link->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    link->setFocusPolicy(Qt::StrongFocus);
    connect(link, &QLabel::linkActivated, this, [show = about_.showPage] { show(); });
    return link;
}

}  // namespace korvane
