// What the ping checks rely on in every ICMP echo.
#include <gtest/gtest.h>

#include "platform/contract/benches.h"

namespace korvane::contract {
namespace {

using namespace std::chrono_literals;

template <class Bench>
class IcmpEchoContract : public testing::Test {
protected:
    Bench bench;
    std::unique_ptr<IcmpEcho> echo = bench.NewEcho();
};
TYPED_TEST_SUITE(IcmpEchoContract, Benches, BenchNames);

TYPED_TEST(IcmpEchoContract, OnlyAddressesAreRead) {
    EXPECT_EQ(this->echo->InetAddr("127.0.0.1"), this->echo->InetAddr("127.1"));  // the classic short form
    EXPECT_TRUE(this->echo->InetAddr("0.0.0.0"));
    for (const char* text : {"255.255.255.255", "localhost", "", "127.0.0.256", "127.0.0.1.1", "::1", "http://127.0.0.1"}) {
        EXPECT_FALSE(this->echo->InetAddr(text)) << text;
    }
}

TYPED_TEST(IcmpEchoContract, ThisMachineAnswersAndNothingIsDeliveredMeanwhile) {
    std::string whyNot;
    if (!this->echo->IcmpCreateFile(whyNot)) GTEST_SKIP() << "no echoes for this user: " << whyNot;
    EXPECT_EQ(whyNot, "");
    int ticks = 0;
    const auto timer = this->bench.timers.NewTimer("test");
    timer->OnTick([&] { ++ticks; });
    timer->SetInterval(1ms);
    timer->SetEnabled(true);

    const Ipv4Address address = *this->echo->InetAddr("127.0.0.1");
    for (int i = 0; i < 2; ++i) {
        const EchoReply reply = this->echo->IcmpSendEcho(address, std::string(32, 'A'), 255, 2000ms);
        EXPECT_TRUE(reply.answered);
        EXPECT_EQ(reply.status, 0);
        EXPECT_EQ(reply.address, address);
        EXPECT_LE(reply.roundTripTime, 2000ms);
    }
    EXPECT_EQ(ticks, 0);
    this->echo->IcmpCloseHandle();
}

}  // namespace
}  // namespace korvane::contract
