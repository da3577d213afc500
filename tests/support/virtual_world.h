// The virtual world of the tests: time that stands still until somebody waits, and then jumps to the next event. A simulated day
// costs as much as its events, nothing depends on the machine, and the same script always gives the same run.
//
//     VirtualWorld world(DateTime::Of(2026, 11, 21, 15, 0, 0));
//     world.After(30s, [&] { ... });                       // by the tick count
//     world.At(DateTime::Of(2026, 11, 22, 2, 0), [&] { ... });  // by the wall clock
//     MonitorCycle cycle(world.clock, world.events, world.timers, ...);
//     world.RunFor(24h);
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/events.h"
#include "platform/timer.h"
#include "support/event_queue.h"

namespace korvane {

class VirtualWorld;

class VirtualClock : public Clock {
public:
    explicit VirtualClock(const VirtualWorld& world) : world_(world) {}
    DateTime Now() const override;
    DateTime UtcNow() const override;
    double Timer() const override;
    std::chrono::milliseconds GetTickCount() const override;

private:
    const VirtualWorld& world_;
};

/// As the port says, with one check more: a loop that pumps and pumps while time stands still would burn a core in the real
/// world and never end in this one; after 100,000 vain calls it ends in std::logic_error.
class VirtualEvents : public Events {
public:
    explicit VirtualEvents(VirtualWorld& world) : world_(world) {}

    /// Delivers all that is due at the time of the call.
    void DoEvents() override;
    /// As DoEvents if something is due; otherwise jumps to the next event within `limit` and delivers all that is due at its
    /// moment, or jumps by `limit`.
    void WaitForEvent(std::chrono::milliseconds limit) override;
    /// Moves time on; events due meanwhile stay pending.
    void Sleep(std::chrono::milliseconds time) override;
    /// Throws std::logic_error: there are no descriptors in here.
    std::unique_ptr<Watch> WatchReadable(int descriptor, std::function<void()> readable) override;

private:
    VirtualWorld& world_;
    int vainCalls_ = 0;
    std::chrono::milliseconds lastCall_{-1};
};

/// Timers keep their phase; periods that were missed during a Sleep give one tick, not many.
class VirtualTimers : public Timers {
public:
    explicit VirtualTimers(VirtualWorld& world) : world_(world) {}
    std::unique_ptr<Timer> NewTimer(const std::string& name) override;

private:
    VirtualWorld& world_;
};

class VirtualWorld {
public:
    using Action = std::function<void()>;

    /// `start` is local time; `eastOfUtc` is how far local time is ahead of UTC. Tick counts start at 0.
    explicit VirtualWorld(DateTime start, std::chrono::minutes eastOfUtc = std::chrono::minutes(0));
    VirtualWorld(const VirtualWorld&) = delete;
    VirtualWorld& operator=(const VirtualWorld&) = delete;

    VirtualClock clock;
    VirtualEvents events;
    VirtualTimers timers;

    std::chrono::milliseconds Ticks() const { return now_; }

    /// Calls `action` from the pump when the time has passed. Actions of one moment run in the order in which they were put in.
    EventId After(std::chrono::milliseconds delay, Action action);

    /// Calls `action` from the pump as soon as the wall clock reads `local` or later, however it got there. A moment that is over
    /// already is due at once.
    void At(DateTime local, Action action);

    /// Takes an action back; one that has run or was taken back before is no error.
    void Cancel(EventId id) { queue_.Cancel(id); }

    /// The operator sets the clock: local time and UTC jump by as much, the tick count does not.
    void MoveClock(std::chrono::seconds by);

    /// Local time jumps by `by`, UTC goes on: +1h where summer time begins, -1h where it ends.
    void MoveZone(std::chrono::seconds by);

    /// The two changes of a year by the wall clock: at `begins` (2:00 of winter time) to 3:00, at `ends` (3:00 of summer time)
    /// back to 2:00.
    void ScheduleSummerTime(DateTime begins, DateTime ends);

    /// The test's own pump: delivers everything due within `duration` and leaves time at its end, or later when an action that
    /// waits for something itself was still running then.
    void RunFor(std::chrono::milliseconds duration);

    /// As RunFor up to `local` on the wall clock.
    void RunTo(DateTime local);

    /// Whether the condition came true within `limit`. It is looked at first at once, then after every moment with events.
    bool RunUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit);

    /// For the parts of this world: events delivered so far.
    std::uint64_t Delivered() const { return delivered_; }

private:
    friend class VirtualClock;
    friend class VirtualEvents;

    struct Alarm {
        DateTime when;
        Action action;
        std::uint64_t number;
        EventId id = {};
    };

    std::chrono::milliseconds LocalMilliseconds() const { return start_ + now_ + zone_ + moved_; }
    bool DueBy(std::chrono::milliseconds moment);
    void DeliverDueBy(std::chrono::milliseconds moment);
    void AdvanceTo(std::chrono::milliseconds moment) { now_ = std::max(now_, moment); }
    void Arm(Alarm& alarm);
    void Ring(std::uint64_t number);
    void ClockJumped();

    EventQueue queue_;
    std::vector<Alarm> alarms_;
    std::chrono::milliseconds now_{0};
    std::chrono::milliseconds start_;     ///< UTC at tick 0, since 1970
    std::chrono::milliseconds zone_;      ///< local time minus UTC
    std::chrono::milliseconds moved_{0};  ///< by the operator
    std::uint64_t delivered_ = 0;
    std::uint64_t lastAlarm_ = 0;
};

}  // namespace korvane
