// The common part of the four resource monitors: their address and its default, the settings on the screen and in the file, the
// mails and the test mail. A window shows the state of its monitor and passes on the operator's actions.
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

/// What the monitors use; all of it must outlive them.
struct MonitorPorts {
    std::string dir;  ///< folder of the settings files and the database
    const Clock& clock;
    Timers& timers;
    Store& store;
    Operator& person;
    Files& files;
    const SettingsCollection& settings;
    AlertMails& mails;
    Log& log;
};

/// The texts and the behaviour in which they differ.
struct MonitorManner {
    std::string subject;
    std::string testSent;
    bool refusalDisablesTest = false;  ///< a test with an invalid address leaves the command disabled until Shown
};

/// A monitor may be destroyed at any time, even while its mail is being sent.
class AlertMonitor {
public:
    virtual ~AlertMonitor() = default;

    // The values on the screen, which the alerts use, saved or not. The window writes the operator's input here.
    std::string txtEmail;
    bool ckDisable = false;

    /// Called when something that the window shows has changed: figures, settings, or whether the test command is enabled. The
    /// callback must not destroy the monitor.
    void OnChanged(std::function<void()> changed) { changed_ = std::move(changed); }
    /// Called when the address must be corrected: its box should get the focus.
    void OnFocusEmail(std::function<void()> focus) { focusEmail_ = std::move(focus); }

    /// Called when the operator has opened the window again.
    void Shown();

    /// Called each time the window becomes active: the settings in the file replace those on the screen.
    virtual void LoadData() = 0;

    /// Saves the values on the screen.
    void cmdSave();

    void cmdTest();
    bool TestEnabled() const { return !testRefused_ && !testUnderWay_; }

protected:
    AlertMonitor(const MonitorPorts& ports, MonitorManner manner);
    AlertMonitor(const AlertMonitor&) = delete;
    AlertMonitor& operator=(const AlertMonitor&) = delete;

    /// Starts or stops the timer controlled by the disable mark.
    virtual void Switch(bool on) = 0;
    /// Writes the file; address and mark are already set.
    virtual void UpdateFile() = 0;
    virtual std::string TestBody() const = 0;

    void Load(AlertSettings& file);
    void Fill(AlertSettings& file) const;

    void SendAlert(const std::string& body);
    void Changed() const;
    void ShowError(const std::string& text) const;

    /// Wraps a deed that is called later, so that it does nothing when the monitor no longer exists.
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

/// Returns the level as a 16-bit whole number; 0 when it is not one.
int LevelOf(const std::string& text);

}  // namespace korvane
