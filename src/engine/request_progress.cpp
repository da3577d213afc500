#include "engine/request_progress.h"

#include <algorithm>
#include <string>

#include "base/numbers.h"

namespace korvane {
namespace {

constexpr double kFullAtAverages = 1.2;
constexpr int kBarMaximum = 100;

}  // namespace

void RequestProgress::TimerProgress_Timer() {
    const double averageSeconds = ports_.state.nLastAverage > 0 ? ports_.state.nLastAverage / 1000.0 : 1.0;
    ports_.person.SetProgressTip("Waiting for response. Average has been " + FormatFixed(averageSeconds, 2) + " seconds...");
    ports_.events.DoEvents();
    ++ports_.state.nProgressTicks;
    const auto elapsed = static_cast<double>(ports_.state.nProgressTicks * ports_.TimerProgress.Interval().count());
    const double share = elapsed / (averageSeconds * 1000.0 * kFullAtAverages);
    ports_.person.SetProgress(static_cast<int>(std::min(share, 1.0) * kBarMaximum), kBarMaximum);
}

}  // namespace korvane
