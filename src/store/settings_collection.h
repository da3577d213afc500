// The settings of the running program: one keyed collection of text values. It is the only copy that the program
// consults; the file is read at start-up and written by Save.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "base/text.h"

namespace korvane {

class SettingsCollection {
public:
    /// The value. Throws Error for a key that is not there; after ReadInGlobalSettings every global key is.
    std::string getKvSettingsColVal(std::string_view key) const;

    /// As getKvSettingsColVal, with nothing in place of the error. Good until the key is set again.
    const std::string* Find(std::string_view key) const;

    /// Replaces the value, or adds the key.
    void setKvSettingsColValue(std::string_view key, std::string value);

    /// Whether the value is the word "True", compared exactly.
    bool IsTrue(std::string_view key) const { return getKvSettingsColVal(key) == "True"; }

private:
    std::map<std::string, std::string, LessNoCase> values_;
};

}  // namespace korvane
