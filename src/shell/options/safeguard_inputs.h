// The page Safeguards of the settings dialog: the values of all safeguards that have no input on another page.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "shell/run/desk.h"

namespace korvane {

/// As typed, by key. A switch that is not "True" is off.
using SafeguardValues = std::map<std::string, std::string, LessNoCase>;

/// In the order of their table.
std::vector<Safeguard> SafeguardsOfPage();

/// Reads the settings collection; a missing key is empty.
SafeguardValues SafeguardsFromSettings(const SettingsCollection& settings);

/// Sets what is recommended; what an operator must choose stays.
void Recommend(SafeguardValues& values);

struct SafeguardRefusal {
    std::string key;
    std::string message;
};

/// Returns the first value that is unusable, or that lacks another one.
std::optional<SafeguardRefusal> RefusedSafeguard(const Desk& desk, const SafeguardValues& values);

/// Puts the values that the operator changed into the collection. The others stay as they are, so the file keeps them, too.
void SetSafeguards(const Desk& desk, const SafeguardValues& values);

}  // namespace korvane
