// Room `run`: the start and the end of the program, the objects that live as long as it runs, and what it provides to the
// windows.
//
// The run of the program, with or without a window: its start, its end, and the commands that concern all of it.
#pragma once

#include <memory>

#include "engine/cycle_state.h"
#include "shell/run/desk.h"
#include "shell/run/ports.h"

namespace korvane {

struct RunRooms;

class Run {
public:
    using Options = RunOptions;

    Run(const RunPorts& ports, Options options);
    ~Run();

    enum class Started { Running, SecondInstance, CannotGoOn, Stopped };

    /// Performs the whole start in its fixed order, including messages. After Running the first timer is armed. Stopped: the program was
    /// asked to end while it waited for the server of a shared list, and must end as after Running. After any other result all
    /// messages have been shown and the program must end with status 1.
    Started StartUp();

    /// Called when the program is asked to end. Returns whether it may end now: during StartUp nothing can be saved yet, so the
    /// request is kept, and the caller must check ExitAsked after StartUp has returned.
    bool MayExit();
    bool ExitAsked() const { return exitAsked_; }
    /// True while a start that cannot continue shows its message: there is nothing to save, and the process may end at any time,
    /// with status 1.
    bool OnlyTelling() const;

    /// File, Exit and equivalents: saves, logs, and leaves the timers off. The caller must end the process at once; a running
    /// check is abandoned, and its row stays unchanged and due.
    void mnuExit_Click();

    /// Saves the settings at an exit, if SavesOnExit.
    void SaveOnExit();
    /// False in a service, whose changes last only as long as it runs: at its end nothing is written to the settings file.
    bool SavesOnExit() const { return !TheDesk().service.RunningAsService(); }

    void cmdStopStart();

    ServiceMode& Service() { return TheDesk().service; }

    /// Returns what the windows use.
    const Desk& TheDesk() const;

    /// True while StartUp runs.
    bool Loading() const;
    /// True before monitoring begins, during the wait defined in the settings.
    bool WaitingToStart() const;
    /// True if the cycle runs and is not asleep: the entry that is due first is being requested. A sleep whose seconds have run
    /// out no longer counts, although its length is still known.
    bool Requesting() const;
    /// Ends the sleep before the next check.
    void WakeUp();
    /// Called when the operator looks at the window again in the middle of a request: its estimate continues.
    void ResumeProgress();

    const CycleState& State() const;

private:
    void Form_Unload();

    std::unique_ptr<RunRooms> rooms_;
    bool exitAsked_ = false;
};

}  // namespace korvane
