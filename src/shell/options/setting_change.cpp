#include "shell/options/setting_change.h"

#include <algorithm>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "shell/options/options_inputs.h"
#include "shell/options/safeguard_inputs.h"

namespace korvane {
namespace {

constexpr std::string_view kPageFolder = "ReportPath";
constexpr std::pair<std::string_view, const char*> kSettingMarks[] = {{"true", "True"},   {"yes", "True"}, {"on", "True"},
                                                                      {"false", "False"}, {"no", "False"}, {"off", "False"}};

std::string StoredSwitch(const std::string& key, const std::string& value) {
    const auto* const found =
        std::ranges::find(kSettingMarks, ToLower(Trim(value)), [](const auto& each) { return std::string(each.first); });
    if (found == std::end(kSettingMarks)) throw Error(key + ": '" + value + "' is neither True nor False.");
    return found->second;
}

std::string StoredInput(const Desk& desk, const OptionsInput& input, const std::string& value) {
    const std::string key(input.key);
    if (input.mark != nullptr) return StoredSwitch(key, value);
    OptionsFields fields = OptionsFromSettings(desk.collection);
    fields.*input.text = value;
    if (input.key == kPageFolder && Trim(value).empty()) throw Error(key + ": the pages need a folder.");
    if (const std::string refusal = RefusalOf(input, fields); !refusal.empty())
        throw Error(refusal.starts_with(key + ":") ? refusal : key + ": " + refusal);
    return input.stored(value, fields).value_or("");
}

}  // namespace

std::vector<SettingInfo> AllSettings() {
    std::vector<SettingInfo> all;
    const auto add = [&](std::string_view key, std::string meaning) {
        all.push_back({std::string(key), std::move(meaning), Holds(key, "Pass")});
    };
    for (const OptionsInput& input : OptionsInputs())
        add(input.key, Or(input.control.help, ReplaceAll(input.control.label, "&", "")));
    for (const Safeguard& safeguard : SafeguardsOfPage())
        add(safeguard.key, std::string(safeguard.protects));
    return all;
}

std::string StoredSetting(const Desk& desk, const std::string& key, const std::string& value) {
    if (value.size() > kIniValueLimit || value.find_first_of("\r\n") != std::string::npos)
        throw Error(key + ": a value is one line of at most " + std::to_string(kIniValueLimit) + " characters.");
    const auto input = std::ranges::find(OptionsInputs(), key, [](const OptionsInput& each) { return std::string(each.key); });
    if (input != OptionsInputs().end()) return StoredInput(desk, *input, value);
    const Safeguard* const safeguard = FindSafeguard(key);
    if (safeguard == nullptr) throw Error("There is no setting '" + key + "'.");
    const bool isMark = safeguard->value == SafeguardValue::Switch && !Trim(value).empty();
    std::string stored = isMark ? StoredSwitch(key, value) : Trim(value);
    if (const auto refused = RefusedSafeguard(desk, {{key, stored}})) throw Error(refused->message);
    return stored;
}

void WriteSetting(const Desk& desk, const std::string& key, const std::string& stored) {
    if (const std::string problem = desk.settingsFile.Problem(); !problem.empty()) throw Error(problem);
    desk.settingsFile.Write(kSettingsSection, key, stored);
    if (const std::string& error = desk.settingsFile.LastWriteError(); !error.empty()) throw Error(error);
    desk.collection.setKvSettingsColValue(key, stored);
}

void FollowSetting(const Desk& desk, const std::string& key) {
    if (EqualsNoCase(key, kPageFolder)) IgnoreErrors([&] { desk.files.CreateFolder(desk.collection.getKvSettingsColVal(key)); });
    desk.legacyLog.setLogTimer();
    desk.safeguards.TellProblems();
    desk.followSafeguards();
}

}  // namespace korvane
