#include "engine/clock_guard.h"

#include <algorithm>
#include <utility>

#include "base/ignore_errors.h"
#include "engine/outcome.h"
#include "engine/server_table.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::seconds;

constexpr auto kSmallestLeap = 60s;  // a clock that is kept right moves by less
constexpr std::chrono::minutes kLongestDownTime = std::chrono::days(366);
constexpr auto kLookEvery = 1h;
constexpr auto kLookAgain = 1min;

std::int64_t NumberIn(Recordset& rs, std::string_view column) {
    std::int64_t number = 0;
    IgnoreErrors([&] { number = rs.Fields(column).Value().Int64(); });
    return number;
}

// Returns how far ahead the cycle sets the next check of an entry in this state.
seconds LongestWait(Recordset& rs) {
    const std::string state = ColumnText(rs, "strCurStatus");
    bool watched = true;
    IgnoreErrors([&] { watched = rs.Fields("bIsMonitoring").Value().Bool(); });
    if (state == status::kInactive || !watched) return kInactiveInterval;
    if (state == status::kDownTime)
        return std::min(kLongestDownTime,
                        std::chrono::minutes(std::max(NumberIn(rs, "nDownDuration1"), NumberIn(rs, "nDownDuration2"))));
    return LongestInterval(NumberIn(rs, "nIntervalSeconds"), NumberIn(rs, "nTriesCur"));
}

std::string Sentence(seconds leap, int changed, bool guardsClock) {
    const std::string entries = std::to_string(changed) + (changed == 1 ? " entry" : " entries");
    if (!guardsClock) return "The next check of " + entries + " had no readable time, and is due now.";
    if (leap > 0s)
        return "The clock was set forward by " + std::to_string(leap.count()) + " seconds; the next check of " + entries +
               " was moved with it.";
    return "The next check of " + entries + " was too far ahead of the clock, and is due now.";
}

}  // namespace

void ClockGuard::Look() {
    guardsClock_ = ports_.safeguards.IsOn("GuardClock");
    if (!guardsClock_ && !ports_.safeguards.IsOn("GuardBadEntries")) return lastNow_.reset();
    const DateTime now = ports_.clock.Now();
    const auto ticks = ports_.clock.GetTickCount();
    const DateTime before = lastNow_.value_or(now);
    const seconds leap = lastNow_ ? (now - before) - std::chrono::round<seconds>(ticks - lastTicks_) : 0s;
    const bool leapt = std::chrono::abs(leap) >= kSmallestLeap;
    if (leapt && leap_ == 0s) beforeLeap_ = before;
    if (leapt && !ports_.isShared) leap_ += leap;
    if (leapt || !lastNow_) nextLook_ = ticks;
    lastNow_ = now;
    lastTicks_ = ticks;
    if (ticks < nextLook_) return;
    nextLook_ = ticks + (IgnoreErrors([&] { Correct(now); }) ? kLookEvery : kLookAgain);
}

void ClockGuard::Correct(DateTime now) {
    const auto conn = ports_.store.NewConnection();
    conn->SetConnectionString(ports_.connectionString);
    conn->Open();
    const auto rs = ports_.store.NewRecordset();
    rs->Open(query::kAllByNextCheck, *conn, CursorType::Keyset, LockType::Optimistic);
    int changed = 0;
    conn->BeginTrans();
    for (; !rs->Eof(); rs->MoveNext())
        if (CorrectRow(*rs, now)) ++changed;
    conn->CommitTrans();
    const seconds leap = std::exchange(leap_, 0s);
    if (changed == 0) return;
    ports_.state.nSleepLeft = 0;
    ports_.state.nSleepTotal = 0;
    ports_.safeguards.Acted(guardsClock_ ? "GuardClock" : "GuardBadEntries", Sentence(leap, changed, guardsClock_));
}

bool ClockGuard::CorrectRow(Recordset& rs, DateTime now) const {
    DateTime next = now;  // one that cannot be read is due
    const bool readable = IgnoreErrors([&] { next = rs.Fields("dtNextCheck").Value().When(); });
    if (readable && !guardsClock_) return false;
    DateTime right = next;
    // A down time ends by the clock.
    const bool skipped = leap_ > 0s && next > beforeLeap_ && ColumnText(rs, "strCurStatus") != status::kDownTime;
    if (skipped) IgnoreErrors([&] { right = next + leap_; });
    if (right - now > LongestWait(rs) + kSmallestLeap) right = now;
    if (readable && right == next) return false;
    rs.Fields("dtNextCheck") = right;
    rs.Update();
    return true;
}

}  // namespace korvane
