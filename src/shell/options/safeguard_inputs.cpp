#include "shell/options/safeguard_inputs.h"

#include <algorithm>

#include "shell/options/options_inputs.h"

namespace korvane {
namespace {

constexpr const char* kOn = "True";

/// What the page shows of the value: a switch shows only whether it is on.
std::string Shown(std::string_view key, const std::string& value) {
    const bool isSwitch = FindSafeguard(key)->value == SafeguardValue::Switch;
    return isSwitch && value != kOn ? "" : value;
}

bool IsOnAnotherPage(std::string_view key) {
    const auto inputs = OptionsInputs();
    return std::any_of(inputs.begin(), inputs.end(), [&](const OptionsInput& input) { return EqualsNoCase(input.key, key); });
}

}  // namespace

std::vector<Safeguard> SafeguardsOfPage() {
    std::vector<Safeguard> all(AllSafeguards().begin(), AllSafeguards().end());
    std::erase_if(all, [](const Safeguard& safeguard) { return IsOnAnotherPage(safeguard.key); });
    return all;
}

SafeguardValues SafeguardsFromSettings(const SettingsCollection& settings) {
    SafeguardValues values;
    for (const Safeguard& safeguard : SafeguardsOfPage()) {
        const std::string* value = settings.Find(safeguard.key);
        values[std::string(safeguard.key)] = value == nullptr ? "" : Trim(*value);
    }
    return values;
}

void Recommend(SafeguardValues& values) {
    for (const Safeguard& safeguard : SafeguardsOfPage())
        if (!safeguard.recommended.empty()) values[std::string(safeguard.key)] = safeguard.recommended;
}

// A value that needs another one is found by the safeguards themselves, which begin each problem with its key.
std::optional<SafeguardRefusal> RefusedSafeguard(const Desk& desk, const SafeguardValues& values) {
    SettingsCollection settings = desk.collection;
    for (const auto& [key, value] : values)
        settings.setKvSettingsColValue(key, value);
    for (const std::string& problem : Safeguards(settings, desk.clock, desk.log, desk.status).Problems()) {
        const std::string key = problem.substr(0, problem.find(':'));
        if (values.contains(key)) return SafeguardRefusal{key, problem};
    }
    return std::nullopt;
}

void SetSafeguards(const Desk& desk, const SafeguardValues& values) {
    const SafeguardValues former = SafeguardsFromSettings(desk.collection);
    for (const auto& [key, typed] : values) {
        const std::string value = Trim(typed);
        if (Shown(key, value) != Shown(key, former.at(key))) desk.collection.setKvSettingsColValue(key, value);
    }
}

}  // namespace korvane
