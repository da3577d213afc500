// Room `service`: running as a service, and starting with the desktop.
//
// Makes the program start automatically, as a service of the system's manager or from the desktop's startup group: handles the
// manager's requests to a running service, and the operator's choices in the tray's menu and the settings dialog.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "engine/cycle_state.h"
#include "engine/stop_start.h"
#include "shell/run/ports.h"
#include "shell/service/service_texts.h"
#include "store/alert_path.h"
#include "store/settings.h"

namespace korvane {

class ServiceMode {
public:
    struct Ports {
        const SystemPorts& system;
        Operator& person;
        MonitorWindow& window;
        StatusLog& status;
        SettingsCollection& collection;
        Settings& settings;
        const CycleState& state;
        StopStart& stopStart;
        const AlertPath& alertPath;
    };

    ServiceMode(const Ports& ports, const RunOptions& options) : ports_(ports), options_(options) {}

    // The life of this process.

    /// Connects this process to the manager that started it and reports the result. The first success is the Start event. On a
    /// desktop the connection fails; that is the normal desktop case.
    void StartService();
    bool RunningAsService() const { return runningAsService_; }
    /// Called when start-up is complete: notifies the manager, and handles the requests that came meanwhile.
    void Loaded();
    /// Called when the alert path may have been proven: the manager's status says when, after the last text.
    void FollowAlertPath();
    /// A program that ends starts the service that it has installed, which had to wait for the home. Must be called last, when
    /// everything is saved; waits 3 s at most.
    void HandOver();

    // The events of a running service, from the pump.

    /// `frozen`: called during work that must not be interrupted by events. The manager is then not asked for the reason of the
    /// stop.
    void Stop(bool frozen = false);
    void Pause() { SetMonitoring(false); }
    void Continue() { SetMonitoring(true); }

    // The tray's commands, and queries for start-up and the settings dialog.

    /// The two check marks of the tray's menu.
    bool mnuTrayNTService() const { return mnuTrayNTService_; }
    bool mnuTrayStartup() const { return mnuTrayStartup_; }
    /// Sets both from the settings and the startup group.
    void LoadMarks();
    void CheckTrayNTService();
    void CheckTrayStartup();

    bool IsWindowsNT() const { return ports_.system.serviceManager.IsPresent(); }
    /// True for systems that have a startup group and no services.
    bool IsWindows95() const { return !IsWindowsNT(); }
    bool IsInStartupGroup() const;

    /// Both run until all messages are closed; a second click meanwhile does nothing.
    void mnuTrayNTService_Click();
    void mnuTrayStartup_Click();

    /// Called after the dialog's check boxes were clicked: `checked` is their new state. Return the state that they must show.
    bool chkService_Click(bool checked);
    bool chkStartup_Click(bool checked);

    /// Waits for the manager through the event pump. Returns true on success; the manager's words also go to the status.
    bool InstallService(const std::string& name, bool install);
    /// Called after the settings have changed: updates the report folder of an installed service.
    void FollowSettings();
    /// Returns whether it succeeded, and reports the reason if not.
    bool AddOrRemoveGroupShortCut(bool add);
    /// Asks whether to remove the shortcut, if there is one.
    void WarnIfInStartupGroup();

    struct ShortCut {
        std::string file;
        std::string directory;  ///< of the executable, with a slash at its end
    };
    ShortCut getShortCutFileName(const std::string& serviceName) const;

private:
    std::string ServiceName() const;
    ServiceProgram WhatRuns() const;
    bool ServiceIsSet() const;
    void WatchOverLife();
    void SetMonitoring(bool on);
    void Tell(const std::string& text);
    void TellManager();
    std::string Named(const std::string& text) const;
    std::string WithWords(const std::string& text) const;
    void Show(const std::string& text);
    void ShowMarks();
    void OneAtATime(const std::function<void()>& click);
    bool ChangeService(const service_text::Words& words, bool install);
    void ChangeStartup(const service_text::Words& words, bool add);

    Ports ports_;
    const RunOptions& options_;
    std::unique_ptr<Timer> TimerAlive_;
    std::string told_;  ///< the last text to the manager, and then what it says about the alert path
    std::string path_;
    ManagerAnswer answer_;      ///< to the last installation or removal
    std::string startAtEnd_;    ///< the service that was installed here and waits for the home
    std::optional<bool> wish_;  ///< of the manager, before start-up is complete: whether to monitor
    bool runningAsService_ = false;
    bool loaded_ = false;
    bool busy_ = false;
    bool mnuTrayNTService_ = false;
    bool mnuTrayStartup_ = false;
};

}  // namespace korvane
