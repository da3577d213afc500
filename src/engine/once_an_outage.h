// What was done for the outages of entries and for their ends, by `ID`, so that it is done once: the store forgets an outage whose
// row it could not write, and would have it acted on again at each check.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace korvane {

class OnceAnOutage {
public:
    /// Returns what `act` has returned in this outage; calls it only the first time.
    template <class Act>
    std::string OnOutage(std::int64_t id, Act act) {
        if (!ActedOnOutage(id)) {
            std::string done = act();
            done_[id].onOutage = std::move(done);
        }
        return *done_[id].onOutage;
    }

    /// Calls `act` only the first time.
    template <class Act>
    void OnRecovery(std::int64_t id, Act act) {
        if (ActedOnRecovery(id)) return;
        done_[id].onRecovery = true;
        act();
    }

    bool ActedOnOutage(std::int64_t id) const { return Of(id).onOutage.has_value(); }
    bool ActedOnRecovery(std::int64_t id) const { return Of(id).onRecovery; }

    /// Called when the store has recorded the check, or another outage begins.
    void Forget(std::int64_t id) { done_.erase(id); }

private:
    struct Done {
        std::optional<std::string> onOutage;
        bool onRecovery = false;
    };
    Done Of(std::int64_t id) const {
        const auto found = done_.find(id);
        return found == done_.end() ? Done{} : found->second;
    }

    std::map<std::int64_t, Done> done_;
};

}  // namespace korvane
