// What the rooms rely on in every clock, event pump and timer. The pump is the only place where anything is delivered.
#include <gtest/gtest.h>

#include <cmath>

#include "platform/contract/benches.h"
#include "platform/wait.h"

namespace korvane::contract {
namespace {

using namespace std::chrono_literals;

constexpr auto kAmple = 10s;

template <class Bench>
class EventsContract : public testing::Test {
protected:
    std::unique_ptr<Timer> NewTimer(std::chrono::milliseconds interval, std::function<void()> tick) {
        auto timer = bench.timers.NewTimer("test");
        timer->OnTick(std::move(tick));
        timer->SetInterval(interval);
        timer->SetEnabled(true);
        return timer;
    }

    template <class Condition>
    bool Wait(std::chrono::milliseconds limit, Condition condition) {
        return WaitFor(bench.events, bench.clock, limit, condition);
    }

    Bench bench;
};
TYPED_TEST_SUITE(EventsContract, Benches, BenchNames);

TYPED_TEST(EventsContract, TheClocksOfAMomentAgree) {
    const Clock& clock = this->bench.clock;
    DateTime now;
    double timer = 0;
    do {  // until both were read within one second
        now = clock.Now();
        timer = clock.Timer();
    } while (now != clock.Now());
    EXPECT_EQ(std::floor(timer), static_cast<double>((now - now.Date()).count()));
    const auto zone = (clock.Now() - clock.UtcNow()).count();
    EXPECT_LE(std::abs(zone), 14 * 3600);
    EXPECT_LE(std::abs(std::remainder(static_cast<double>(zone), 900.0)), 1.0);
    EXPECT_GE(clock.GetTickCount(), 0ms);
}

TYPED_TEST(EventsContract, SleepLetsTimePassAndDeliversNothing) {
    int ticks = 0;
    const auto timer = this->NewTimer(5ms, [&] { ++ticks; });
    const auto start = this->bench.clock.GetTickCount();
    this->bench.events.Sleep(40ms);
    EXPECT_GE(this->bench.clock.GetTickCount() - start, 40ms);
    EXPECT_EQ(ticks, 0);

    // Periods that were missed give one tick, not eight.
    this->bench.events.DoEvents();
    EXPECT_GE(ticks, 1);
    EXPECT_LE(ticks, 3);
}

TYPED_TEST(EventsContract, WaitingEndsAtTheLimit) {
    const auto start = this->bench.clock.GetTickCount();
    EXPECT_FALSE(this->Wait(30ms, [] { return false; }));
    EXPECT_GE(this->bench.clock.GetTickCount() - start, 30ms);
}

TYPED_TEST(EventsContract, WaitingEndsAtTheEvent) {
    int ticks = 0;
    const auto timer = this->NewTimer(10ms, [&] { ++ticks; });
    const auto start = this->bench.clock.GetTickCount();
    EXPECT_TRUE(this->Wait(kAmple, [&] { return ticks == 3; }));
    const auto took = this->bench.clock.GetTickCount() - start;
    EXPECT_GE(took, 25ms);
    EXPECT_LT(took, kAmple);
}

// No timer runs here that would end the wait by chance.
TYPED_TEST(EventsContract, WhatComesFromOutsideEndsTheWait) {
    const auto start = this->bench.clock.GetTickCount();
    bool delivered = false;
    this->bench.Happen([&] { delivered = true; });
    EXPECT_TRUE(this->Wait(kAmple, [&] { return delivered; }));
    EXPECT_LT(this->bench.clock.GetTickCount() - start, kAmple);
}

TYPED_TEST(EventsContract, ATickNeverOverlapsItselfWhileOthersGoOn) {
    int depth = 0;
    int deepest = 0;
    int rounds = 0;
    int others = 0;
    const auto other = this->NewTimer(3ms, [&] { ++others; });
    const auto timer = this->NewTimer(5ms, [&] {
        deepest = std::max(deepest, ++depth);
        const int before = others;
        EXPECT_TRUE(this->Wait(kAmple, [&] { return others >= before + 5; }));
        --depth;
        ++rounds;
    });
    EXPECT_TRUE(this->Wait(kAmple, [&] { return rounds == 2; }));
    EXPECT_EQ(deepest, 1);
    EXPECT_FALSE(timer->Ticking());
}

TYPED_TEST(EventsContract, ADisabledTimerIsSilentAndAnEnabledOneStartsAWholePeriod) {
    int ticks = 0;
    int others = 0;
    std::unique_ptr<Timer> timer = this->NewTimer(5ms, [&] {
        ++ticks;
        timer->SetEnabled(false);
    });
    auto other = this->NewTimer(5ms, [&] { ++others; });
    EXPECT_TRUE(this->Wait(kAmple, [&] { return others == 5; }));
    EXPECT_EQ(ticks, 1);

    const auto start = this->bench.clock.GetTickCount();
    timer->SetInterval(40ms);
    timer->SetEnabled(true);
    EXPECT_TRUE(this->Wait(kAmple, [&] { return ticks == 2; }));
    EXPECT_GE(this->bench.clock.GetTickCount() - start, 35ms);

    timer->SetEnabled(true);
    timer.reset();
    others = 0;
    EXPECT_TRUE(this->Wait(kAmple, [&] { return others >= 12; }));
    EXPECT_EQ(ticks, 2);
}

TYPED_TEST(EventsContract, ANewIntervalStartsThePeriodAnew) {
    int slow = 0;
    const auto timer = this->NewTimer(kAmple * 2, [&] { ++slow; });
    timer->SetInterval(10ms);
    EXPECT_TRUE(this->Wait(kAmple, [&] { return slow == 2; }));
}

}  // namespace
}  // namespace korvane::contract
