#include "shell/desktop/settings/frm_global_email.h"

#include <QApplication>
#include <QEvent>
#include <QFocusEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/desktop/toolkit/reading_text.h"
#include "shell/desktop/toolkit/scrolled_page.h"

namespace korvane {
namespace {

constexpr int kEmailCharacters = 30;  ///< minimum width of a box
constexpr int kEmailStatusLines = 2;

using Field = std::string GlobalEmailFields::*;

void AddBoxRow(FormInputs<GlobalEmailFields>& inputs, QFormLayout& form, Field field, const char* name, const QString& label,
               const QString& accessibleName) {
    QWidget* const group = form.parentWidget();
    QLineEdit* const box = inputs.AddBox(field, name, accessibleName, group);
    box->setMinimumWidth(box->fontMetrics().averageCharWidth() * kEmailCharacters);
    AddRow(form, label, (QByteArray("lbl") + (name + 3)).constData(), box);
}

QFormLayout* NewGroup(QGroupBox* group) {
    auto* form = NewForm(group);
    group->setLayout(form);
    return form;
}

}  // namespace

frmGlobalEmail::frmGlobalEmail(const Desk& desk, ResourceEmails& monitors, QWidget* parent)
    : QDialog(parent), walk_(desk, monitors) {
    setObjectName("frmGlobalEmail");
    setWindowTitle("Global E-Mail Settings");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    setSizeGripEnabled(true);

    auto* page = new ScrolledPage(Page());
    txtStatus_ = new ReadingText(this);
    txtStatus_->setObjectName("txtStatus");
    txtStatus_->setAccessibleName("Status");
    txtStatus_->setFocusPolicy(Qt::ClickFocus);
    txtStatus_->SetLines(kEmailStatusLines);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(page, 1);
    layout->addWidget(txtStatus_);
    layout->addWidget(NewCommand("cmdClose", "&Close", &frmGlobalEmail::cmdClose_Click), 0, Qt::AlignRight);
    WatchForHelp();

    GlobalEmailFields fields;
    Tell(walk_.Open(fields), "");
    inputs_.Fill(fields);
    ShowServer();
    inputs_.Box(&GlobalEmailFields::strToList1)->setFocus();
}

// Destroying the controls still moves the focus, and nothing is left to explain it.
frmGlobalEmail::~frmGlobalEmail() {
    disconnect(qApp, nullptr, this, nullptr);
}

QWidget* frmGlobalEmail::Page() {
    auto* upper = new QHBoxLayout;
    upper->addWidget(GlobalValues());
    upper->addWidget(Monitors());
    cmdSaveGlobal_ = NewCommand("cmdSaveGlobal", "&Save Global Values", &frmGlobalEmail::cmdSaveGlobal_Click);
    auto* cmdUpdateAll = NewCommand("cmdUpdateAll", "Update &All Servers...", &frmGlobalEmail::cmdUpdateAll_Click);
    auto* globalRow = NewRow({cmdSaveGlobal_, cmdUpdateAll});
    globalRow->addStretch();
    auto* page = new QWidget(this);
    auto* content = new QVBoxLayout(page);
    content->setContentsMargins(0, 0, 0, 0);
    content->addLayout(upper);
    content->addLayout(globalRow);
    content->addSpacing(fontMetrics().height() / 2);
    content->addWidget(Server());
    content->addStretch();
    return page;
}

QWidget* frmGlobalEmail::GlobalValues() {
    auto* group = new QGroupBox("Global values", this);
    QFormLayout& form = *NewGroup(group);
    AddBoxRow(inputs_, form, &GlobalEmailFields::strToList1, "txtToList1", "Email Notify #&1:", "Global Email Notify 1");
    AddBoxRow(inputs_, form, &GlobalEmailFields::strToList2, "txtToList2", "Email Notify #&2:", "Global Email Notify 2");
    AddBoxRow(inputs_, form, &GlobalEmailFields::strFrom, "txtFrom", "&From:", "Global From");
    AddBoxRow(inputs_, form, &GlobalEmailFields::strSubject, "txtSubject", "Su&bject:", "Global Subject");
    return group;
}

QWidget* frmGlobalEmail::Monitors() {
    auto* group = new QGroupBox("Resource monitors", this);
    QFormLayout& form = *NewGroup(group);
    AddBoxRow(inputs_, form, &GlobalEmailFields::strEmailCPU, "txtEmailCPU", "CP&U:", "Address of the CPU monitor");
    AddBoxRow(inputs_, form, &GlobalEmailFields::strEmailDisk, "txtEmailDisk", "&Disk:", "Address of the disk monitor");
    AddBoxRow(inputs_, form, &GlobalEmailFields::strEmailMemory, "txtEmailMemory", "&Memory:", "Address of the memory monitor");
    AddBoxRow(inputs_, form, &GlobalEmailFields::strEmailServices, "txtEmailServices",
              "S&ervices:", "Address of the service monitor");
    return group;
}

QWidget* frmGlobalEmail::Server() {
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
    auto* page = new QWidget(fraServer_);
    QFormLayout& form = *NewForm(page);
    page->setLayout(&form);
    form.setContentsMargins(0, 0, 0, 0);
    layout->addWidget(page);
    AddBoxRow(inputs_, form, &GlobalEmailFields::strEmailList1, "txtEmailList1",
              "Email N&otify #1:", "Email Notify 1 of the server");
    AddBoxRow(inputs_, form, &GlobalEmailFields::strEmailList2, "txtEmailList2",
              "Email No&tify #2:", "Email Notify 2 of the server");
    AddBoxRow(inputs_, form, &GlobalEmailFields::strEmailFrom, "txtEmailFrom", "F&rom:", "From of the server");
    AddBoxRow(inputs_, form, &GlobalEmailFields::strEmailText, "txtEmailText", "Sub&ject:", "Subject of the server");
    layout->addSpacing(fontMetrics().height() / 2);
    layout->addLayout(Walk());
    return fraServer_;
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
    cmdUpdateServer_ = NewCommand("cmdUpdateServer", "Update This Ser&ver", &frmGlobalEmail::cmdUpdateServer_Click);
    row->addWidget(cmdUpdateServer_);
    return row;
}

QPushButton* frmGlobalEmail::NewCommand(const char* name, const QString& text, void (frmGlobalEmail::*click)()) {
    auto* button = NewButton(name, text, QString(text).remove('&').remove("..."), this);
    connect(button, &QPushButton::clicked, this, [this, click] { (this->*click)(); });
    return button;
}

QPushButton* frmGlobalEmail::NewMove(const char* name, const QString& text, void (GlobalEmailWalk::*step)()) {
    auto* button = NewButton(name, text, QString(text).remove('&') + " server", this);
    connect(button, &QPushButton::clicked, this, [this, step] {
        (walk_.*step)();
        ShowServer();
    });
    return button;
}

// Return saves the part of the dialog that has the focus.
void frmGlobalEmail::WatchForHelp() {
    for (QWidget* input : findChildren<QWidget*>()) {
        const std::string_view help = HelpOnGlobalEmailInput(S(input->objectName()));
        if (help.empty()) continue;
        input->setAccessibleDescription(Q(help));
        input->installEventFilter(this);
    }
    cmdSaveGlobal_->setDefault(true);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
        if (qobject_cast<QLineEdit*>(now) == nullptr || !isAncestorOf(now)) return;
        (fraServer_->isAncestorOf(now) ? cmdUpdateServer_ : cmdSaveGlobal_)->setDefault(true);
    });
}

bool frmGlobalEmail::eventFilter(QObject* watched, QEvent* event) {
    const auto isNews = [&] {
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        return reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason;
    };
    if (event->type() == QEvent::FocusIn && isNews()) SetStatus(Q(HelpOnGlobalEmailInput(S(watched->objectName()))));
    return QDialog::eventFilter(watched, event);
}

void frmGlobalEmail::ShowServer() {
    GlobalEmailFields fields = inputs_.Read();
    Tell(walk_.ReadServer(fields), "");
    inputs_.Fill(fields);
    lblTitle_->setText(Q(walk_.Title()));
    lblPosition_->setText(Q(walk_.Position()));
}

void frmGlobalEmail::SetStatus(const QString& text) {
    txtStatus_->SetText(text);
}

void frmGlobalEmail::Tell(const std::string& error, const char* success) {
    if (!error.empty())
        SetStatus("The database could not be used: " + Q(error));
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
