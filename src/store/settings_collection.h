// The settings of the running program: one keyed collection of text values. The program uses only this copy; the file is read at
// start-up and written by Save.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "base/error.h"
#include "base/text.h"

namespace korvane {

class SettingsCollection {
public:
    /// Returns the value. Throws Error for a missing key; after ReadInGlobalSettings every global key exists.
    std::string getKvSettingsColVal(std::string_view key) const {
        if (const std::string* value = Find(key)) return *value;
        throw Error("Invalid procedure call or argument", 5);
    }

    /// Like getKvSettingsColVal, but returns null instead of an error. Valid until the key is set again.
    const std::string* Find(std::string_view key) const {
        const auto found = values_.find(key);
        return found == values_.end() ? nullptr : &found->second;
    }

    /// Replaces the value, or adds the key.
    void setKvSettingsColValue(std::string_view key, std::string value) {
        values_.insert_or_assign(std::string(key), std::move(value));
    }

    /// Returns whether the value is exactly the word "True".
    bool IsTrue(std::string_view key) const { return getKvSettingsColVal(key) == "True"; }

private:
    std::map<std::string, std::string, LessNoCase> values_;
};

}  // namespace korvane
