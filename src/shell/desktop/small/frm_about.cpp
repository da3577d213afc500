#include "shell/desktop/small/frm_about.h"

#include <QFocusEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "shell/desktop/small/dialog_parts.h"
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

QLabel* NewLink(WebPages& pages, QWidget* parent) {
    const QString address = Q(kWebsite);
    auto* link = new LinkLabel("<a href=\"" + address + "\">" + address + "</a>", parent);
    link->setObjectName("lblLink");
    link->setAccessibleName("Website of Korvane");
    link->setTextFormat(Qt::RichText);
    link->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    link->setFocusPolicy(Qt::StrongFocus);
    QObject::connect(link, &QLabel::linkActivated, parent, [&pages] { pages.Show(WebPage::AboutLink); });
    return link;
}

}  // namespace

frmAbout::frmAbout(const Desk& desk, QWidget* parent) : QDialog(parent) {
    setObjectName("frmAbout");
    setWindowTitle("About Korvane");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);

    auto* top = new QHBoxLayout;
    top->setSpacing(fontMetrics().height());
    top->addWidget(NewEmblem(kAboutPictureLines, this), 0, Qt::AlignTop);
    auto* content = new QVBoxLayout;
    top->addLayout(content, 1);
    QLabel* lblTitle = NewText("lblTitle", "Korvane", this);
    MakeHeading(*lblTitle, kAboutHeadingSize);
    content->addWidget(lblTitle);
    content->addWidget(NewText("lblDescription", "Network Monitoring & Server Monitor by Brellix", this));
    content->addWidget(NewText("lblVersion", "Version " + Q(desk.version), this));
    content->addSpacing(fontMetrics().height() / 2);
    const QString system = Lines(GetSysInfoString(desk.systemInfo, desk.version));
    content->addWidget(NewReadingText("lblSysInfo", "System", system, kAboutCharacters, kAboutMostLines, this));
    content->addWidget(NewLink(desk.pages, this));
    content->addSpacing(fontMetrics().height() / 2);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(NewButtons(this, {{"cmdOk", "O&K", QDialogButtonBox::AcceptRole}}, "cmdOk"));
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

}  // namespace korvane
