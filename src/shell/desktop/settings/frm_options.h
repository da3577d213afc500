// Room `settings`: the settings dialog and the one of the shared addresses.
//
// The dialog of the global settings: pages of inputs, a status line that explains them, and commands that try out what they say
// or reset what was gathered.
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

/// What the dialog commands and does not do itself. All of it must be set. Each may wait through the event pump and show
/// messages, and may see the dialog gone when it returns.
struct OptionsCommands {
    std::function<std::string()> proxyServer;  ///< that the desktop uses, such as "host:80"; blank: none
    std::function<void(const std::string& path)> PlaySound;
    std::function<bool()> IsWindowsNT;  ///< whether a service manager is there
    /// The marks after they were clicked: `checked` is what they show. Return what they are to show.
    std::function<bool(bool checked)> chkService_Click;
    std::function<bool(bool checked)> chkStartup_Click;
    std::function<bool()> IsInStartupGroup;
    std::function<void(const std::function<void()>& answered)> TestShutDown;
    std::function<void()> CheckVersion;
    std::function<void(QWidget* over)> GlobalEmail;
    std::function<void()> HelpService;
    std::function<void()> HelpShutDown;
};

/// What a file dialog is opened with.
struct FileQuestion {
    QString title;
    QString name;
    QString extension;  ///< of a name that is typed without one; blank: none
    QString filter;
};

/// Made with open(); deleted when it is closed. It closes after a save and on cancel, and may do so while a command of its own
/// waits: that command then ends without a word.
class frmOptions : public TabbedDialog {
public:
    frmOptions(const Desk& desk, OptionsCommands commands, QWidget* parent);

    /// The tray's commands install and remove too while this is open.
    void SetStartMarks(bool mnuTrayNTService, bool mnuTrayStartup);

    /// Asks for a line of text, as AskText does. Tests put their own in.
    AskText askText;
    /// Asks for a file and calls back with its path; never calls back when the operator thinks better of it. Tests put their own
    /// in.
    std::function<void(const FileQuestion& question, std::function<void(const QString& path)> chosen)> askForFile;

private:
    // frm_options.cpp
    void BuildPages();
    void Form_Load();
    void LoadService();
    void LoadMailServer();
    void LoadProxy();
    void ShowMark(QCheckBox& mark, bool checked);
    OptionsFields Read() const;
    void cmdOk_Click();
    void Refuse(QLineEdit& box, const std::string& message);

    // frm_options_typing.cpp
    void ConnectTyping();
    void ProxyNameChanged();
    void ShowChoices(bool reboot);
    void RebootToggled(bool reboot);

    // frm_options_commands.cpp
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
    bool loading_ = true;        ///< it fills itself, and the reactions to changes do nothing
    bool proxyChanged_ = false;  ///< the name of the proxy, since loading
    bool saving_ = false;
    bool mailing_ = false;  ///< a test mail is under way

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
