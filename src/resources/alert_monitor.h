// The common part of the four resource monitors: their address and its default, the settings on the screen and in the file, the
// mails and the test mail. A window shows the state of its monitor and passes on the operator's actions.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/files.h"
#include "platform/operator.h"
#include "platform/timer.h"
#include "resources/alert_mails.h"
#include "resources/alert_settings.h"
#include "store/safeguards.h"
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
    Safeguards& safeguards;
    bool ofMachineWatch = false;  ///< without a window: it looks from the start, and follows its file as that changes
};

/// The safeguard with which only the monitors of MachineWatch send alerts, so that nothing is alerted twice.
constexpr std::string_view kWatchMachine = "WatchMachine";

/// A monitor may be destroyed at any time, even while its mail is being sent.
class AlertMonitor {
public:
    virtual ~AlertMonitor() = default;

    // The values on the screen, which the alerts use, saved or not. The window writes the operator's input here. A monitor uses
    // those that its settings have.
    std::string txtEmail;
    bool ckDisable = false;
    std::string cboAlert;     ///< in percent; empty: no alert
    std::string cboDuration;  ///< in minutes; empty: no alert
    bool ckRestart = false;   ///< send a mail when a service runs again after a failure

    /// Called when something that the window shows has changed: figures, settings, or whether the test command is enabled. The
    /// callback must not destroy the monitor.
    void OnChanged(std::function<void()> changed) { changed_ = std::move(changed); }
    /// Called when the address must be corrected: its box should get the focus.
    void OnFocusEmail(std::function<void()> focus) { focusEmail_ = std::move(focus); }

    /// Called when the operator has opened the window again.
    void Shown();

    /// Called each time the window becomes active: the settings in the file replace those on the screen.
    void LoadData();

    /// Saves the values on the screen.
    void cmdSave();

    void cmdTest();
    bool TestEnabled() const { return !testRefused_ && !testUnderWay_; }

protected:
    /// The timer is off at first. `kind` must outlive this.
    AlertMonitor(const MonitorPorts& ports, const MonitorKind& kind);
    AlertMonitor(const AlertMonitor&) = delete;
    AlertMonitor& operator=(const AlertMonitor&) = delete;

    /// Called at each tick of the timer.
    virtual void Look() = 0;
    /// Returns whether the settings ask for any alert.
    virtual bool MayAlert() const { return !cboAlert.empty(); }
    virtual std::string TestBody() const = 0;
    /// Receives the settings after the values on the screen have been set.
    virtual void Loaded(const AlertSettings& /*settings*/) {}
    /// Returns the services to save.
    virtual std::vector<std::string> WatchedServices() { return {}; }

    void SendAlert(const std::string& body);
    /// Sends an alert after eleven calls in a row with `due`.
    void AlertAtEleventhLook(bool due, const std::string& body);
    void Changed() const;
    void ShowError(const std::string& text) const;

    /// Wraps a deed that is called later, so that it does nothing when the monitor no longer exists.
    std::function<void()> IfAlive(std::function<void()> deed) const;

    MonitorPorts ports_;
    const std::unique_ptr<Timer> timer_;

private:
    void Tick();
    void FollowFile();
    void Switch();
    Notification MailTo(const std::string& address, const std::string& body) const;
    std::string DefaultAddress() const;
    bool RefusedTest();

    const MonitorKind& kind_;
    std::function<void()> changed_;
    std::function<void()> focusEmail_;
    bool testRefused_ = false;
    bool testUnderWay_ = false;
    bool noAddressLogged_ = false;  ///< since the settings were loaded
    int looksDue_ = 0;              ///< in a row
    std::optional<FileIdentity> loadedFile_;
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace korvane
