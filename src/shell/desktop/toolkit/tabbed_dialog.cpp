#include "shell/desktop/toolkit/tabbed_dialog.h"

#include <QApplication>
#include <QFileDialog>
#include <QFocusEvent>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "base/raised_flag.h"
#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/reading_text.h"

namespace korvane {
namespace {

constexpr int kStatusLines = 5;
constexpr int kShareOfPages = 4;                ///< times what the status line gets where not all of both fits
constexpr qsizetype kStatusCharacters = 15000;  // a server's answer may be megabytes

/// Returns false for a focus that only returns with the window, such as after a message: the status line then keeps the text that
/// belongs to the message.
bool IsNews(const QFocusEvent& event) {
    return event.reason() != Qt::ActiveWindowFocusReason && event.reason() != Qt::PopupFocusReason;
}

}  // namespace

ScrolledPage::ScrolledPage(QWidget* page) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    setWidget(page);
    page->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
}

FormDialog::FormDialog(const char* name, const QString& title, QWidget* parent)
    : QDialog(parent), content_(new QVBoxLayout(this)) {
    setObjectName(name);
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
}

// Destroying the controls still moves the focus, and nothing is left to explain it.
FormDialog::~FormDialog() {
    disconnect(qApp, nullptr, this, nullptr);
}

QPushButton* FormDialog::AddButton(QDialogButtonBox& buttons, const Control& control, QDialogButtonBox::ButtonRole role,
                                   const std::function<void()>& click) {
    QPushButton* button = buttons.addButton(control.label, role);
    Describe(*button, control);
    connect(button, &QPushButton::clicked, this, click);
    return button;
}

void FormDialog::AddStatus(int lines) {
    txtStatus_ = new ReadingText("txtStatus", "Status", lines, this);
    content_->addWidget(txtStatus_, 1);
}

void FormDialog::SetStatus(std::string_view text) {
    txtStatus_->SetText(Lines(text.substr(0, 8 * kStatusCharacters)).left(kStatusCharacters));
}

void FormDialog::WatchForHelp() {
    for (QWidget* input : findChildren<QWidget*>()) {
        if (HelpOn(*input).isEmpty()) continue;
        input->installEventFilter(this);
        auto* const mark = qobject_cast<QAbstractButton*>(input);
        if (mark == nullptr || !mark->isCheckable()) continue;
        connect(mark, &QAbstractButton::toggled, this, [this, mark](bool on) {
            const bool isChosen = on || !mark->autoExclusive();
            if (!loading_ && isChosen && mark->isVisible() && !mark->hasFocus()) mark->setFocus();
        });
    }
}

bool FormDialog::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn && !showing_ && IsNews(*static_cast<QFocusEvent*>(event)))
        SetStatus(S(HelpOn(*watched)));
    return QDialog::eventFilter(watched, event);
}

TabbedDialog::TabbedDialog(const char* name, const QString& title, QWidget* parent)
    : FormDialog(name, title, parent), tabPages_(new QTabWidget(this)) {
    loading_ = true;
    setSizeGripEnabled(true);
    tabPages_->setObjectName("tabPages");
    tabPages_->setAccessibleName("Pages of settings");
    content_->addWidget(tabPages_, kShareOfPages);
}

QVBoxLayout& TabbedDialog::AddPage(const char* title, const char* help, const QString& explanation) {
    auto* page = new QWidget(this);
    auto* content = new QVBoxLayout(page);
    if (!explanation.isEmpty()) {
        content->addWidget(NewExplanation(explanation, page));
        content->addSpacing(fontMetrics().height() / 2);
    }
    const int index = tabPages_->addTab(new ScrolledPage(page), title);
    connect(tabPages_, &QTabWidget::currentChanged, this, [this, index, help](int opened) {
        if (opened == index && !loading_) SetStatus(help);
    });
    return *content;
}

void TabbedDialog::LeaveHeightToOthers(QVBoxLayout& page) {
    static_cast<ScrolledPage*>(page.parentWidget()->parentWidget()->parentWidget())->SetLow();  // its viewport is between
}

QPushButton* TabbedDialog::AddStatusAndButtons(const Control& command, const std::function<void()>& click,
                                               const std::function<void()>& cmdOk_Click) {
    AddStatus(kStatusLines);
    QPushButton* cmdOwn = NewButton(command, this, click);
    auto* buttons = new QDialogButtonBox(this);
    AddButton(*buttons, {"cmdOk", "O&K"}, QDialogButtonBox::AcceptRole, cmdOk_Click)->setDefault(true);
    AddButton(*buttons, {"cmdCancel", "&Cancel"}, QDialogButtonBox::RejectRole, [this] { reject(); });
    auto* row = new QHBoxLayout;
    row->addWidget(cmdOwn);
    row->addWidget(buttons, 1);
    content_->addLayout(row);
    return cmdOwn;
}

void TabbedDialog::AskForFile(const QString& title, const QString& name, const QString& extension, const QString& filter,
                              const std::function<void(const QString& path)>& chosen) {
    auto* dialog = new QFileDialog(this, title);
    dialog->setObjectName("fileDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    dialog->setFileMode(QFileDialog::AnyFile);  // ExistingFile would add the extension to programs that have none
    dialog->setNameFilter(filter);
    dialog->setOption(QFileDialog::HideNameFilterDetails);
    dialog->setDefaultSuffix(extension);
    if (!name.isEmpty()) dialog->selectFile(name);
    connect(dialog, &QFileDialog::fileSelected, this, chosen);
    dialog->open();
}

void TabbedDialog::ShowRefusal(QLineEdit& box, std::string_view why) {
    ShowPageOf(&box);
    MarkRefused(box, Lines(why));
}

void TabbedDialog::ShowPageOf(QWidget* input) {
    int page = 0;
    while (!tabPages_->widget(page)->isAncestorOf(input))
        ++page;
    tabPages_->setCurrentIndex(page);
    static_cast<ScrolledPage*>(tabPages_->widget(page))->ensureWidgetVisible(input);
}

// The mark of a refused input is a property of it.
bool TabbedDialog::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::DynamicPropertyChange) MarkRefusedPages();
    return FormDialog::eventFilter(watched, event);
}

void TabbedDialog::MarkRefusedPages() {
    QTabBar& bar = *tabPages_->tabBar();
    for (int page = 0; page < bar.count(); ++page) {
        const auto inputs = tabPages_->widget(page)->findChildren<QWidget*>();
        const bool isRefused = std::ranges::any_of(inputs, [](const QWidget* input) { return IsRefused(*input); });
        bar.setTabTextColor(page, isRefused ? MarkColour(palette()) : QColor());
        bar.setTabToolTip(page, isRefused ? "A field on this page is refused." : "");
    }
}

// Qt itself would use no more than two thirds of the screen.
QSize TabbedDialog::Room() const {
    return screen()->availableGeometry().size() - QSize(0, 2 * fontMetrics().height());
}

// Showing a dialog focuses its first input, which must not replace the initial text of the status line.
void TabbedDialog::setVisible(bool visible) {
    const RaisedFlag showing(showing_);
    if (visible && !testAttribute(Qt::WA_Resized)) resize(sizeHint().boundedTo(Room()));
    QDialog::setVisible(visible);
}

void TabbedDialog::done(int result) {
    closed_ = true;
    QDialog::done(result);
}

}  // namespace korvane
