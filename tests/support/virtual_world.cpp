#include "support/virtual_world.h"

#include <stdexcept>
#include <utility>

namespace korvane {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

DateTime ToSeconds(milliseconds sinceEpoch) {
    return DateTime::FromSeconds(std::chrono::floor<seconds>(sinceEpoch).count());
}

}  // namespace

VirtualWorld::VirtualWorld(DateTime start, std::chrono::minutes eastOfUtc)
    : clock(*this), events(*this), timers(*this), start_(seconds(start.Seconds()) - eastOfUtc), zone_(eastOfUtc) {}

EventId VirtualWorld::After(milliseconds delay, Action action) {
    return queue_.Add(now_ + std::max(delay, milliseconds::zero()), std::move(action));
}

void VirtualWorld::At(DateTime local, Action action) {
    alarms_.push_back({local, std::move(action), ++lastAlarm_});
    Arm(alarms_.back());
}

void VirtualWorld::Arm(Alarm& alarm) {
    queue_.Cancel(alarm.id);
    alarm.id = After(seconds(alarm.when.Seconds()) - LocalMilliseconds(), [this, number = alarm.number] { Ring(number); });
}

void VirtualWorld::Ring(std::uint64_t number) {
    const auto alarm =
        std::find_if(alarms_.begin(), alarms_.end(), [number](const Alarm& candidate) { return candidate.number == number; });
    const Action action = std::move(alarm->action);
    alarms_.erase(alarm);
    action();
}

void VirtualWorld::ClockJumped() {
    for (Alarm& alarm : alarms_)
        Arm(alarm);
}

void VirtualWorld::MoveClock(seconds by) {
    moved_ += by;
    ClockJumped();
}

void VirtualWorld::MoveZone(seconds by) {
    zone_ += by;
    ClockJumped();
}

void VirtualWorld::ScheduleSummerTime(DateTime begins, DateTime ends) {
    At(begins, [this] { MoveZone(std::chrono::hours(1)); });
    At(ends, [this] { MoveZone(-std::chrono::hours(1)); });
}

void VirtualWorld::RunFor(milliseconds duration) {
    RunUntil([] { return false; }, duration);
}

void VirtualWorld::RunTo(DateTime local) {
    bool reached = false;
    At(local, [&reached] { reached = true; });
    while (!reached)
        DeliverDueBy(*queue_.NextMoment());
}

bool VirtualWorld::RunUntil(const std::function<bool()>& condition, milliseconds limit) {
    const milliseconds end = now_ + limit;
    while (!condition()) {
        if (!DueBy(end)) {
            AdvanceTo(end);
            return false;
        }
        DeliverDueBy(*queue_.NextMoment());
    }
    return true;
}

bool VirtualWorld::DueBy(milliseconds moment) {
    const auto next = queue_.NextMoment();
    return next && *next <= moment;
}

void VirtualWorld::DeliverDueBy(milliseconds moment) {
    while (DueBy(moment)) {
        AdvanceTo(*queue_.NextMoment());
        const Action action = queue_.TakeNext();
        ++delivered_;
        action();
    }
    AdvanceTo(moment);
}

DateTime VirtualClock::Now() const {
    return ToSeconds(world_.LocalMilliseconds());
}

DateTime VirtualClock::UtcNow() const {
    return ToSeconds(world_.start_ + world_.now_ + world_.moved_);
}

double VirtualClock::Timer() const {
    const milliseconds local = world_.LocalMilliseconds();
    const milliseconds sinceMidnight = local - std::chrono::floor<std::chrono::days>(local);
    return std::chrono::duration<double>(sinceMidnight).count();
}

milliseconds VirtualClock::GetTickCount() const {
    return world_.now_;
}

void VirtualEvents::DoEvents() {
    constexpr int kVainCalls = 100'000;
    const milliseconds now = world_.now_;
    const bool vain = now == lastCall_ && !world_.DueBy(now);
    vainCalls_ = vain ? vainCalls_ + 1 : 0;
    lastCall_ = now;
    if (vainCalls_ > kVainCalls) throw std::logic_error("DoEvents is called over and over while nothing can happen");
    world_.DeliverDueBy(now);
}

void VirtualEvents::WaitForEvent(milliseconds limit) {
    const milliseconds now = world_.now_;
    if (limit <= milliseconds::zero() || world_.DueBy(now)) {
        DoEvents();
    } else if (world_.DueBy(now + limit)) {
        world_.DeliverDueBy(*world_.queue_.NextMoment());
    } else {
        world_.AdvanceTo(now + limit);
    }
}

void VirtualEvents::Sleep(milliseconds time) {
    world_.AdvanceTo(world_.now_ + time);
}

std::unique_ptr<Events::Watch> VirtualEvents::WatchReadable(int, std::function<void()>) {
    throw std::logic_error("there are no descriptors in the virtual world");
}

}  // namespace korvane
