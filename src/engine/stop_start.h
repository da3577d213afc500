// When monitoring runs: the wait before it begins, and its only switch.
#pragma once

#include <functional>
#include <optional>

#include "engine/cycle_state.h"
#include "platform/clock.h"
#include "platform/operator.h"
#include "store/log.h"
#include "store/safeguards.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

/// The wait before monitoring begins: counts the `Begin` setting down, does the once-only work of a start, compacts the database
/// meanwhile, and then starts the cycle.
class BeginWait {
public:
    struct Ports {
        const Clock& clock;
        Operator& person;
        StatusLog& status;
        Log& log;
        const SettingsCollection& settings;
        const Safeguards& safeguards;
        CycleTimers timers;
        CycleState& state;
        /// Run once, at the first tick: first-run setup and the start-up notice.
        std::function<void()> beginOperations;
        /// Compacts the database; empty in a program that cannot, which then does not mention it.
        std::function<void()> compactAndRepair;
    };

    explicit BeginWait(Ports ports) : ports_(std::move(ports)), state_(ports_.state) {}

    /// Handles one tick, each second. Errors are ignored step by step.
    void Timer2_Timer();

private:
    double WaitSeconds();
    double UsableMinutes(std::optional<double> minutes);
    void ShowWaiting(double wait);
    void CompactWhileWaiting();

    Ports ports_;
    CycleState& state_;
    bool operationsBegun_ = false;
    bool saidWaiting_ = false;
    bool saidUnusable_ = false;
    double percent_ = 0;
};

/// Stop and start, by the operator or by the service manager.
class StopStart {
public:
    struct Ports {
        Operator& person;
        StatusLog& status;
        CycleTimers timers;
        CycleState& state;
        const bool& bFormLoading;  ///< while the program loads the switch does nothing
        std::function<void()> stopped;
    };

    explicit StopStart(const Ports& ports) : ports_(ports) {}

    /// Toggles monitoring. A running check continues to its end.
    void cmdStopStart();

private:
    void Stop();
    void Start();

    Ports ports_;
};

}  // namespace korvane
