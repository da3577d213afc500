// The pages of the editor.
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "engine/http_status.h"
#include "shell/desktop/editor/frm_url_data.h"
#include "shell/entry/entry_hints.h"
#include "shell/entry/entry_type.h"

namespace korvane {
namespace {

constexpr int kTypesAtOnce = 20;  // in the open list: all of them
constexpr int kAddressCharacters = 52;

constexpr const char* kRemoveHelp = "Takes this down time away, also a saved one. Nothing is removed before you save.";

/// A sentence that is there only where it holds.
QLabel* NewNote(const char* name, const QString& accessibleName, QWidget* page) {
    QLabel* note = NewFigure(name, accessibleName, page);
    QFont bold = note->font();
    bold.setBold(true);
    note->setFont(bold);
    return note;
}

}  // namespace

// What was there first keeps its place in the order of the Tab key.
void frmURLData::PutLast(const QList<QWidget*>& added) {
    QWidget* last = findChild<QPushButton*>("cmdCancel");
    for (QWidget* each : added) {
        setTabOrder(last, each);
        last = each;
    }
}

void frmURLData::AddServerPage() {
    QVBoxLayout& page = AddPage("Server", "What is watched, how often, and what it must answer.");
    form_ = &AddForm(page);
    AddTypeRow();
    lblPrefix_ = NewLabel("lblPrefix", "", this);
    txtAddress_IP_ = inputs_.AddBox(&EntryFields::strAddress_IP, this);
    txtAddress_IP_->setMinimumWidth(fontMetrics().averageCharWidth() * kAddressCharacters);
    lblAddress_ =
        AddRow(*form_, Q(EntryTypeScreen{}.addressLabel), "lblAddress_IP", txtAddress_IP_, NewRow({lblPrefix_, txtAddress_IP_}));
    for (const auto field : {&EntryFields::strDesc, &EntryFields::strGroup, &EntryFields::strPort, &EntryFields::strRequestText,
                             &EntryFields::nIntervalSeconds, &EntryFields::nTries, &EntryFields::nTimeout})
        inputs_.AddRow(*form_, field);
    timeoutRow_ = form_->rowCount() - 1;
    txtPort_ = inputs_.Box(&EntryFields::strPort);
    KeepShort(*txtPort_);
    inputs_.Box(&EntryFields::strRequestText)->hide();  // its label stays, and explains the request when it is clicked
    AddExpectedTextRow();
    if (desk_.safeguards.IsOn(kHttpStatusFails)) {
        inputs_.AddRow(*form_, &EntryFields::HTTPStatusGood);
        statusRow_ = form_->rowCount() - 1;
    }
    lblNumbers_ = NewNote("lblNumbers", "What follows from these numbers", this);
    lblNumbers_->setMinimumHeight(fontMetrics().height());  // a note that comes and goes moves nothing
    page.addWidget(lblNumbers_);
    page.addStretch();
    AddHistoryRow(page);
}

void frmURLData::AddTypeRow() {
    const Control& control = std::ranges::find(EntryInputs(), &EntryFields::strType, &EntryInput::text)->control;
    cmbType_ = new QComboBox(this);
    Describe(*cmbType_, control);
    cmbType_->setMaxVisibleItems(kTypesAtOnce);
    cmbType_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    cmbType_->setFocusPolicy(Qt::StrongFocus);  // not by the mouse wheel
    auto* row = LeftRow({cmbType_});
    row->addWidget(inputs_.AddMark(&EntryFields::bIsMonitoring, this));
    AddRow(*form_, control.label, "lblType", cmbType_, row);
}

void frmURLData::AddExpectedTextRow() {
    txtExpectedText_ = inputs_.AddBox(&EntryFields::strExpectedText, this);
    cmdTextToFind_ = new QToolButton(this);
    Describe(*cmdTextToFind_,
             {"cmdTextToFind", "...", "Opens a larger window for the expected text, in which you can try it out.",
              "Edit the expected text"});
    cmdTextToFind_->setText("...");
    cmdTextToFind_->setShortcut(QKeySequence("Alt+X"));  // no letter in its text can be underlined
    cmdTextToFind_->setToolTip("Edit the expected text (Alt+X)");
    cmdTextToFind_->setFocusPolicy(Qt::StrongFocus);
    connect(cmdTextToFind_, &QToolButton::clicked, this, [this] { cmdTextToFind_Click(); });
    inputs_.AddRow(*form_, &EntryFields::strExpectedText, {cmdTextToFind_});
    // The label changes with the type: reserving the widest one keeps the boxes in place.
    QLabel* label = inputs_.Label(&EntryFields::strExpectedText);
    label->setMinimumWidth(label->fontMetrics().horizontalAdvance(Q(ScreenOfType("PING").expectedLabel)));
}

void frmURLData::AddHistoryRow(QVBoxLayout& page) {
    auto* cmdTraceRoute =
        NewButton({"cmdTraceRoute", "Last Tr&aceroute", "Shows the route to this server as it was traced at its last failure."},
                  this, [this] { cmdTraceRoute_Click(); });
    cmdLastResponse_ = NewButton({"cmdLastResponse", "&Last Response", "Shows what this server answered last."}, this,
                                 [this] { cmdLastResponse_Click(); });
    auto* cmdReport = NewButton({"cmdReport", "&Report", "Opens the report of this server's group in your browser."}, this,
                                [this] { desk_.reports.DisplayReport("0", Read().strGroup); });
    auto* cmdReset =
        NewButton({"cmdReset", "Reset &History...",
                   "Deletes the failures and response times of this server and begins its statistics anew.", "Reset History..."},
                  this, [this] { cmdReset_Click(); });
    QHBoxLayout* row = LeftRow({cmdTraceRoute, cmdLastResponse_, cmdReport});
    row->addWidget(cmdReset);
    page.addLayout(row);
}

void frmURLData::AddEMailPage() {
    QVBoxLayout& page = AddPage("E-Mail", "Who is told by mail when this server goes down and when it comes back.");
    QFormLayout& form = AddForm(page);
    emailForm_ = &form;
    for (const auto field : {&EntryFields::strEmailList1, &EntryFields::strEmailList2, &EntryFields::strEmailFrom,
                             &EntryFields::strEmailText, &EntryFields::strEmailBody})
        inputs_.AddRow(form, field);
    lblNobody_ = NewNote("lblNobody", "Whether anybody is notified", this);
    form.insertRow(2, QString(), lblNobody_);
    page.addSpacing(fontMetrics().height() / 2);
    page.addWidget(inputs_.AddMark(&EntryFields::bNotSendBody, this));
    page.addWidget(inputs_.AddMark(&EntryFields::bSendUpNotify, this));
    page.addStretch();
    page.addWidget(NewButton({"cmdTestEmail", "Send Test &Mail", "Sends a test mail with what is on this page."}, this,
                             [this] { cmdTestEmail_Click(); }),
                   0, Qt::AlignLeft);
}

void frmURLData::AddDownTimesPage() {
    QVBoxLayout& page =
        AddPage("Down Times", "Up to two times of the day at which this server is not checked, for backups or maintenance.",
                "The server is not checked from each of these times on, for that many minutes, every day. "
                "Write the time of day as 3:00am or 15:30.");
    QFormLayout& form = AddForm(page);
    constexpr Control kRemove[] = {{"cmdRemoveDownTime1", "&Remove", kRemoveHelp, "Remove down time 1"},
                                   {"cmdRemoveDownTime2", "Remo&ve", kRemoveHelp, "Remove down time 2"}};
    for (std::size_t i = 0; i < std::size(kDownTimes); ++i) {
        const EntryDownTime& each = kDownTimes[i];
        inputs_.AddBox(each.time, this);
        QLineEdit* minutes = inputs_.AddBox(each.minutes, this);
        removeDownTimes_.append(NewButton(kRemove[i], this, [this, i] { RemoveDownTime(i); }));
        inputs_.AddRow(form, each.time, {minutes, new QLabel("minutes", this), removeDownTimes_.back()});
    }
    page.addStretch();
}

void frmURLData::AddAuthenticationPage() {
    QVBoxLayout& page = AddPage("Authentication", "The user name and password that a protected web page asks for.",
                                "For a web page that asks for a log-in. Leave both blank for a page that does not.");
    webPages_.push_back(tabPages_->count() - 1);
    QFormLayout& form = AddForm(page);
    inputs_.AddRow(form, &EntryFields::strUserName);
    auto* txtPassword = inputs_.AddBox(&EntryFields::strPassword, this);
    txtPassword->setEchoMode(QLineEdit::Password);
    auto* cmdShowPassword =
        NewButton({"cmdShowPassword", "S&how", "Shows the password while it is pressed in.", "Show the password"}, this);
    cmdShowPassword->setCheckable(true);
    cmdShowPassword->setAutoDefault(false);
    connect(cmdShowPassword, &QPushButton::toggled, txtPassword,
            [txtPassword](bool shown) { txtPassword->setEchoMode(shown ? QLineEdit::Normal : QLineEdit::Password); });
    inputs_.AddRow(form, &EntryFields::strPassword, {cmdShowPassword});
    page.addStretch();
}

void frmURLData::AddScanTextPage() {
    QVBoxLayout& page = AddPage("Scan Text", "Texts in the response that mean failure although the server answered.",
                                "A web server may answer although the page behind it has failed, "
                                "with the error page of a firewall for example. List the texts by which such answers are known: "
                                "a response that holds one of them counts as a failure, and each may have a command of its own.");
    webPages_.push_back(tabPages_->count() - 1);
    lblFailTexts_ = NewFigure("lblFailTexts", "Number of failure texts", this);
    page.addLayout(LeftRow({NewButton({"cmdCommands", "&Failure Texts and Commands...",
                                       "Opens the list of texts that mean failure, each with a command to run."},
                                      this, [this] { cmdCommands_Click(); }),
                            lblFailTexts_}));
    page.addSpacing(fontMetrics().height() / 2);
    page.addWidget(NewExplanation("The list is saved by its own OK.", this));
    page.addStretch();
    page.addWidget(
        NewButton({"cmdHelpRules", "&Help", "Opens the help on failure texts in your browser.", "Help on failure texts"}, this,
                  [this] { desk_.pages.Show(WebPage::RulesHelp); }),
        0, Qt::AlignLeft);
}

void frmURLData::AddCommandsPage() {
    QVBoxLayout& page = AddPage("Commands", "Programs that are started when this server goes down and when it comes back.");
    constexpr const char* kChooseHelp = "Looks for the program on your disk.";
    constexpr const char* kTryHelp = "Starts the program now.";
    QFormLayout& down = AddGroup(page, "When the server goes down");
    txtCMD_ = inputs_.AddBox(&EntryFields::strCMD, this);
    auto* cmdChooseCMD = NewButton({"cmdChooseCMD", "&Browse...", kChooseHelp, "Browse for the failure command"}, this,
                                   [this] { ChooseCommand("Choose a Server Down command (*.bat or *.exe)", *txtCMD_); });
    auto* cmdTestCMD = NewButton({"cmdTestCMD", "Tr&y", kTryHelp, "Try the failure command"}, this, [this] {
        TestCommand("The program you wish to launch when the Server can not be reached is '", *txtCMD_);
    });
    inputs_.AddRow(down, &EntryFields::strCMD, {cmdChooseCMD, cmdTestCMD});
    auto* ckRestart =
        NewMark({"ckRestart", "Re&start this computer", "Puts in the command that shuts down and restarts this computer."}, this);
    connect(ckRestart, &QCheckBox::toggled, this, [this](bool restart) { RestartToggled(restart); });
    down.addRow(QString(), ckRestart);

    QFormLayout& up = AddGroup(page, "When the server comes back up");
    auto* txtCMDUP = inputs_.AddBox(&EntryFields::strCMDUP, this);
    auto* cmdChooseCMDUP =
        NewButton({"cmdChooseCMDUP", "Bro&wse...", kChooseHelp, "Browse for the up command"}, this,
                  [this, txtCMDUP] { ChooseCommand("Choose a Server UP command (*.bat or *.exe)", *txtCMDUP); });
    auto* cmdTestCMDUP = NewButton({"cmdTestCMDUP", "T&ry", kTryHelp, "Try the up command"}, this, [this, txtCMDUP] {
        TestCommand("The program you wish to launch when the Server comes back up is '", *txtCMDUP);
    });
    inputs_.AddRow(up, &EntryFields::strCMDUP, {cmdChooseCMDUP, cmdTestCMDUP});
    page.addStretch();
}

}  // namespace korvane
