// The virtual world of the tests: time that stands still until somebody waits, and then jumps to the next event. A simulated day
// costs as much as its events, nothing depends on the machine, and the same script always gives the same run.
//
//     VirtualWorld world(DateTime::Of(2026, 11, 21, 15, 0, 0));
//     world.After(30s, [&] { ... });
//     MonitorCycle cycle(world.clock, world.events, world.timers, ...);
//     world.RunFor(24h);
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "platform/clock.h"
#include "platform/events.h"
#include "platform/timer.h"

namespace korvane {

/// Names one action, by its moment and the order of coming in; never used twice. The default names none.
using EventId = std::pair<std::chrono::milliseconds, std::uint64_t>;

class VirtualWorld : Clock, Events, Timers {
    using Milliseconds = std::chrono::milliseconds;
    using Seconds = std::chrono::seconds;

public:
    using Action = std::function<void()>;

    /// `start` is local time; `eastOfUtc` is how far local time is ahead of UTC. Tick counts start at 0.
    explicit VirtualWorld(DateTime start, std::chrono::minutes eastOfUtc = std::chrono::minutes(0))
        : start_(Seconds(start.Seconds()) - eastOfUtc), zone_(eastOfUtc) {}
    VirtualWorld(const VirtualWorld&) = delete;

    // The ports. Whoever pumps 100,000 times while nothing can happen would never end in here: std::logic_error.
    Clock& clock = *this;
    Events& events = *this;
    Timers& timers = *this;  ///< they keep their phase; periods that were missed during a Sleep give one tick

    Milliseconds Ticks() const { return now_; }

    /// Calls `action` from the pump when the time has passed. Actions of one moment run in the order in which they were put in.
    EventId After(Milliseconds delay, Action action) {
        return queue_.emplace(EventId(now_ + std::max(delay, Milliseconds(0)), ++lastNumber_), std::move(action)).first->first;
    }

    /// Takes an action back; one that has run or was taken back before is no error.
    void Cancel(EventId id) { queue_.erase(id); }

    /// The operator sets the clock: local time and UTC jump by as much, the tick count does not.
    void MoveClock(Seconds by) { moved_ += by; }
    /// Local time jumps by `by`, UTC goes on: +1h where summer time begins, -1h where it ends.
    void MoveZone(Seconds by) { zone_ += by; }

    /// The test's own pump: delivers everything due within `duration` and leaves time at its end, or later when an action that
    /// waits for something itself was still running then.
    void RunFor(Milliseconds duration) {
        RunUntil([] { return false; }, duration);
    }

    /// Whether the condition came true within `limit`. It is looked at first at once, then after every moment with events.
    bool RunUntil(const std::function<bool()>& condition, Milliseconds limit) {
        const Milliseconds end = now_ + limit;
        for (; !condition(); DeliverDueBy(Next())) {
            if (DueBy(end)) continue;
            GoTo(end);
            return false;
        }
        return true;
    }

    std::function<void(Milliseconds)> beforeTime = [](Milliseconds) {};  ///< called before time moves on to that moment

    /// How many timers and actions wait.
    std::size_t Pending() const { return queue_.size(); }

private:
    struct Periodic : korvane::Timer {
        explicit Periodic(VirtualWorld& in) : world(in) {}
        ~Periodic() override { Periodic::Disarm(); }
        void Arm(Milliseconds interval) override { Next(world.now_ + interval); }
        void Disarm() override { world.Cancel(pending); }
        void Next(Milliseconds due) {
            Disarm();
            pending = world.After(due - world.now_, [this, due] {
                Next(due + Interval() < world.now_ ? world.now_ + Interval() : due + Interval());
                Fire();
            });
        }
        VirtualWorld& world;
        EventId pending;
    };

    DateTime Now() const override { return WithoutFraction(Local()); }
    DateTime UtcNow() const override { return WithoutFraction(start_ + now_ + moved_); }
    double Timer() const override {
        return std::chrono::duration<double>(Local() - std::chrono::floor<std::chrono::days>(Local())).count();
    }
    Milliseconds GetTickCount() const override { return now_; }
    void DoEvents() override {
        const bool vain = now_ == std::exchange(lastCall_, now_) && !DueBy(now_);
        vainCalls_ = vain ? vainCalls_ + 1 : 0;
        if (vainCalls_ > 100'000) throw std::logic_error("DoEvents is called over and over while nothing can happen");
        DeliverDueBy(now_);
    }
    void WaitForEvent(Milliseconds limit) override {
        if (limit <= Milliseconds(0) || DueBy(now_)) return DoEvents();
        DueBy(now_ + limit) ? DeliverDueBy(Next()) : Sleep(limit);
    }
    void Sleep(Milliseconds time) override { GoTo(now_ + time); }
    std::unique_ptr<Watch> WatchReadable(int, std::function<void()>) override {
        throw std::logic_error("no descriptors in here");
    }
    std::unique_ptr<korvane::Timer> NewTimer(const std::string&) override { return std::make_unique<Periodic>(*this); }

    static DateTime WithoutFraction(Milliseconds time) {
        return DateTime::FromSeconds(std::chrono::floor<Seconds>(time).count());
    }
    Milliseconds Local() const { return start_ + now_ + zone_ + moved_; }
    Milliseconds Next() const { return queue_.begin()->first.first; }
    bool DueBy(Milliseconds moment) const { return !queue_.empty() && Next() <= moment; }
    void DeliverDueBy(Milliseconds moment) {
        while (DueBy(moment)) {
            GoTo(Next());
            queue_.extract(queue_.begin()).mapped()();
        }
        GoTo(moment);
    }
    void GoTo(Milliseconds moment) {
        if (moment <= now_) return;
        beforeTime(moment);
        now_ = moment;
    }

    std::map<EventId, Action> queue_;
    std::uint64_t lastNumber_ = 0;
    Milliseconds now_{0}, lastCall_{-1};
    Milliseconds start_;     ///< UTC at tick 0, since 1970
    Milliseconds zone_;      ///< local time minus UTC
    Milliseconds moved_{0};  ///< by the operator
    int vainCalls_ = 0;
};

}  // namespace korvane
