#include "shell/desktop/editor/frm_url_data.h"

#include <QComboBox>
#include <QPointer>
#include <QPushButton>
#include <QTabWidget>
#include <QToolButton>
#include <utility>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "platform/operator.h"
#include "shell/entry/entry_save.h"
#include "shell/entry/entry_type.h"

namespace korvane {
namespace {

constexpr std::string_view kNewEntryHint =
    "Please fill in all the appropriate settings and check each of the settings tabs before saving.";

// Letters that no other control of the first page uses. The labels change with the type, and each contains one of them.
constexpr const char* kAddressKeys = "WN";
constexpr const char* kExpectedKeys = "E";

/// The first of these letters that the label contains becomes its key.
QString WithKey(QString label, const char* keys) {
    for (const char* key = keys; *key != '\0'; ++key) {
        const auto at = label.indexOf(QLatin1Char(*key), 0, Qt::CaseInsensitive);
        if (at >= 0) return label.insert(at, '&');
    }
    return label;
}

}  // namespace

frmURLData::frmURLData(const Desk& desk, bool isAddUrl, std::string strID, std::function<void()> saved, QWidget* parent)
    : TabbedDialog("frmURLData", "Server Settings", parent),
      desk_(desk),
      strID_(std::move(strID)),
      saved_(std::move(saved)),
      inputs_(EntryInputs()) {
    AddServerPage();
    AddEMailPage();
    AddDownTimesPage();
    AddAuthenticationPage();
    AddScanTextPage();
    AddCommandsPage();
    cmdTestURL_ = AddStatusAndButtons(
        {"cmdTestURL", "&Test", "Checks the server once with what is on these pages. Nothing is saved."},
        [this] { cmdTestURL_Click(); }, [this] { cmdOk_Click(); });

    ConnectTyping();
    WatchForHelp();
    Form_Load(isAddUrl);
    txtAddress_IP_->setFocus();
}

void frmURLData::Form_Load(bool isAddUrl) {
    OpenedEntry entry = OpenEntry(desk_, isAddUrl, strID_);
    strID_ = entry.strID;
    if (entry.found) {
        setWindowTitle(Q("Server Settings for " + entry.fields.strAddress_IP));
        inputs_.Fill(entry.fields);
        savedLastResponse_ = entry.strLastResponse;
        savedExpectedText_ = entry.fields.strExpectedText;
        for (const ServerType& type : ServerTypeTable())
            cmbType_->addItem(Q(type.name));
        InitServerTypes(entry.fields);
    }
    cmdLastResponse_->setEnabled(!Trim(savedLastResponse_).empty());
    if (isAddUrl) SetStatus(kNewEntryHint);
    loading_ = false;
}

void frmURLData::InitServerTypes(const EntryFields& fields) {
    const int index = IndexOfType(fields.strType);
    cmbType_->setCurrentIndex(index);
    if (index < 0) return;
    const ServerType& type = ServerTypeTable()[static_cast<std::size_t>(index)];
    const EntryTypeTexts texts = TextsOfType(type, fields, typeChanged_);
    SetScreen(ScreenOfType(type.name));
    lblPrefix_->setText(Q(type.prefix));
    txtPort_->setText(Q(texts.port));
    inputs_.Box(&EntryFields::strRequestText)->setText(Q(texts.request));
    txtExpectedText_->setText(Q(texts.expected));
}

void frmURLData::SetScreen(const EntryTypeScreen& screen) {
    txtPort_->setEnabled(screen.portEnabled);
    inputs_.Box(&EntryFields::strRequestText)->setEnabled(screen.requestEnabled);
    if (screen.expectedEnabled) txtExpectedText_->setEnabled(*screen.expectedEnabled);
    cmdTextToFind_->setEnabled(txtExpectedText_->isEnabled());
    form_->setRowVisible(timeoutRow_, screen.timeoutShown);
    if (statusRow_ >= 0) form_->setRowVisible(statusRow_, screen.webPages);
    lblAddress_->setText(WithKey(Q(screen.addressLabel), kAddressKeys));
    inputs_.Label(&EntryFields::strExpectedText)->setText(WithKey(Q(screen.expectedLabel), kExpectedKeys));
    txtExpectedText_->setAccessibleName(Q(screen.expectedLabel).remove(':'));
    for (const int page : webPages_)
        tabPages_->setTabEnabled(page, screen.webPages);
}

EntryFields frmURLData::Read() const {
    EntryFields fields = inputs_.Read();
    fields.strType = S(cmbType_->currentText());
    return fields;
}

std::string frmURLData::getURLText() const {
    return S(txtAddress_IP_->text());
}

std::int16_t frmURLData::GetAttempts() const {
    std::int16_t attempts = 0;
    IgnoreErrors([&] { attempts = Value(S(inputs_.Box(&EntryFields::nTries)->text())).Int16(); });
    return attempts;
}

std::string frmURLData::ExpectedText() const {
    return S(txtExpectedText_->text());
}

void frmURLData::SetExpectedText(const std::string& text) {
    txtExpectedText_->setText(Q(text));
}

void frmURLData::cmdOk_Click() {
    const EntryFields fields = Read();
    inputs_.TakeMarksAway();
    if (const auto refusal = CheckInputs(fields)) {
        ShowRefusal(*inputs_.Box(refusal->field), refusal->message);
        desk_.person.ShowMessage(kMessageTitle, refusal->message);
        return;
    }
    const QPointer<frmURLData> self = this;
    const Desk desk = desk_;
    const std::string strID = strID_;
    const bool isSaved = SaveEntry(desk, strID, fields, [self](const std::string& name) {
        if (self != nullptr) self->txtAddress_IP_->setText(Q(name));
    });
    if (!isSaved || self == nullptr || IsClosed()) return;
    saved_();
    if (self != nullptr) accept();
}

}  // namespace korvane
