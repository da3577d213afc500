// The main window as the run sees it: what start-up and the service do to it. As it stands it is the window of a program without
// one.
#pragma once

#include <string>

#include "store/settings.h"

namespace korvane {

class MonitorWindow : public SettingsHost {
public:
    virtual void SetTitle(const std::string& /*title*/) {}

    /// The two commands whose captions name files.
    struct Captions {
        std::string mnuFileGlobal;
        std::string mnufilekvsettings;
    };
    virtual void SetCaptions(const Captions& /*captions*/) {}

    /// At its place at the left upper corner of the screen. `shown`: on the screen too, so that a first start can be seen.
    virtual void Place(bool /*shown*/) {}

    /// Out of sight, with the tray icon as the way back; where there is none the window stays in the task bar. Marks the
    /// program as minimised.
    virtual void MinimizeToTray() {}

    virtual void Form_Resize() {}

    /// Makes the windows of this machine's own resources, hidden.
    virtual void LoadResourceMonitors() {}

    /// The check marks of the tray's commands: installed as a service, in the startup group.
    virtual void SetStartMarks(bool /*mnuTrayNTService*/, bool /*mnuTrayStartup*/) {}

    /// Asks the person at the desk the questions of a first start and makes what the answers say. Waits through the event pump,
    /// for days if need be.
    virtual void SetUpForTheFirstTime() {}
};

}  // namespace korvane
