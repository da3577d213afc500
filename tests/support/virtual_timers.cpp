#include "support/virtual_world.h"

namespace korvane {
namespace {

class VirtualTimer : public Timer {
public:
    explicit VirtualTimer(VirtualWorld& world) : world_(world) {}
    ~VirtualTimer() override { Disarm(); }
    VirtualTimer(const VirtualTimer&) = delete;
    VirtualTimer& operator=(const VirtualTimer&) = delete;

protected:
    void Arm(std::chrono::milliseconds interval) override {
        Disarm();
        Next(world_.Ticks() + interval);
    }

    void Disarm() override { world_.Cancel(pending_); }

private:
    void Next(std::chrono::milliseconds due) {
        due_ = due;
        pending_ = world_.After(due_ - world_.Ticks(), [this] { PeriodOver(); });
    }

    void PeriodOver() {
        const auto now = world_.Ticks();
        const auto next = due_ + Interval();
        Next(next < now ? now + Interval() : next);
        Fire();
    }

    VirtualWorld& world_;
    std::chrono::milliseconds due_{0};
    EventId pending_;
};

}  // namespace

std::unique_ptr<Timer> VirtualTimers::NewTimer(const std::string&) {
    return std::make_unique<VirtualTimer>(world_);
}

}  // namespace korvane
