// Room `service`: running as a service, and starting with the desktop.
//
// Makes the program start automatically, as a service of the system's manager or from the desktop's startup group: handles the
// manager's requests to a running service, and the operator's choices in the tray's menu and the settings dialog.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/autostart.h"
#include "platform/operator.h"
#include "platform/service_manager.h"
#include "platform/timer.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

class ServiceMode {
public:
    struct Ports {
        ServiceManager& manager;
        Autostart& autostart;
        Operator& person;
        Timers& timers;
        StatusLog& status;
        SettingsCollection& collection;
    };

    /// Callbacks to the run and its window. All must be set.
    struct Commands {
        std::function<void()> Save;
        std::function<bool()> isMonitoring;  ///< true if the caption of the start-stop button is "Stop"
        std::function<void()> cmdStopStart;
        std::function<void()> keepSettingsOnExit;  ///< sets the no-save-on-exit flag
        std::function<void(const std::string& more)> appendToTitle;
        std::function<void()> unload;     ///< ends the program like its own exit
        std::function<void()> showMarks;  ///< the marks below may have changed
    };

    /// The program that is started. Absolute paths.
    struct Program {
        std::string path;  ///< the executable
        std::string home;
        std::string icon;  ///< of the startup entry; may be empty
    };

    ServiceMode(const Ports& ports, Commands commands, Program program);

    // The life of this process.

    /// Connects this process to the manager that started it and reports the result. The first success is the Start event. On a
    /// desktop the connection fails; that is the normal desktop case.
    void StartService();
    bool RunningAsService() const { return runningAsService_; }
    /// Called when start-up is complete: notifies the manager, and handles the requests that came meanwhile.
    void Loaded();
    /// A program that ends starts the service that it has installed, which had to wait for the home. Must be called last, when
    /// everything is saved; waits 3 s at most.
    void HandOver();

    // The events of a running service, from the pump.

    /// `frozen`: called during work that must not be interrupted by events. The manager is then not asked for the reason of the
    /// stop.
    void Stop(bool frozen = false);
    void Pause();
    void Continue();
    /// Code 4 is the shutdown of the system; other codes are ignored.
    void Control(int code);

    // The tray's commands, and queries for start-up and the settings dialog.

    /// The two check marks of the tray's menu.
    bool mnuTrayNTService() const { return mnuTrayNTService_; }
    bool mnuTrayStartup() const { return mnuTrayStartup_; }
    /// Sets both from the settings and the startup group.
    void LoadMarks();
    void CheckTrayNTService();
    void CheckTrayStartup();

    bool IsWindowsNT() const { return ports_.manager.IsPresent(); }
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
    enum class Wish { None, Pause, Continue };

    std::string ServiceName() const;
    ServiceProgram WhatRuns() const;
    bool ServiceIsSet() const;
    void SetService(bool on);
    void Start();
    void WatchOverLife();
    void Tell(const std::string& text);
    std::string Named(const std::string& text) const;
    std::string WithWords(const std::string& text) const;
    void Show(const std::string& text);
    void InstallFromTray();
    void RemoveFromTray();
    void InstallFromDialog();
    void RemoveFromDialog();
    void ChangeStartup();
    void ChangeStartupFromDialog(bool add);

    Ports ports_;
    Commands commands_;
    Program program_;
    std::unique_ptr<Timer> TimerAlive_;
    ManagerAnswer answer_;    ///< to the last installation or removal
    std::string startAtEnd_;  ///< the service that was installed here and waits for the home
    Wish wish_ = Wish::None;
    bool runningAsService_ = false;
    bool loaded_ = false;
    bool busy_ = false;
    bool mnuTrayNTService_ = false;
    bool mnuTrayStartup_ = false;
};

}  // namespace korvane
