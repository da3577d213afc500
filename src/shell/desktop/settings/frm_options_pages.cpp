// The pages of the settings dialog.
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/desktop/settings/frm_global_email.h"
#include "shell/desktop/settings/frm_options.h"

namespace korvane {

void frmOptions::AddPages() {
    AddMonitoringPage();
    AddMailPage();
    AddReportsPage();
    AddRestartPage();
    AddProxyPage();
    AddServicePage();
    AddResetsPage();
    AddSafeguardsPage();
    // Wide enough for all tabs without scroll buttons, if the screen is.
    const int room = screen()->availableGeometry().width() - 4 * fontMetrics().height();
    tabPages_->setMinimumWidth(std::min(tabPages_->tabBar()->sizeHint().width(), room));
}

void frmOptions::AddMonitoringPage() {
    QVBoxLayout& page = AddPage("Monitoring", "When monitoring begins, and how soon a server that failed is tried again.");
    QFormLayout& form = AddForm(page);
    for (const auto field : {&OptionsFields::Begin, &OptionsFields::GlobalRetryDuration, &OptionsFields::SuccessLT})
        inputs_.AddRow(form, field);
    page.addStretch();
}

void frmOptions::AddMailPage() {
    QVBoxLayout& page = AddPage("E-Mail", "The mail servers through which you are told when a server goes down.");
    auto* servers = new QHBoxLayout;
    page.addLayout(servers);
    QFormLayout& primary = AddGroup(*servers, "Primary SMTP server");
    for (const auto field : {&OptionsFields::Server, &OptionsFields::SMTPUser1, &OptionsFields::SMTPPass1,
                             &OptionsFields::SMTPPopHost1, &OptionsFields::SMTPSecurity1, &OptionsFields::SMTPPort1})
        inputs_.AddRow(primary, field);
    QFormLayout& backup = AddGroup(*servers, "Backup SMTP server");
    for (const auto field : {&OptionsFields::ServerBackup, &OptionsFields::SMTPUser2, &OptionsFields::SMTPPass2,
                             &OptionsFields::SMTPPopHost2, &OptionsFields::SMTPSecurity2, &OptionsFields::SMTPPort2})
        inputs_.AddRow(backup, field);

    auto* ckShowPasswords = NewMark({"ckShowPasswords", "S&how the passwords", "Shows both passwords while it is marked."}, this);
    const auto show = [this](bool shown) {
        for (const auto field : {&OptionsFields::SMTPPass1, &OptionsFields::SMTPPass2})
            inputs_.Box(field)->setEchoMode(shown ? QLineEdit::Normal : QLineEdit::Password);
    };
    show(false);
    connect(ckShowPasswords, &QCheckBox::toggled, this, show);
    page.addWidget(ckShowPasswords);
    inputs_.AddRow(AddForm(page), &OptionsFields::Zone);
    page.addStretch();
    auto* cmdTestEmail = NewButton(
        {"cmdTestEmail", "Send Test &Mail...", "Sends a test mail through both mail servers with what is on this page."}, this,
        [this] { cmdTestEmail_Click(); });
    auto* cmdGlobalEmail =
        NewButton({"cmdGlobalEmail", "&Global E-Mail Settings...", "Edits the addresses that all monitors and servers share."},
                  this, [this] { (new frmGlobalEmail(desk_, emails_, this))->open(); });
    auto* cmdFindOut = NewButton({"cmdFindOut", "&Find Out", "Tries which encryption both mail servers offer, and fills it in."},
                                 this, [this] { cmdFindOut_Click(); });
    page.addLayout(LeftRow({cmdTestEmail, cmdGlobalEmail, cmdFindOut}));
}

void frmOptions::AddReportsPage() {
    QVBoxLayout& page = AddPage("Reports and Sound", "Where the reports go, and what you hear when a server fails.");
    QFormLayout& reports = AddGroup(page, "Reports");
    inputs_.AddBox(&OptionsFields::ReportPath, this);
    auto* cmdReportPath =
        NewButton({"cmdReportPath", "&Browse...", "Looks for the folder on your disk.", "Browse for the report folder"}, this,
                  [this] { ChooseReportPath(); });
    inputs_.AddRow(reports, &OptionsFields::ReportPath, {cmdReportPath});
    AddAlert(
        AddGroup(page, "Yellow alert"), &OptionsFields::bYellowAlert, &OptionsFields::YellowAlertWav,
        {"cmdYellowAlertWav", "B&rowse...", "Looks for the wave file on your disk.", "Browse for the sound of the yellow alert"},
        {"cmdTestYellowAlert", "&Play", "Plays the sound now.", "Play the sound of the yellow alert"});
    AddAlert(AddGroup(page, "Red alert"), &OptionsFields::bRedAlert, &OptionsFields::RedAlertWav,
             {"cmdRedAlertWav", "Br&owse...", "Looks for the wave file on your disk.", "Browse for the sound of the red alert"},
             {"cmdTestRedAlert", "P&lay", "Plays the sound now.", "Play the sound of the red alert"});
    AddGroup(page, "Desktop").addRow(inputs_.AddMark(&OptionsFields::DesktopNotes, this));
    page.addWidget(inputs_.AddMark(&OptionsFields::Figures, this));
    page.addStretch();
}

void frmOptions::AddAlert(QFormLayout& form, bool OptionsFields::*mark, std::string OptionsFields::*sound, const Control& browse,
                          const Control& play) {
    form.addRow(inputs_.AddMark(mark, this));
    QLineEdit* box = inputs_.AddBox(sound, this);
    auto* cmdBrowse = NewButton(browse, this, [this, box] { ChooseSound(*box); });
    auto* cmdPlay = NewButton(play, this, [this, box] { desk_.sound.PlaySound(S(box->text())); });
    inputs_.AddRow(form, sound, {cmdBrowse, cmdPlay});
}

void frmOptions::AddRestartPage() {
    QVBoxLayout& page = AddPage(
        "Restart", "Whether this computer is to be restarted when servers fail.",
        "What restarts this computer is the command of a server entry. This mark tells your mails and reports that it does.");
    ckReboot_ = inputs_.AddMark(&OptionsFields::Reboot, this);
    page.addWidget(ckReboot_);
    const auto addChoice = [&](const Control& control) {
        auto* choice = new QRadioButton(control.label, this);
        Describe(*choice, control);
        auto* indented = NewRow({choice});
        indented->setContentsMargins(fontMetrics().height() * 3 / 2, 0, 0, 0);
        page.addLayout(indented);
        return choice;
    };
    optRebootAny_ = addChoice({"optRebootAny", "When &any server fails"});
    optRebootAll_ = addChoice({"optRebootAll", "When a&ll servers fail"});
    page.addStretch();
    auto* cmdTestShutDown = NewButton({"cmdTestShutDown", "&Test the Restart...",
                                       "Restarts this computer after a question, so that you know that it can be done."},
                                      this, [this] { cmdTestShutDown_Click(); });
    cmdTestShutDown->setAutoDefault(false);
    auto* cmdHelpShutDown = NewButton(
        {"cmdHelpShutDown", "&Help", "Opens the help on restarting computers in your browser.", "Help on restarting computers"},
        this, [this] { desk_.pages.Show(WebPage::ShutdownHelp); });
    page.addLayout(LeftRow({cmdTestShutDown, cmdHelpShutDown}));
}

void frmOptions::AddProxyPage() {
    QVBoxLayout& page = AddPage("Proxy", "The proxy server through which web pages are checked, where this network has one.",
                                "Leave both blank where this network needs no proxy server.");
    QFormLayout& form = AddForm(page);
    inputs_.AddRow(form, &OptionsFields::ProxyName);
    KeepShort(*inputs_.AddRow(form, &OptionsFields::ProxyPort));
    page.addSpacing(fontMetrics().height() / 2);
    cmdSetProxy_ = NewButton({"cmdSetProxy", "&Set Proxy", "Fills in the proxy server that your desktop uses."}, this,
                             [this] { cmdSetProxy_Click(); });
    lblProxy_ = NewExplanation("", this);
    lblProxy_->setObjectName("lblProxy");
    lblProxy_->setTextFormat(Qt::PlainText);
    auto* row = NewRow({cmdSetProxy_, lblProxy_});
    row->setAlignment(cmdSetProxy_, Qt::AlignTop);
    row->setStretch(1, 1);
    page.addLayout(row);
    page.addStretch();
}

void frmOptions::AddServicePage() {
    QVBoxLayout& page = AddPage("Service", "How Korvane starts by itself.");
    servicePage_ = page.parentWidget();
    lblServiceName_ = NewLabel("lblServiceName", "", this);
    lblServiceName_->setTextFormat(Qt::PlainText);
    lblServiceName_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    AddForm(page).addRow("Service name:", lblServiceName_);
    page.addSpacing(fontMetrics().height() / 2);
    chkService_ = inputs_.AddMark(&OptionsFields::Service, this);
    page.addWidget(chkService_);
    chkStartup_ = NewMark(
        {"chkStartup", "&Add Korvane to the Startup Group", "Starts Korvane on your desktop each time you log on."}, this);
    page.addWidget(chkStartup_);
    page.addSpacing(fontMetrics().height() / 2);
    page.addWidget(NewExplanation("A change here takes effect at once and is not undone by Cancel.", this));
    page.addStretch();
    page.addWidget(NewButton({"cmdHelpService", "&Help", "Opens the help on services in your browser.", "Help on services"}, this,
                             [this] { desk_.pages.Show(WebPage::ServiceHelp); }),
                   0, Qt::AlignLeft);
}

void frmOptions::AddResetsPage() {
    QVBoxLayout& page = AddPage("Resets", "Begins statistics, failures and response times of all servers anew.",
                                "Each of these takes effect at once, for all servers, and is not undone by Cancel.");
    const auto add = [&](const Control& control, OptionsReset reset, const QString& what) {
        auto* button = NewButton(control, this, [desk = desk_, reset] { ResetForAll(desk, reset); });
        button->setAutoDefault(false);  // Return means OK, even if the focus is on a command that cannot be undone
        page.addWidget(button, 0, Qt::AlignLeft);
        page.addWidget(NewExplanation(what, this));
        page.addSpacing(fontMetrics().height());
    };
    add({"cmdResetSummary", "Reset &Summary...",
         "Begins the statistics of all servers anew and deletes their failures. The graphs stay."},
        OptionsReset::Summary, "Response time averages, counts, up-time and failure records.");
    add({"cmdDeleteResponse", "Delete &Response Data...",
         "Deletes the hourly and daily response times of all servers, from which the graphs are made."},
        OptionsReset::ResponseData, "The hourly and daily graphs.");
    add({"cmdDeleteAll", "Delete &All...", "Deletes statistics, failures and response times of all servers."}, OptionsReset::All,
        "Both of these.");
    page.addStretch();
}

void frmOptions::AddSafeguardsPage() {
    QVBoxLayout& page = AddPage("Safeguards", "Protections that you can switch on. Each is off until you do.");
    safeguards_.AddTo(page);
    QFormLayout& form = AddGroup(page, "Last checks");
    form.addRow(inputs_.AddMark(&OptionsFields::KeepPhases, this));
    form.addRow("", NewExplanation(HelpOn(*inputs_.AddRow(form, &OptionsFields::CertWarnDays)), this));
    page.addStretch();
    LeaveHeightToOthers(page);
}

}  // namespace korvane
