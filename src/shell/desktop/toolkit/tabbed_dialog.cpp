#include "shell/desktop/toolkit/tabbed_dialog.h"

#include <QDialogButtonBox>
#include <QFocusEvent>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include "base/raised_flag.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/desktop/toolkit/reading_text.h"
#include "shell/desktop/toolkit/scrolled_page.h"

namespace korvane {
namespace {

constexpr int kStatusLines = 5;
constexpr qsizetype kStatusCharacters = 15000;  // a server's answer may be megabytes

QPushButton* Named(QPushButton* button, const char* name) {
    button->setObjectName(name);
    button->setAccessibleName(button->text().remove('&').remove("..."));
    return button;
}

}  // namespace

TabbedDialog::TabbedDialog(const char* name, const QString& title, QWidget* parent)
    : QDialog(parent), tabPages_(new QTabWidget(this)) {
    setObjectName(name);
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    setSizeGripEnabled(true);
    tabPages_->setObjectName("tabPages");
    tabPages_->setAccessibleName("Pages of settings");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tabPages_, 1);
}

void TabbedDialog::AddPage(QWidget* page, const QString& title) {
    tabPages_->addTab(new ScrolledPage(page), title);
}

QPushButton* TabbedDialog::AddStatusAndButtons(const char* name, const QString& command,
                                               const std::function<void()>& cmdOk_Click) {
    txtStatus_ = new ReadingText(this);
    txtStatus_->setObjectName("txtStatus");
    txtStatus_->setAccessibleName("Status");
    txtStatus_->SetLines(kStatusLines);
    QPushButton* cmdOwn = Named(new QPushButton(command, this), name);
    auto* buttons = new QDialogButtonBox(this);
    Named(buttons->addButton("O&K", QDialogButtonBox::AcceptRole), "cmdOk")->setDefault(true);
    Named(buttons->addButton("&Cancel", QDialogButtonBox::RejectRole), "cmdCancel");
    connect(buttons, &QDialogButtonBox::accepted, this, cmdOk_Click);
    connect(buttons, &QDialogButtonBox::rejected, this, [this] { reject(); });
    auto* row = new QHBoxLayout;
    row->addWidget(cmdOwn);
    row->addWidget(buttons, 1);
    auto* all = static_cast<QVBoxLayout*>(layout());
    all->addWidget(txtStatus_);
    all->addLayout(row);
    return cmdOwn;
}

void TabbedDialog::WatchForHelp(Help helpOnInput) {
    helpOnInput_ = helpOnInput;
    for (QWidget* input : findChildren<QWidget*>()) {
        const std::string_view help = helpOnInput(S(input->objectName()));
        if (help.empty()) continue;
        input->setAccessibleDescription(Q(help));
        input->installEventFilter(this);
    }
}

// Returns false for a focus that only returns with the window, such as after a message: the status line then keeps the text that
// belongs to the message.
bool TabbedDialog::IsNews(const QFocusEvent& event) const {
    return !showing_ && event.reason() != Qt::ActiveWindowFocusReason && event.reason() != Qt::PopupFocusReason;
}

bool TabbedDialog::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn && IsNews(*static_cast<QFocusEvent*>(event)))
        SetStatus(helpOnInput_(S(watched->objectName())));
    return QDialog::eventFilter(watched, event);
}

void TabbedDialog::SetStatus(std::string_view text) {
    txtStatus_->SetText(Lines(text.substr(0, 8 * kStatusCharacters)).left(kStatusCharacters));
}

int TabbedDialog::IndexOfPage(const QWidget* input) const {
    for (int page = 0; page < tabPages_->count(); ++page) {
        if (tabPages_->widget(page)->isAncestorOf(input)) return page;
    }
    return -1;
}

void TabbedDialog::ShowPageOf(QWidget* input) {
    const int page = IndexOfPage(input);
    tabPages_->setCurrentIndex(page);
    if (page >= 0) static_cast<ScrolledPage*>(tabPages_->widget(page))->ensureWidgetVisible(input);
}

// Showing a dialog focuses its first input, which must not replace the initial text of the status line.
void TabbedDialog::setVisible(bool visible) {
    const RaisedFlag showing(showing_);
    QDialog::setVisible(visible);
}

void TabbedDialog::done(int result) {
    closed_ = true;
    QDialog::done(result);
}

}  // namespace korvane
