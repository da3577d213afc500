#include "shell/list/outage_notes.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "base/text.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds kGatheringTime = 10s;
constexpr std::chrono::milliseconds kReadingTime = 4s;
constexpr std::size_t kMostSingle = 3;
constexpr std::size_t kMostInTitle = 3;
constexpr std::size_t kMostInText = 30;
constexpr std::size_t kLongestText = 200;
constexpr const char* kMore = ", ...";

/// Notification services may take the text for markup; these signs look alike and are none.
std::string WithoutMarkup(std::string text) {
    constexpr std::pair<const char*, const char*> kSigns[] = {{"&", "＆"}, {"<", "‹"}, {">", "›"}};
    for (const auto& [sign, alike] : kSigns)
        text = ReplaceAll(text, sign, alike);
    return text;
}

template <class Outages>
std::string Names(const Outages& outages, std::size_t most) {
    std::string names;
    for (std::size_t i = 0; i < std::min(most, outages.size()); ++i)
        names += (i == 0 ? "" : ", ") + outages[i].entry;
    return names + (outages.size() > most ? kMore : "");
}

}  // namespace

OutageNotes::OutageNotes(Timers& timers, std::function<void(const Note& note)> show)
    : show_(std::move(show)), timer_(timers.NewTimer("TimerNotes")) {
    timer_->SetInterval(kGatheringTime);
    timer_->OnTick([this] { ShowNext(); });
}

bool OutageNotes::IsOn(const SettingsCollection& settings) {
    const std::string* value = settings.Find(kDesktopNotes);
    return value == nullptr || *value != "False";
}

void OutageNotes::Add(const std::string& entry, bool isDown, const std::string& reason) {
    (isDown ? down_ : over_).push_back({WithoutMarkup(entry), WithoutMarkup(Left(reason, kLongestText))});
    timer_->SetEnabled(true);
}

void OutageNotes::ShowNext() {
    if (toShow_.empty()) Gather();
    show_(toShow_.front());
    toShow_.pop_front();
    timer_->SetInterval(toShow_.empty() ? kGatheringTime : kReadingTime);
    timer_->SetEnabled(!toShow_.empty() || !down_.empty() || !over_.empty());
}

void OutageNotes::Gather() {
    const auto down = std::exchange(down_, {}), over = std::exchange(over_, {});
    const bool gathered = down.size() + over.size() > kMostSingle;
    AddNotes(down, true, gathered);
    AddNotes(over, false, gathered);
}

void OutageNotes::AddNotes(const std::vector<Outage>& outages, bool isDown, bool gathered) {
    if (gathered && outages.size() > 1) {
        const std::string title = std::to_string(outages.size()) + (isDown ? " servers are DOWN: " : " servers are UP again: ");
        toShow_.push_back({title + Names(outages, kMostInTitle), Names(outages, kMostInText), isDown});
        return;
    }
    for (const Outage& each : outages)
        toShow_.push_back(
            {each.entry + (isDown ? " is DOWN" : " is UP again"), isDown ? each.reason : "The outage is over.", isDown});
}

}  // namespace korvane
