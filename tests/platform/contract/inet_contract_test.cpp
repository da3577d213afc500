// What the HTTP checks rely on in every transfer slot: what comes back, how failures are told, and that the pump runs meanwhile.
#include <gtest/gtest.h>

#include <optional>

#include "base/error.h"
#include "base/text.h"
#include "platform/contract/benches.h"

namespace korvane::contract {
namespace {

using namespace std::chrono_literals;
using Kind = PageAnswer::Kind;

template <class Bench>
class InetContract : public testing::Test {
protected:
    /// Fetches the page; the error in words when it fails, "Type mismatch" for binary data.
    std::string Fetch(const std::string& url, std::chrono::seconds timeout = 20s) {
        EXPECT_FALSE(inet->StillExecuting());
        std::string outcome;
        try {
            outcome = "body: " + inet->OpenURL({.URL = url, .RequestTimeout = timeout});
        } catch (const Error& error) {
            outcome = std::string("error: ") + error.what();
        }
        EXPECT_FALSE(inet->StillExecuting());
        return outcome;
    }

    std::unique_ptr<Timer> Once(std::chrono::milliseconds after, std::function<void()> action) {
        auto timer = bench.timers.NewTimer("once");
        timer->SetInterval(after);
        timer->OnTick([raw = timer.get(), action = std::move(action)] {
            raw->SetEnabled(false);
            action();
        });
        timer->SetEnabled(true);
        return timer;
    }

    Bench bench;
    std::unique_ptr<Inet> inet = bench.NewInet();
};
TYPED_TEST_SUITE(InetContract, Benches, BenchNames);

TYPED_TEST(InetContract, AnswersComeBackWhole) {
    const std::string large(300'000, 'x');
    for (const std::string& body : {std::string("Welcome\r\nto the \xC3\xA4 page"), std::string(), large}) {
        EXPECT_EQ(this->Fetch(this->bench.ServePage({Kind::Body, body, 5ms})), "body: " + body);
    }
}

TYPED_TEST(InetContract, FailuresAreToldInWords) {
    EXPECT_EQ(this->Fetch(this->bench.ServePage({Kind::Binary, "", 5ms})), "error: Type mismatch");
    const std::string refused = this->Fetch(this->bench.ServePage({Kind::Failure, "", 1ms}));
    EXPECT_TRUE(Holds(ToLower(refused), "connect")) << refused;
    const std::string unknown = this->Fetch("http://no..such..host/");
    EXPECT_TRUE(unknown.starts_with("error: ")) << unknown;
    EXPECT_FALSE(Holds(ToLower(unknown), "type mismatch")) << unknown;
}

TYPED_TEST(InetContract, SilenceEndsAtTheTimeout) {
    const std::string url = this->bench.ServePage({Kind::Silent});
    for (const std::chrono::seconds timeout : {1s, 0s}) {
        const auto start = this->bench.clock.GetTickCount();
        const std::string outcome = this->Fetch(url, timeout);
        EXPECT_TRUE(outcome.starts_with("error: ")) << outcome;
        EXPECT_TRUE(Holds(outcome, "timed out")) << outcome;
        EXPECT_GE(this->bench.clock.GetTickCount() - start, timeout);
    }
}

TYPED_TEST(InetContract, ThePumpRunsMeanwhileAndAnEventCanCancel) {
    const std::string url = this->bench.ServePage({Kind::Silent});
    bool executing = false;
    const auto canceller = this->Once(20ms, [&] {
        executing = this->inet->StillExecuting();
        this->inet->Cancel();
    });
    EXPECT_EQ(this->Fetch(url), "error: Request cancelled");
    EXPECT_TRUE(executing);

    this->inet->Cancel();  // with nothing running it leaves nothing behind
    EXPECT_EQ(this->Fetch(this->bench.ServePage({Kind::Body, "fine", 1ms})), "body: fine");
}

TYPED_TEST(InetContract, OneTransferAtATimeButASecondSlotIsFree) {
    const auto second = this->bench.NewInet();
    const std::string quick = this->bench.ServePage({Kind::Body, "quick", 1ms});
    std::string nested;
    const auto timer = this->Once(10ms, [&] {
        EXPECT_THROW(this->inet->OpenURL({.URL = quick}), Error);
        nested = second->OpenURL({.URL = quick});
    });
    EXPECT_EQ(this->Fetch(this->bench.ServePage({Kind::Body, "slow", 200ms})), "body: slow");
    EXPECT_EQ(nested, "quick");
}

}  // namespace
}  // namespace korvane::contract
