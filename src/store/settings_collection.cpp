#include "store/settings_collection.h"

#include "base/error.h"

namespace korvane {

std::string SettingsCollection::getKvSettingsColVal(std::string_view key) const {
    const std::string* value = Find(key);
    if (value == nullptr) throw Error("Invalid procedure call or argument", 5);
    return *value;
}

const std::string* SettingsCollection::Find(std::string_view key) const {
    const auto found = values_.find(key);
    return found == values_.end() ? nullptr : &found->second;
}

void SettingsCollection::setKvSettingsColValue(std::string_view key, std::string value) {
    values_.insert_or_assign(std::string(key), std::move(value));
}

}  // namespace korvane
