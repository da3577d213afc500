// The main window's dialogs except the editor of an entry: the settings, the first-run setup, and those of the help menu. Only
// one of each can be open.
#pragma once

#include <QDialog>
#include <QPointer>
#include <functional>
#include <map>
#include <string>

#include "shell/desktop/settings/frm_options.h"
#include "shell/desktop/small/frm_help.h"
#include "shell/desktop/small/frm_manual.h"
#include "shell/options/resource_emails.h"
#include "shell/run/desk.h"
#include "shell/setup/first_run.h"

namespace korvane {

class MonitorForms {
public:
    /// `owner` is the main window; it must outlive this. `loadMonitors` makes the resource monitors read their settings files
    /// again.
    MonitorForms(Desk desk, QWidget& owner, std::function<void()> loadMonitors);

    void ShowOptions();
    /// Passed on to the settings dialog, if it is open.
    void SetStartMarks(bool mnuTrayNTService, bool mnuTrayStartup);
    void ShowAbout();
    void ShowManual() { manual_.Show(); }
    void ShowFeedback();
    void ShowTellFriend();

    /// Asks the three questions and applies the answers; waits through the event pump until setup is complete.
    void SetUpForTheFirstTime();

private:
    /// Brings the form to the front. Returns it if it was made for that, otherwise null.
    template <class Form, class... More>
    Form* Open(const std::string& name, More... more);
    QWidget* Parent() const;

    Desk desk_;
    QWidget& owner_;
    HelpViewer help_;
    ManualViewer manual_;
    ResourceEmailFiles emails_;
    std::map<std::string, QPointer<QDialog>> open_;
};

}  // namespace korvane
