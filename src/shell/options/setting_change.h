// One setting at a time, by the key that the settings file has for it: the rules are those of the settings dialog.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "shell/run/desk.h"

namespace korvane {

struct SettingInfo {
    std::string key;
    std::string meaning;  ///< a sentence, or the label of its control
    bool isPassword = false;
};

/// Returns all that the settings dialog offers, in the order of its tables.
std::vector<SettingInfo> AllSettings();

/// Returns what the setting becomes. Throws Error for a value that the dialog refuses.
std::string StoredSetting(const Desk& desk, const std::string& key, const std::string& value);

/// Puts the value into the collection and, alone, into the settings file. Throws Error when the file cannot be written.
void WriteSetting(const Desk& desk, const std::string& key, const std::string& stored);

/// Lets the running program follow the change.
void FollowSetting(const Desk& desk, const std::string& key);

}  // namespace korvane
