#include "engine/request_progress.h"

#include <algorithm>
#include <string>

#include "base/numbers.h"

namespace korvane {
namespace {

constexpr double kFullAtAverages = 1.2;
constexpr int kBarMaximum = 100;

}  // namespace

void RequestProgress::Begin() {
    nProgressTicks_.push_back(0);
    const bool watched = ports_.person.WindowVisible();
    ports_.TimerProgress.SetEnabled(watched);
    if (watched) ports_.person.SetWaitCursor(true);
}

void RequestProgress::End() {
    nProgressTicks_.pop_back();
    if (!nProgressTicks_.empty()) return;
    ports_.TimerProgress.SetEnabled(false);
    ports_.person.SetWaitCursor(false);
    ports_.person.SetProgress(0, kBarMaximum);
}

void RequestProgress::Resume() {
    if (!nProgressTicks_.empty()) ports_.TimerProgress.SetEnabled(true);
}

void RequestProgress::TimerProgress_Timer() {
    const double averageSeconds = ports_.state.nLastAverage > 0 ? ports_.state.nLastAverage / 1000.0 : 1.0;
    ports_.person.SetProgressTip("Waiting for response. Average has been " + FormatFixed(averageSeconds, 2) + " seconds...");
    ports_.events.DoEvents();
    for (std::int32_t& ticks : nProgressTicks_)
        ++ticks;
    const std::int32_t shown = nProgressTicks_.empty() ? 0 : nProgressTicks_.back();
    const auto elapsed = static_cast<double>(shown * ports_.TimerProgress.Interval().count());
    const double share = elapsed / (averageSeconds * 1000.0 * kFullAtAverages);
    ports_.person.SetProgress(static_cast<int>(std::min(share, 1.0) * kBarMaximum), kBarMaximum);
}

}  // namespace korvane
