// The main window as the run uses it: at start-up and for the service. This base class stands for a program without a window.
#pragma once

#include <string>

#include "store/settings.h"

namespace korvane {

/// Returns the title of the main window.
inline std::string MainTitle(const std::string& version) {
    return "Korvane Network Monitoring & Server Monitor v" + version + " by Brellix";
}

class MonitorWindow : public SettingsHost {
public:
    virtual void SetTitle(const std::string& /*title*/) {}

    /// The two commands whose captions contain file names.
    struct Captions {
        std::string mnuFileGlobal;
        std::string mnufilekvsettings;
    };
    virtual void SetCaptions(const Captions& /*captions*/) {}

    /// Moves the window to the upper left corner of the screen. `shown`: also shows it, so that a first start can be seen.
    virtual void Place(bool /*shown*/) {}

    /// Hides the window, with the tray icon as the way back; without a tray the window stays in the task bar. Marks the program
    /// as minimised.
    virtual void MinimizeToTray() {}

    virtual void Form_Resize() {}

    /// Creates the windows of this machine's own resources, hidden.
    virtual void LoadResourceMonitors() {}

    /// Sets the check marks of the tray's commands: installed as a service, in the startup group.
    virtual void SetStartMarks(bool /*mnuTrayNTService*/, bool /*mnuTrayStartup*/) {}

    /// Asks the user the questions of a first start and sets up what the answers say. Waits through the event pump, for days if
    /// necessary.
    virtual void SetUpForTheFirstTime() {}
};

}  // namespace korvane
