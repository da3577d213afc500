#include "shell/desktop/small/frm_help.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

constexpr int kHelpCharacters = 60;

}  // namespace

frmHelp::frmHelp(QWidget* parent) : QDialog(parent) {
    setObjectName("frmHelp");
    setWindowTitle("Korvane  Open Browser");
    setAttribute(Qt::WA_DeleteOnClose);

    txtURL_ = new QLineEdit(this);
    txtURL_->setObjectName("txtURL");
    txtURL_->setAccessibleName("Address");
    txtURL_->setReadOnly(true);
    txtURL_->setMinimumWidth(fontMetrics().averageCharWidth() * kHelpCharacters);
    auto* lblURL = new QLabel("&Address of the page that your browser opens:", this);
    lblURL->setObjectName("lblURL");
    lblURL->setBuddy(txtURL_);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblURL);
    layout->addWidget(txtURL_);
    layout->addStretch();
    layout->addWidget(Buttons());
}

QWidget* frmHelp::Buttons() {
    auto* buttons = new QDialogButtonBox(this);
    const auto add = [&](const char* name, const QString& text, QDialogButtonBox::ButtonRole role, auto click) {
        QPushButton* button = buttons->addButton(text, role);
        button->setObjectName(name);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, click);
        return button;
    };
    add("cmdOpen", "&Open again", QDialogButtonBox::ActionRole, [this] { cmdOpen_Click(); });
    add("cmdCopy", "&Copy address", QDialogButtonBox::ActionRole, [this] { cmdCopy_Click(); });
    QPushButton* cmdClose = add("cmdClose", "C&lose", QDialogButtonBox::RejectRole, [this] { close(); });
    cmdClose->setDefault(true);
    cmdClose->setFocus();
    return buttons;
}

void frmHelp::Form_Load(WebPages& pages) {
    pages_ = &pages;
    txtURL_->setText(Q(pages.GetHelpURL()));
    txtURL_->setCursorPosition(0);
    pages.OpenHelpURL();
}

void frmHelp::cmdOpen_Click() {
    if (pages_ != nullptr) pages_->OpenAddress(S(txtURL_->text()));
}

void frmHelp::cmdCopy_Click() {
    QApplication::clipboard()->setText(txtURL_->text());
}

void HelpViewer::Show() {
    form_.Show();
    form_.TheForm()->Form_Load(pages_);
}

}  // namespace korvane
