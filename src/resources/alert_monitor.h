// What the four resource monitors share: their address and its default, the settings on the screen and in the file, the mails and
// the test mail. A window shows what its monitor says and passes on what the operator does.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/files.h"
#include "platform/operator.h"
#include "platform/timer.h"
#include "resources/alert_mails.h"
#include "resources/alert_settings.h"
#include "store/settings_collection.h"

namespace korvane {

/// What they work with; all of it outlives them.
struct MonitorPorts {
    std::string dir;  ///< of the settings files and the database
    const Clock& clock;
    Timers& timers;
    Store& store;
    Operator& person;
    Files& files;
    const SettingsCollection& settings;
    AlertMails& mails;
    Log& log;
};

/// The texts and ways in which they differ.
struct MonitorManner {
    std::string subject;
    std::string testSent;
    bool refusalDisablesTest = false;  ///< a test with an address that is none leaves the command disabled until Shown
};

/// A monitor may go at any time, also while its mail is under way.
class AlertMonitor {
public:
    virtual ~AlertMonitor() = default;

    // What is on the screen, which the alerts go by, saved or not. The window writes here what the operator types.
    std::string txtEmail;
    bool ckDisable = false;

    /// Something that the window shows has changed: figures, settings, or whether the test command is enabled. From within it the
    /// monitor must not be destroyed.
    void OnChanged(std::function<void()> changed) { changed_ = std::move(changed); }
    /// The address has to be corrected: the box should get the focus.
    void OnFocusEmail(std::function<void()> focus) { focusEmail_ = std::move(focus); }

    /// The operator has opened the window anew.
    void Shown();

    /// Each time the window becomes active: the settings of the file take the place of what is on the screen.
    virtual void LoadData() = 0;

    /// Saves what is on the screen.
    void cmdSave();

    void cmdTest();
    bool TestEnabled() const { return !testRefused_ && !testUnderWay_; }

protected:
    AlertMonitor(const MonitorPorts& ports, MonitorManner manner);
    AlertMonitor(const AlertMonitor&) = delete;
    AlertMonitor& operator=(const AlertMonitor&) = delete;

    /// Starts or stops the timer that the disable mark is meant for.
    virtual void Switch(bool on) = 0;
    /// Writes the file; address and mark have been set.
    virtual void UpdateFile() = 0;
    virtual std::string TestBody() const = 0;

    void Load(AlertSettings& file);
    void Fill(AlertSettings& file) const;

    void SendAlert(const std::string& body);
    void Changed() const;
    void ShowError(const std::string& text) const;

    /// For what is called later and must not find a monitor that has gone.
    std::function<void()> IfAlive(std::function<void()> deed) const;

    MonitorPorts ports_;

private:
    Notification MailTo(const std::string& address, const std::string& body) const;
    std::string DefaultAddress() const;
    bool RefusedTest();

    MonitorManner manner_;
    std::function<void()> changed_;
    std::function<void()> focusEmail_;
    bool testRefused_ = false;
    bool testUnderWay_ = false;
    bool noAddressLogged_ = false;  ///< since the settings were loaded
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

/// The level as a 16-bit whole number; 0 when it can't be read as one.
int LevelOf(const std::string& text);

}  // namespace korvane
