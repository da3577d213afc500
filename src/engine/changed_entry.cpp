#include "engine/changed_entry.h"

#include "base/text.h"

namespace korvane {
namespace {

constexpr std::size_t kMostCharacters = 1000;

}  // namespace

Variables VariablesOf(const ChangedEntry& entry) {
    const auto bounded = [](std::string_view text) { return OneLine(text, kMostCharacters); };
    return {
        {"KORVANE_ID", bounded(entry.id)},           {"KORVANE_NAME", bounded(entry.name)},
        {"KORVANE_ADDRESS", bounded(entry.address)}, {"KORVANE_TYPE", bounded(entry.type)},
        {"KORVANE_STATE", bounded(entry.state)},     {"KORVANE_REASON", bounded(entry.reason)},
        {"KORVANE_SINCE", entry.since.Stored()},
    };
}

}  // namespace korvane
