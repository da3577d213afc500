// Safeguard Heartbeat: requests an address each minute in which the cycle is alive, so that a service elsewhere notices when this
// machine dies. Nothing waits for the answer.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "engine/cycle_state.h"
#include "platform/clock.h"
#include "platform/inet.h"
#include "platform/timer.h"
#include "store/log.h"
#include "store/safeguards.h"
#include "store/settings_collection.h"

namespace korvane {

class Heartbeat {
public:
    struct Ports {
        Timers& timers;
        const Clock& clock;
        Log& log;
        const SettingsCollection& settings;
        Safeguards& safeguards;
        const CycleState& state;
        const CycleTimers& switches;
        std::function<std::unique_ptr<Inet>()> newInet;  ///< called when the first request is due
    };

    explicit Heartbeat(const Ports& ports);

    /// Called at the start and after each change of the settings. While the key has an address, monitoring is on, and the cycle has
    /// ticked in the last minute, a request is sent each minute; without an address no timer runs. A request is given up after 30
    /// seconds; redirects are not followed, and the page is not kept. The first failure is
    /// logged, and the first success after it.
    void Follow();
    /// Drops a running request.
    void End();

private:
    void Tick();
    void LookAtLast();
    void BeatIfAlive();
    void Failed(const std::string& why);

    Ports ports_;
    std::unique_ptr<Timer> timer_;
    std::unique_ptr<Inet> inet_;
    std::chrono::milliseconds next_{0};  ///< in terms of the clock's tick count
    std::uint32_t ticksSeen_ = 0;
    bool running_ = false;
    bool failed_ = false;
};

}  // namespace korvane
