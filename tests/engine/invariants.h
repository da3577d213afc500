// What must hold after, and during, every simulated run, whatever the servers, the clock and the disk did.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/engine_world.h"

namespace korvane {

struct RunCounts {
    int entries = 0;
    std::int64_t checks = 0;
    std::int64_t failures = 0;
    int outages = 0;  ///< that reached nTries
};

/// The accounts of all entries against their `Failures` rows and the calls of the actions: counters add up, one row a failed
/// check, states follow the table. Adds test failures; returns what it counted.
RunCounts ExpectWholeAccounts(EngineWorld& engine);

/// Looks at all entries every ten virtual minutes: none is ever overdue by more than the backlog allows, none is put off further
/// than its rules allow.
class NobodyIsForgotten {
public:
    /// `longestCheck` bounds one check, so that the backlog of all entries is known.
    NobodyIsForgotten(EngineWorld& engine, std::chrono::seconds longestCheck);

    /// The wall clock is about to jump forward or back: what was planned before is late, or far, by as much.
    void ClockJumps(std::chrono::seconds by);

private:
    void Look();

    EngineWorld& engine_;
    std::chrono::seconds longestCheck_;
    std::chrono::seconds forward_{0};
    std::chrono::seconds back_{0};
};

}  // namespace korvane
