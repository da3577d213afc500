// Room `settings`: the settings dialog and the dialog of the shared addresses.
//
// The dialog of the global settings: pages of inputs, a status line that explains them, and commands that test them or reset
// collected data.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/tabbed_dialog.h"
#include "shell/options/options_commands.h"
#include "shell/run/desk.h"

class QRadioButton;

namespace korvane {

/// Commands of the dialog that are implemented elsewhere. All of it must be set. Each may wait through the event pump and show
/// messages, and the dialog may be gone when it returns.
struct OptionsCommands {
    std::function<std::string()> proxyServer;  ///< the desktop's proxy, such as "host:80"; empty: none
    std::function<void(const std::string& path)> PlaySound;
    std::function<bool()> IsWindowsNT;  ///< whether there is a service manager
    /// Called after the marks were clicked: `checked` is their new state. Return the state that they must show.
    std::function<bool(bool checked)> chkService_Click;
    std::function<bool(bool checked)> chkStartup_Click;
    std::function<bool()> IsInStartupGroup;
    std::function<void(const std::function<void()>& answered)> TestShutDown;
    std::function<void()> CheckVersion;
    std::function<void(QWidget* over)> GlobalEmail;
    std::function<void()> HelpService;
    std::function<void()> HelpShutDown;
};

/// Shown with open(); deleted when it is closed. It closes after a save and on cancel, even while a command of its own waits:
/// that command then ends without a message.
class frmOptions : public TabbedDialog {
public:
    frmOptions(const Desk& desk, OptionsCommands commands, QWidget* parent);

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
    const OptionsCommands commands_;
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
