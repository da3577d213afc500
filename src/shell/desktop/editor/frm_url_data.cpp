#include "shell/desktop/editor/frm_url_data.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTabWidget>
#include <QToolButton>
#include <utility>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "shell/desktop/editor/frm_url_data_pages.h"
#include "shell/desktop/editor/frm_url_data_server_page.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/entry/entry_hints.h"
#include "shell/entry/entry_row.h"
#include "shell/entry/entry_save.h"
#include "shell/run/message_title.h"

namespace korvane {

frmURLData::frmURLData(const Desk& desk, bool isAddUrl, std::string strID, std::function<void()> saved, QWidget* parent)
    : TabbedDialog("frmURLData", "Server Settings", parent), desk_(desk), strID_(std::move(strID)), saved_(std::move(saved)) {
    askForFile = [this](const QString& title, const auto& chosen) { AskForFile(title, chosen); };

    BuildPages();
    cmdTestURL_ = AddStatusAndButtons("cmdTestURL", "&Test", [this] { cmdOk_Click(); });

    ConnectTyping();
    ConnectCommands();
    WatchForHelp(HelpOnInput);
    WatchFixedBoxes();
    Form_Load(isAddUrl);
    server_->txtAddress_IP->setFocus();
}

void frmURLData::BuildPages() {
    server_ = new ServerPage(inputs_, this);
    eMail_ = new EMailPage(inputs_, this);
    authentication_ = new AuthenticationPage(inputs_, this);
    scanText_ = new ScanTextPage(this);
    commands_ = new CommandsPage(inputs_, this);
    AddPage(server_, "Server");
    AddPage(eMail_, "E-Mail");
    AddPage(new DownTimesPage(inputs_, this), "Down Times");
    AddPage(authentication_, "Authentication");
    AddPage(scanText_, "Scan Text");
    AddPage(commands_, "Commands");
}

void frmURLData::Form_Load(bool isAddUrl) {
    OpenedEntry entry = OpenEntry(desk_, isAddUrl, strID_);
    strID_ = entry.strID;
    if (entry.found) {
        setWindowTitle(Q("Server Settings for " + entry.fields.strAddress_IP));
        inputs_.Fill(entry.fields);
        savedLastResponse_ = entry.strLastResponse;
        savedExpectedText_ = entry.fields.strExpectedText;
        InitServerTypes(entry.fields, true);
    }
    server_->cmdLastResponse->setEnabled(!Trim(savedLastResponse_).empty());
    if (isAddUrl) SetStatus(kNewEntryHint);
    loading_ = false;
}

void frmURLData::InitServerTypes(const EntryFields& fields, bool fillList) {
    types_ = korvane::InitServerTypes(fields.strPort, fields.strRequestText, fields.strExpectedText, typeChanged_);
    if (fillList) {
        for (const EntryTypeTexts& type : types_)
            server_->cmbType->addItem(Q(type.name));
    }
    const int index = IndexOfType(types_, fields.strType);
    server_->cmbType->setCurrentIndex(index);
    if (index < 0) return;
    const EntryTypeTexts& type = types_[static_cast<std::size_t>(index)];
    const EntryTypeScreen& screen = ScreenOfType(type.name);
    server_->SetScreen(screen);
    for (const QWidget* page : std::initializer_list<const QWidget*>{authentication_, scanText_})
        tabPages_->setTabEnabled(IndexOfPage(page), screen.webPages);
    server_->lblPrefix->setText(Q(type.prefix));
    server_->txtPort->setText(Q(type.port));
    server_->txtRequestText->setText(Q(type.request));
    server_->txtExpectedText->setText(Q(type.expected));
}

EntryFields frmURLData::Read() const {
    EntryFields fields = inputs_.Read();
    fields.strType = S(server_->cmbType->currentText());
    return fields;
}

std::string frmURLData::getURLText() const {
    return S(server_->txtAddress_IP->text());
}

std::int16_t frmURLData::GetAttempts() const {
    std::int16_t attempts = 0;
    IgnoreErrors([&] { attempts = Value(S(server_->txtTries->text())).Int16(); });
    return attempts;
}

std::string frmURLData::ExpectedText() const {
    return S(server_->txtExpectedText->text());
}

void frmURLData::SetExpectedText(const std::string& text) {
    server_->txtExpectedText->setText(Q(text));
}

void frmURLData::cmdOk_Click() {
    const EntryFields fields = Read();
    inputs_.TakeMarksAway();
    if (const auto refusal = CheckDownTimes(fields)) {
        QLineEdit* const box = inputs_.Box(refusal->field);
        ShowPageOf(box);
        MarkRefused(*box, Lines(refusal->message));
        desk_.person.ShowMessage(kMessageTitle, refusal->message);
        return;
    }
    const QPointer<frmURLData> self = this;
    const Desk desk = desk_;
    const std::string strID = strID_;
    const bool isSaved = SaveEntry(desk, strID, fields, [self](const std::string& name) {
        if (self != nullptr) self->server_->txtAddress_IP->setText(Q(name));
    });
    if (!isSaved || self == nullptr || IsClosed()) return;
    saved_();
    if (self != nullptr) accept();
}

}  // namespace korvane
