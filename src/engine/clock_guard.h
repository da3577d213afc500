// Safeguard GuardClock: the times of the next checks stay right when the clock is changed. An entry never waits longer than the
// cycle would ever make it wait, and time that was only skipped makes no entry due. With GuardBadEntries alone only a time that
// cannot be read is corrected: the cycle may never find such an entry.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "engine/cycle_state.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "store/safeguards.h"

namespace korvane {

class ClockGuard {
public:
    struct Ports {
        Store& store;
        const Clock& clock;
        Safeguards& safeguards;
        CycleState& state;
        std::string connectionString;  ///< of the database
        bool isShared = false;  ///< each of several instances sees a leap of the server's clock; none moves entries with it
    };

    explicit ClockGuard(const Ports& ports) : ports_(ports) {}

    /// Called before each tick of the cycle. At its first call, when the clock was changed by a minute or more since the last
    /// one, and each hour, it corrects all entries in one transaction; a sleep of the cycle ends if any of them changed. While
    /// the store refuses that it tries again each minute. Throws nothing.
    void Look();

private:
    void Correct(DateTime now);
    bool CorrectRow(Recordset& rs, DateTime now) const;

    Ports ports_;
    std::optional<DateTime> lastNow_;  ///< by the clock at the last call, and the tick count then
    std::chrono::milliseconds lastTicks_{0};
    std::chrono::milliseconds nextLook_{0};  ///< tick count
    std::chrono::seconds leap_{0};           ///< of the clock, not yet corrected
    bool guardsClock_ = false;               ///< not only times that cannot be read
    DateTime beforeLeap_;                    ///< by the clock; later times were not due then
};

}  // namespace korvane
