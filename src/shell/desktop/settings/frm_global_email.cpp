#include "shell/desktop/settings/frm_global_email.h"

#include <QApplication>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/desktop/toolkit/reading_text.h"

namespace korvane {
namespace {

constexpr int kEmailCharacters = 30;  ///< minimum width of a box
constexpr int kEmailStatusLines = 2;

// Where the groups begin in the table of the inputs.
constexpr std::size_t kGlobalValues = 0;
constexpr std::size_t kMonitorValues = 4;
constexpr std::size_t kServerValues = 8;
constexpr std::size_t kRowsOfGroup = 4;

}  // namespace

frmGlobalEmail::frmGlobalEmail(const Desk& desk, ResourceEmailFiles& monitors, QWidget* parent)
    : FormDialog("frmGlobalEmail", "Global E-Mail Settings", parent), walk_(desk, monitors), inputs_(GlobalEmailInputs()) {
    setSizeGripEnabled(true);
    content_->addWidget(new ScrolledPage(Page()), 1);
    AddStatus(kEmailStatusLines);
    txtStatus_->setFocusPolicy(Qt::ClickFocus);
    auto* cmdClose = NewButton({"cmdClose", "&Close"}, this, [this] { reject(); });
    content_->addWidget(cmdClose, 0, Qt::AlignRight);
    setTabOrder(cmdUpdateAll_, cmdClose);
    WatchForHelp();
    cmdSaveGlobal_->setDefault(true);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { FocusMoved(now); });

    GlobalEmailFields fields;
    Tell(walk_.Open(fields), "");
    inputs_.Fill(fields);
    ShowServer();
    inputs_.Box(&GlobalEmailFields::strToList1)->setFocus();
}

QWidget* frmGlobalEmail::Page() {
    auto* page = new QWidget(this);
    auto* content = new QVBoxLayout(page);
    content->setContentsMargins(0, 0, 0, 0);
    auto* upper = new QHBoxLayout;
    content->addLayout(upper);
    AddRows(AddGroup(*upper, "Global values"), kGlobalValues);
    AddRows(AddGroup(*upper, "Resource monitors"), kMonitorValues);
    cmdSaveGlobal_ = NewCommand("cmdSaveGlobal", "&Save Global Values",
                                "Saves the global values and the addresses of the monitors. The servers stay as they are.",
                                &frmGlobalEmail::cmdSaveGlobal_Click);
    cmdUpdateAll_ = NewCommand("cmdUpdateAll", "Update &All Servers...", "Gives the global values above to all servers.",
                               &frmGlobalEmail::cmdUpdateAll_Click);
    content->addLayout(LeftRow({cmdSaveGlobal_, cmdUpdateAll_}));
    content->addSpacing(fontMetrics().height() / 2);
    content->addWidget(Server());
    content->addStretch();
    return page;
}

QGroupBox* frmGlobalEmail::Server() {
    fraServer_ = new QGroupBox("Server", this);
    auto* layout = new QVBoxLayout(fraServer_);
    lblTitle_ = new QLabel(fraServer_);
    lblTitle_->setObjectName("lblTitle");
    lblTitle_->setTextFormat(Qt::PlainText);
    lblTitle_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);  // a long name must not widen the dialog
    QFont heading = lblTitle_->font();
    heading.setBold(true);
    lblTitle_->setFont(heading);
    layout->addWidget(lblTitle_);
    AddRows(AddForm(*layout), kServerValues);
    layout->addSpacing(fontMetrics().height() / 2);
    layout->addLayout(Walk());
    return fraServer_;
}

void frmGlobalEmail::AddRows(QFormLayout& form, std::size_t first) {
    for (const GlobalEmailInput& each : GlobalEmailInputs().subspan(first, kRowsOfGroup)) {
        QLineEdit* const box = inputs_.AddRow(form, each.text);
        box->setMinimumWidth(box->fontMetrics().averageCharWidth() * kEmailCharacters);
    }
}

QLayout* frmGlobalEmail::Walk() {
    auto* row = NewRow({NewMove("cmdFirst", "F&irst", &GlobalEmailWalk::MoveFirst),
                        NewMove("cmdPrevious", "&Previous", &GlobalEmailWalk::MovePrevious),
                        NewMove("cmdNext", "&Next", &GlobalEmailWalk::MoveNext),
                        NewMove("cmdLast", "&Last", &GlobalEmailWalk::MoveLast)});
    lblPosition_ = new QLabel(fraServer_);
    lblPosition_->setObjectName("lblPosition");
    row->addWidget(lblPosition_);
    row->addStretch();
    cmdUpdateServer_ = NewCommand("cmdUpdateServer", "Update This Ser&ver", "Saves the four fields of this server.",
                                  &frmGlobalEmail::cmdUpdateServer_Click);
    row->addWidget(cmdUpdateServer_);
    return row;
}

QPushButton* frmGlobalEmail::NewCommand(const char* name, const char* text, const char* help, void (frmGlobalEmail::*click)()) {
    return NewButton({name, text, help}, this, [this, click] { (this->*click)(); });
}

QPushButton* frmGlobalEmail::NewMove(const char* name, const char* text, void (GlobalEmailWalk::*step)()) {
    auto* button = NewButton({name, text}, this, [this, step] {
        (walk_.*step)();
        ShowServer();
    });
    button->setAccessibleName(button->accessibleName() + " server");
    return button;
}

// Return saves the part of the dialog that has the focus.
void frmGlobalEmail::FocusMoved(QWidget* now) {
    if (qobject_cast<QLineEdit*>(now) == nullptr || !isAncestorOf(now)) return;
    (fraServer_->isAncestorOf(now) ? cmdUpdateServer_ : cmdSaveGlobal_)->setDefault(true);
}

void frmGlobalEmail::ShowServer() {
    GlobalEmailFields fields = inputs_.Read();
    Tell(walk_.ReadServer(fields), "");
    inputs_.Fill(fields);
    lblTitle_->setText(Q(walk_.Title()));
    lblPosition_->setText(Q(walk_.Position()));
}

void frmGlobalEmail::Tell(const std::string& error, const char* success) {
    if (!error.empty())
        SetStatus("The database could not be used: " + error);
    else if (*success != '\0')
        SetStatus(success);
}

void frmGlobalEmail::cmdSaveGlobal_Click() {
    walk_.SaveGlobalValues(inputs_.Read());
}

void frmGlobalEmail::cmdUpdateServer_Click() {
    const std::string error = walk_.UpdateServer(inputs_.Read());
    Tell(error, walk_.HasServer() ? "This server is updated." : "");
}

void frmGlobalEmail::cmdUpdateAll_Click() {
    walk_.AskUpdateAll([self = QPointer<frmGlobalEmail>(this), fields = inputs_.Read()] {
        if (self != nullptr) self->UpdateAll(fields);
    });
}

void frmGlobalEmail::UpdateAll(const GlobalEmailFields& fields) {
    const std::string error =
        walk_.UpdateAll(fields, [this](const std::string& position) { lblPosition_->setText(Q(position)); });
    ShowServer();
    Tell(error, "");
}

}  // namespace korvane
