// Room `service`: running as a service, and starting with the desktop.
//
// How the program comes back by itself: as a service of the system's manager, or from the desktop's startup group. What the
// manager asks of a running service, and what the operator sets in the tray's menu and the settings dialog.
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

    /// What the run and its window do for the service. All must be set.
    struct Commands {
        std::function<void()> Save;
        std::function<bool()> isMonitoring;  ///< the caption of the start-stop button is "Stop"
        std::function<void()> cmdStopStart;
        std::function<void()> keepSettingsOnExit;  ///< sets the no-save-on-exit flag
        std::function<void(const std::string& more)> appendToTitle;
        std::function<void()> unload;     ///< ends the program as an exit of its own does
        std::function<void()> showMarks;  ///< the marks below may have changed
    };

    /// What is started. Absolute paths.
    struct Program {
        std::string path;  ///< the executable
        std::string home;
        std::string icon;  ///< of the startup entry; may be blank
    };

    ServiceMode(const Ports& ports, Commands commands, Program program);

    // The life of this process.

    /// Connects this process to the manager that started it and says how that went. The first success is the Start event. On a
    /// desktop it fails, and that is the desktop case.
    void StartService();
    bool RunningAsService() const { return runningAsService_; }
    /// Start-up is through: tells the manager, and does what it asked for meanwhile.
    void Loaded();
    /// A program that ends starts the service that it has installed, which had to wait for the home. Last of all, when everything
    /// is saved; waits 3 s at most.
    void HandOver();

    // The events of a running service, from the pump.

    /// `frozen`: from work that must not meet an event. The manager is then not asked what the stop is for.
    void Stop(bool frozen = false);
    void Pause();
    void Continue();
    /// 4 is the shutdown of the system; other codes are nothing.
    void Control(int code);

    // The tray's commands, and what start-up and the settings dialog ask.

    /// The two check marks of the tray's menu.
    bool mnuTrayNTService() const { return mnuTrayNTService_; }
    bool mnuTrayStartup() const { return mnuTrayStartup_; }
    /// Sets both from the settings and the startup group.
    void LoadMarks();
    void CheckTrayNTService();
    void CheckTrayStartup();

    bool IsWindowsNT() const { return ports_.manager.IsPresent(); }
    /// The family of systems that have a startup group and no services.
    bool IsWindows95() const { return !IsWindowsNT(); }
    bool IsInStartupGroup() const;

    /// Both run until all messages are closed; a second click meanwhile does nothing.
    void mnuTrayNTService_Click();
    void mnuTrayStartup_Click();

    /// The dialog's check boxes, after they were clicked: `checked` is what they show now. Returns what they are to show.
    bool chkService_Click(bool checked);
    bool chkStartup_Click(bool checked);

    /// Waits for the manager through the event pump. True on success; what the manager said goes to the status too.
    bool InstallService(const std::string& name, bool install);
    /// The settings have changed: a service that is installed learns where it publishes reports.
    void FollowSettings();
    /// Says why when it fails. Whether it was done.
    bool AddOrRemoveGroupShortCut(bool add);
    /// Asks whether the shortcut is to go, if there is one.
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
