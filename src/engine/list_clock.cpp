#include "engine/list_clock.h"

#include <string>

namespace korvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::seconds;

constexpr auto kAskEvery = 1min;
constexpr auto kTellEvery = 1h;
constexpr seconds kUnnoticed = 5s;
/// The server's answer has no fractions.
constexpr seconds kRounding = 1s;

}  // namespace

void ListClock::Follow(Connection& conn) {
    const auto ticks = ports_.clock.GetTickCount();
    if (server_ && ticks < nextAsk_) return;
    const std::optional<DateTime> now = conn.Now();
    if (!now) return;
    nextAsk_ = ticks + kAskEvery;
    if (!server_ || std::chrono::abs(*now - Now()) > kRounding) {
        server_ = now;
        then_ = ticks;
    }
    Compare();
}

DateTime ListClock::Now() const {
    if (!server_) return ports_.clock.Now();
    return *server_ + std::chrono::floor<seconds>(ports_.clock.GetTickCount() - then_);
}

void ListClock::Compare() {
    const auto ticks = ports_.clock.GetTickCount();
    const seconds offset = Offset();
    if (std::chrono::abs(offset) <= kUnnoticed || ticks < nextTell_) return;
    nextTell_ = ticks + kTellEvery;
    const std::string text = "The clock of this machine is " + std::to_string(std::chrono::abs(offset).count()) + " seconds " +
                             (offset > 0s ? "behind" : "ahead of") +
                             " that of the database server. Entries are due by the server's.";
    ports_.status.setStatusMSG(text);
    ports_.log.WriteLog(kLogOrdinary, kLogError, text);
}

}  // namespace korvane
