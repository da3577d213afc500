// Periodic timers on Qt's event loop.
#pragma once

#include <memory>
#include <string>

#include "platform/timer.h"

namespace korvane {

/// Periods of a second and more are exact on average, but single ticks may come up to a twentieth of the period late or early, so
/// that ticks coincide and the machine sleeps longer.
class QtTimers : public Timers {
public:
    std::unique_ptr<Timer> NewTimer(const std::string& name) override;
};

}  // namespace korvane
