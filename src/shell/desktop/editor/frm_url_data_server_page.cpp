#include "shell/desktop/editor/frm_url_data_server_page.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

constexpr int kTypesAtOnce = 20;  // in the open list: all of them
constexpr int kAddressCharacters = 52;

/// Type and expected text change their labels: reserving the widest label keeps the boxes in place.
void KeepWidthOf(QLabel& label, const QString& widest) {
    label.setMinimumWidth(label.fontMetrics().horizontalAdvance(widest));
}

// Letters that no other control of this page uses. The labels change with the type, and each contains one of them.
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

ServerPage::ServerPage(EntryInputs& inputs, QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    form_ = NewForm(this);
    layout->addLayout(form_);
    AddIdentity(inputs);
    AddCheck(inputs);
    AddTimes(inputs);
    AddExpectedText(inputs);
    layout->addSpacing(fontMetrics().height());
    layout->addStretch();
    layout->addLayout(History());
}

void ServerPage::AddIdentity(EntryInputs& inputs) {
    cmbType = new QComboBox(this);
    cmbType->setObjectName("cmbType");
    cmbType->setAccessibleName("Server type");
    cmbType->setMaxVisibleItems(kTypesAtOnce);
    cmbType->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    cmbType->setFocusPolicy(Qt::StrongFocus);  // not by the mouse wheel
    QWidget* const ckIsMonitoring = inputs.AddMark(&EntryFields::bIsMonitoring, "ckIsMonitoring", "&Monitor this server", this);
    auto* typeRow = NewRow({cmbType});
    typeRow->addStretch();
    typeRow->addWidget(ckIsMonitoring);
    AddRow(*form_, "Server t&ype:", "lblType", cmbType, typeRow);

    lblPrefix = NewLabel("lblPrefix", "", this);
    txtAddress_IP = inputs.AddBox(&EntryFields::strAddress_IP, "txtAddress_IP", "Server name", this);
    txtAddress_IP->setMinimumWidth(fontMetrics().averageCharWidth() * kAddressCharacters);
    lblAddress = AddRow(*form_, "Server Name or IP:", "lblAddress", txtAddress_IP, NewRow({lblPrefix, txtAddress_IP}));

    txtDesc = inputs.AddBox(&EntryFields::strDesc, "txtDesc", "Display name", this);
    AddRow(*form_, "&Display name:", "lblDesc", txtDesc);
    AddRow(*form_, "&Group:", "lblGroup", inputs.AddBox(&EntryFields::strGroup, "txtGroup", "Group", this));
}

void ServerPage::AddCheck(EntryInputs& inputs) {
    txtPort = inputs.AddBox(&EntryFields::strPort, "txtPort", "Port", this);
    KeepShort(*txtPort);
    lblPort = AddRow(*form_, "&Port:", "lblPort", txtPort);
    txtRequestText = inputs.AddBox(&EntryFields::strRequestText, "txtRequestText", "Request", this);
    lblRequest = AddRow(*form_, "Request:", "lblRequest", txtRequestText);
    txtRequestText->hide();  // its label stays, and explains the request when it is clicked
}

void ServerPage::AddTimes(EntryInputs& inputs) {
    const auto numberRow = [](QLineEdit* box, QLabel* unit) {
        KeepShort(*box);
        auto* row = NewRow({box, unit});
        row->addStretch();
        return row;
    };
    txtIntervalSeconds = inputs.AddBox(&EntryFields::nIntervalSeconds, "txtIntervalSeconds", "Check every, in seconds", this);
    lblInterval = NewLabel("lblInterval", "Seconds.", this);
    AddRow(*form_, "Check e&very:", "lblEvery", txtIntervalSeconds, numberRow(txtIntervalSeconds, lblInterval));

    txtTries = inputs.AddBox(&EntryFields::nTries, "txtTries", "Times to try", this);
    QLabel* const inARow = NewLabel("lblTriesUnit", "failures in a row until the server counts as down", this);
    AddRow(*form_, "T&imes to try:", "lblTries", txtTries, numberRow(txtTries, inARow));

    txtTimeout = inputs.AddBox(&EntryFields::nTimeout, "txtTimeout", "Time-out, in seconds", this);
    timeoutRow_ = numberRow(txtTimeout, NewLabel("lblTimeoutUnit", "seconds", this));
    AddRow(*form_, "Time-o&ut:", "lblTimeout", txtTimeout, timeoutRow_);
}

void ServerPage::AddExpectedText(EntryInputs& inputs) {
    txtExpectedText = inputs.AddBox(&EntryFields::strExpectedText, "txtExpectedText", "Expected response", this);
    cmdTextToFind = new QToolButton(this);
    cmdTextToFind->setObjectName("cmdTextToFind");
    cmdTextToFind->setAccessibleName("Edit the expected text");
    cmdTextToFind->setText("...");
    cmdTextToFind->setShortcut(QKeySequence("Alt+X"));  // no letter in its text can be underlined
    cmdTextToFind->setToolTip("Edit the expected text (Alt+X)");
    cmdTextToFind->setFocusPolicy(Qt::StrongFocus);
    lblExpected =
        AddRow(*form_, "Expected Response Text:", "lblExpected", txtExpectedText, NewRow({txtExpectedText, cmdTextToFind}));
    KeepWidthOf(*lblExpected, Q(ScreenOfType("PING").expectedLabel));
}

QLayout* ServerPage::History() {
    auto* row = new QHBoxLayout;
    const auto add = [&](const char* name, const QString& text) {
        auto* button = new QPushButton(text, this);
        button->setObjectName(name);
        button->setAccessibleName(QString(text).remove('&'));
        row->addWidget(button);
        return button;
    };
    cmdTraceRoute = add("cmdTraceRoute", "Last Tr&aceroute");
    cmdLastResponse = add("cmdLastResponse", "&Last Response");
    cmdReport = add("cmdReport", "&Report");
    row->addStretch();
    cmdReset = add("cmdReset", "Reset &History...");
    return row;
}

void ServerPage::SetScreen(const EntryTypeScreen& screen) {
    txtPort->setEnabled(screen.portEnabled);
    txtRequestText->setEnabled(screen.requestEnabled);
    if (screen.expectedEnabled) txtExpectedText->setEnabled(*screen.expectedEnabled);
    cmdTextToFind->setEnabled(txtExpectedText->isEnabled());
    form_->setRowVisible(timeoutRow_, screen.timeoutShown);
    lblAddress->setText(WithKey(Q(screen.addressLabel), kAddressKeys));
    lblExpected->setText(WithKey(Q(screen.expectedLabel), kExpectedKeys));
    txtExpectedText->setAccessibleName(Q(screen.expectedLabel).remove(':'));
}

}  // namespace korvane
