// The small text file with the settings of a resource monitor: one line per key, with all values as text.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/files.h"

namespace korvane {

/// The settings common to all monitors. `files` must outlive this.
class AlertSettings {
public:
    virtual ~AlertSettings() = default;

    /// Reads the file. A key may be anywhere in its line and is case-sensitive; the value is what follows the first "=" of the
    /// line. Lines without a key are ignored, and the last line of a key counts. Settings that are not in the file stay
    /// unchanged, and so do all when the file cannot be read.
    virtual void OpenFile();

    /// Writes the whole file. A write error is not reported.
    void UpdateData();

    /// The address to notify; empty: that of the first server entry.
    const std::string& getEmail() const { return Get(kEmail); }
    void setEmail(std::string_view text) { Set(kEmail, text); }

    /// "1": the monitor is switched off. Any other text: it is on.
    const std::string& getDisable() const { return Get(kDisable); }
    void setDisable(std::string_view text) { Set(kDisable, text); }

protected:
    static constexpr std::string_view kEmail = "EMAIL=";
    static constexpr std::string_view kDisable = "DISABLE=";

    /// `keys` in the order in which they are searched and written; every one must be a literal.
    AlertSettings(Files& files, const std::string& dir, std::string_view file, std::initializer_list<std::string_view> keys);
    AlertSettings(const AlertSettings&) = delete;
    AlertSettings& operator=(const AlertSettings&) = delete;

    const std::string& Get(std::string_view key) const { return values_[IndexOf(key)].second; }
    void Set(std::string_view key, std::string_view text) { values_[IndexOf(key)].second = text; }

    /// Receives a line without any of the keys, and the text after its first "=".
    virtual void TakeOther(std::string_view /*line*/, std::string_view /*value*/) {}
    /// Returns the lines after those of the keys, without line ends.
    virtual std::vector<std::string> OtherLines() const { return {}; }

private:
    void TakeLine(std::string_view line);
    std::size_t IndexOf(std::string_view key) const;

    Files& files_;
    std::string path_;
    std::vector<std::pair<std::string_view, std::string>> values_;
};

/// Adds the level at which a monitor of a percentage alerts.
class LevelSettings : public AlertSettings {
public:
    /// In percent; empty: no alert.
    const std::string& getAlert() const { return Get(kAlert); }
    void setAlert(std::string_view text) { Set(kAlert, text); }

protected:
    using AlertSettings::AlertSettings;
    static constexpr std::string_view kAlert = "ALERT_AT=";
};

}  // namespace korvane
