// Room `settings`: the settings dialog and the dialog of the shared addresses.
//
// The dialog of the global settings: pages of inputs, a status line that explains them, and commands that test them or reset
// collected data.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "shell/desktop/settings/frm_options_pages.h"
#include "shell/desktop/toolkit/tabbed_dialog.h"
#include "shell/options/options_commands.h"
#include "shell/run/desk.h"

class QPushButton;

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

/// The parameters of a file dialog.
struct FileQuestion {
    QString title;
    QString name;
    QString extension;  ///< added to a name that is typed without one; empty: none
    QString filter;
};

/// Shown with open(); deleted when it is closed. It closes after a save and on cancel, even while a command of its own waits:
/// that command then ends without a message.
class frmOptions : public TabbedDialog {
public:
    frmOptions(const Desk& desk, OptionsCommands commands, QWidget* parent);

    /// The tray's commands can also install and remove while this is open.
    void SetStartMarks(bool mnuTrayNTService, bool mnuTrayStartup);

    /// Asks for a line of text, as AskText does. Tests replace it.
    AskText askText;
    /// Asks for a file and calls back with its path; does not call back when the operator cancels. Tests replace it.
    std::function<void(const FileQuestion& question, std::function<void(const QString& path)> chosen)> askForFile;

private:
    // Implemented in frm_options.cpp.
    void BuildPages();
    void Form_Load();
    void LoadService();
    void LoadMailServer();
    void LoadProxy();
    void ShowMark(QCheckBox& mark, bool checked);
    OptionsFields Read() const;
    void cmdOk_Click();
    void Refuse(QLineEdit& box, const std::string& message);

    // Implemented in frm_options_typing.cpp.
    void ConnectTyping();
    void ProxyNameChanged();
    void ShowChoices(bool reboot);
    void RebootToggled(bool reboot);

    // Implemented in frm_options_commands.cpp.
    void ConnectCommands();
    void ConnectMark(QCheckBox* mark, void (frmOptions::*changed)(bool checked));
    void cmdTestEmail_Click();
    void cmdSetProxy_Click();
    void chkService_Click(bool checked);
    void chkStartup_Click(bool checked);
    void cmdTestShutDown_Click();
    void cmdCheckVersion_Click();
    void ChooseSound(QLineEdit& box);
    void ChooseReportPath();
    void AskForFile(const FileQuestion& question, const std::function<void(const QString& path)>& chosen);

    const Desk desk_;
    const OptionsCommands commands_;
    std::string proxyServer_;  ///< as detected
    std::string serviceName_;
    bool loading_ = true;        ///< the dialog is being filled, and the handlers of changes do nothing
    bool proxyChanged_ = false;  ///< the proxy's name, since loading
    bool saving_ = false;
    bool mailing_ = false;  ///< a test mail is being sent

    OptionsInputs inputs_;
    OptionsMonitoringPage* monitoring_ = nullptr;
    OptionsMailPage* mail_ = nullptr;
    OptionsReportsPage* reports_ = nullptr;
    OptionsRestartPage* restart_ = nullptr;
    OptionsProxyPage* proxy_ = nullptr;
    OptionsServicePage* service_ = nullptr;
    OptionsResetsPage* resets_ = nullptr;
    QPushButton* cmdCheckVersion_ = nullptr;
};

}  // namespace korvane
