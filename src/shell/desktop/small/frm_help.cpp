#include "shell/desktop/small/frm_help.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QVBoxLayout>

#include "shell/desktop/small/dialog_parts.h"
#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

constexpr int kHelpCharacters = 60;

}  // namespace

frmHelp::frmHelp(QWidget* parent) : QDialog(parent) {
    setObjectName("frmHelp");
    setWindowTitle("Korvane  Open Browser");
    setAttribute(Qt::WA_DeleteOnClose);

    txtURL_ = NewBox("txtURL", "Address", this);
    txtURL_->setReadOnly(true);
    txtURL_->setMinimumWidth(fontMetrics().averageCharWidth() * kHelpCharacters);
    QLabel* lblURL = NewLabel("lblURL", "&Address of the page that your browser opens:", this);
    lblURL->setBuddy(txtURL_);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblURL);
    layout->addWidget(txtURL_);
    layout->addStretch();
    layout->addWidget(
        NewButtons(this,
                   {{"cmdOpen", "&Open again", QDialogButtonBox::ActionRole, [this] { pages_->OpenAddress(S(txtURL_->text())); }},
                    {"cmdCopy", "&Copy address", QDialogButtonBox::ActionRole,
                     [this] { QApplication::clipboard()->setText(txtURL_->text()); }},
                    {"cmdClose", "C&lose", QDialogButtonBox::RejectRole}},
                   "cmdClose"));
}

void frmHelp::Form_Load(WebPages& pages) {
    pages_ = &pages;
    txtURL_->setText(Q(pages.GetHelpURL()));
    txtURL_->setCursorPosition(0);
    pages.OpenHelpURL();
}

void HelpViewer::Show() {
    ModelessForm::Show();
    TheForm()->Form_Load(pages_);
}

}  // namespace korvane
