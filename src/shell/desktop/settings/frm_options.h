// Room `settings`: the settings dialog and the dialog of the shared addresses.
//
// The dialog of the global settings: pages of inputs, a status line that explains them, and commands that test them or reset
// collected data.
#pragma once

#include <string>

#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/tabbed_dialog.h"
#include "shell/options/options_commands.h"
#include "shell/run/desk.h"

class QRadioButton;

namespace korvane {

class ResourceEmailFiles;

/// Shown with open(); deleted when it is closed. It closes after a save and on cancel, even while a command of its own waits:
/// that command then ends without a message.
class frmOptions : public TabbedDialog {
public:
    /// `emails` are those of the resource monitors; they must outlive this.
    frmOptions(const Desk& desk, ResourceEmailFiles& emails, QWidget* parent);

    /// The tray's commands can also install and remove while this is open.
    void SetStartMarks(bool mnuTrayNTService, bool mnuTrayStartup);

private:
    // Implemented in frm_options_pages.cpp.
    void AddPages();
    void AddMonitoringPage();
    void AddMailPage();
    void AddReportsPage();
    void AddAlert(QFormLayout& form, bool OptionsFields::*mark, std::string OptionsFields::*sound, const Control& browse,
                  const Control& play);
    void AddRestartPage();
    void AddProxyPage();
    void AddServicePage();
    void AddResetsPage();

    // Implemented in frm_options.cpp.
    void Form_Load();
    void LoadService();
    void LoadMailServer();
    void LoadProxy();
    void ShowMark(QCheckBox& mark, bool checked);
    OptionsFields Read() const;
    void cmdOk_Click();
    void ConnectTyping();
    void ProxyNameChanged();
    void ShowChoices(bool reboot);
    void RebootToggled(bool reboot);

    // Implemented in frm_options_commands.cpp.
    void ConnectMark(QCheckBox* mark, void (frmOptions::*changed)(bool checked));
    void cmdTestEmail_Click();
    void cmdSetProxy_Click();
    void chkService_Click(bool checked);
    void chkStartup_Click(bool checked);
    void cmdTestShutDown_Click();
    void cmdCheckVersion_Click();
    void ChooseSound(QLineEdit& box);
    void ChooseReportPath();

    const Desk desk_;
    ResourceEmailFiles& emails_;
    std::string proxyServer_;  ///< as detected
    std::string serviceName_;
    bool proxyChanged_ = false;  ///< the proxy's name, since loading
    bool saving_ = false;
    bool mailing_ = false;  ///< a test mail is being sent

    FormInputs<OptionsFields> inputs_;
    QCheckBox* ckReboot_ = nullptr;
    QRadioButton* optRebootAny_ = nullptr;
    QRadioButton* optRebootAll_ = nullptr;
    QPushButton* cmdSetProxy_ = nullptr;
    QLabel* lblProxy_ = nullptr;
    QWidget* servicePage_ = nullptr;
    QLabel* lblServiceName_ = nullptr;
    QCheckBox* chkService_ = nullptr;
    QCheckBox* chkStartup_ = nullptr;
    QPushButton* cmdCheckVersion_ = nullptr;
};

}  // namespace korvane
