// Port: a periodic timer, delivered by the event pump. A tick never overlaps itself: a tick that is due while the timer's own
// tick is still on the stack is dropped.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "base/raised_flag.h"

namespace korvane {

class Timer {
public:
    virtual ~Timer() = default;

    /// Called at each tick. Set it before the first Enable.
    void OnTick(std::function<void()> tick) { tick_ = std::move(tick); }

    /// On a running timer it restarts the period. 0 ticks whenever the pump has nothing else to deliver; a tick that waits must
    /// set another period first, or the wait never rests.
    void SetInterval(std::chrono::milliseconds interval) {
        interval_ = interval;
        if (enabled_) Arm(interval_);
    }
    std::chrono::milliseconds Interval() const { return interval_; }

    /// Enabling starts a whole period; enabling a running timer changes nothing.
    void SetEnabled(bool enabled) {
        if (enabled == enabled_) return;
        enabled_ = enabled;
        if (enabled_) {
            Arm(interval_);
        } else {
            Disarm();
        }
    }
    bool Enabled() const { return enabled_; }

    /// Returns whether the tick is on the stack right now.
    bool Ticking() const { return ticking_; }

protected:
    /// Starts periodic delivery and replaces any earlier one.
    virtual void Arm(std::chrono::milliseconds interval) = 0;
    virtual void Disarm() = 0;

    /// For adapters: reports that one period is over.
    void Fire() {
        if (ticking_ || !enabled_ || !tick_) return;
        const RaisedFlag ticking(ticking_);
        tick_();
    }

private:
    std::function<void()> tick_;
    std::chrono::milliseconds interval_{1000};
    bool enabled_ = false;
    bool ticking_ = false;
};

/// Creates timers that one pump delivers.
class Timers {
public:
    virtual ~Timers() = default;

    /// Returns a disabled timer; the name ("TimerMonitorDB") is for traces.
    virtual std::unique_ptr<Timer> NewTimer(const std::string& name) = 0;
};

}  // namespace korvane
