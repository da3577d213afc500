// The small text file in which a resource monitor keeps its settings: a line for each key, and the values as text, whatever they
// stand for.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/files.h"

namespace korvane {

/// What all the monitors have. `files` must outlive this.
class AlertSettings {
public:
    virtual ~AlertSettings() = default;

    /// Reads the file. A key may stand anywhere in its line, in its own upper and lower case; the value is what follows the first
    /// "=" of the line. Lines without a key are passed over, and the last line of a key counts. What the file does not name stays
    /// as it is, and so does everything when it can't be read.
    virtual void OpenFile();

    /// Writes the file anew. What could not be written is reported by nothing.
    void UpdateData();

    /// The address to notify; blank: that of the first server entry.
    const std::string& getEmail() const { return Get(kEmail); }
    void setEmail(std::string_view text) { Set(kEmail, text); }

    /// "1": the monitor is switched off. Any other text: it is on.
    const std::string& getDisable() const { return Get(kDisable); }
    void setDisable(std::string_view text) { Set(kDisable, text); }

protected:
    static constexpr std::string_view kEmail = "EMAIL=";
    static constexpr std::string_view kDisable = "DISABLE=";

    /// `keys` in the order in which they are looked for and written; every one is a literal.
    AlertSettings(Files& files, const std::string& dir, std::string_view file, std::initializer_list<std::string_view> keys);
    AlertSettings(const AlertSettings&) = delete;
    AlertSettings& operator=(const AlertSettings&) = delete;

    const std::string& Get(std::string_view key) const { return values_[IndexOf(key)].second; }
    void Set(std::string_view key, std::string_view text) { values_[IndexOf(key)].second = text; }

    /// A line without any of the keys, and what stands behind its first "=".
    virtual void TakeOther(std::string_view /*line*/, std::string_view /*value*/) {}
    /// Lines behind those of the keys, without their ends.
    virtual std::vector<std::string> OtherLines() const { return {}; }

private:
    void TakeLine(std::string_view line);
    std::size_t IndexOf(std::string_view key) const;

    Files& files_;
    std::string path_;
    std::vector<std::pair<std::string_view, std::string>> values_;
};

/// What the monitors of a share have beside: the level at which they alert.
class LevelSettings : public AlertSettings {
public:
    /// In percent; blank: no alert.
    const std::string& getAlert() const { return Get(kAlert); }
    void setAlert(std::string_view text) { Set(kAlert, text); }

protected:
    using AlertSettings::AlertSettings;
    static constexpr std::string_view kAlert = "ALERT_AT=";
};

}  // namespace korvane
