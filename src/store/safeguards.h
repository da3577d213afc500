// The safeguards: protections that the settings file switches on, one key each. Without its key a safeguard is off, and the program
// then behaves as if it did not exist. All are read from the settings collection at the point of use, so a change works at once.
#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "store/log.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

/// What the value of a key may be. An empty value is always allowed and means off, or the default.
enum class SafeguardValue {
    Switch,      ///< "True" or "False"
    Hosts,       ///< one to three addresses or names between ";"
    WebAddress,  ///< "http://..." or "https://..."
    Security,    ///< "starttls" or "tls"
    Port,        ///< 1 to 65535
    TimeOfDay,   ///< "h:mm", 24 hours
    Text,
    Password,
};

struct Safeguard {
    std::string_view key;
    SafeguardValue value;
    std::string_view recommended;  ///< the value in a new home; empty: the operator must choose one
    std::string_view room;         ///< which acts on it
    std::string_view protects;     ///< one sentence for the operator
};

/// In the order of the settings page and of the settings file.
std::span<const Safeguard> AllSafeguards();

/// Returns null for another key.
const Safeguard* FindSafeguard(std::string_view key);
/// Returns the beginning of the settings file of a new home: the head of section Settings, and the recommended values.
std::string RecommendedSettings();

/// Returns what is wrong with the value, for the operator; empty if nothing is.
std::string ProblemOf(const Safeguard& safeguard, std::string_view value);

class Safeguards {
public:
    Safeguards(const SettingsCollection& settings, const Clock& clock, Log& log, StatusLog& status)
        : settings_(settings), clock_(clock), log_(log), status_(status) {}
    Safeguards(const Safeguards&) = delete;
    Safeguards& operator=(const Safeguards&) = delete;

    /// Returns whether the switch is "True" and every key that it needs has a usable value.
    bool IsOn(std::string_view key) const;

    /// Returns the value without spaces around it; empty if it is missing or unusable.
    std::string Text(std::string_view key) const;
    /// Returns the addresses of a Hosts key.
    std::vector<std::string> Hosts(std::string_view key) const;
    /// Returns the port, or `otherwise`.
    int Port(std::string_view key, int otherwise) const;

    /// Returns whether at least one safeguard is on. Switches and values that only refine others do not count.
    bool AnyOn() const;

    /// Returns what is wrong with the value of the key, for the operator; empty if nothing is.
    std::string Problem(std::string_view key) const;
    /// Returns one sentence for each key whose value is unusable or lacks another key; such a safeguard is off.
    std::vector<std::string> Problems() const;
    /// Writes the problems that are new since the last call to the log and the status log.
    void TellProblems();

    /// Counts one action of the safeguard and writes it to the log: `what` is a sentence. Repetitions of a sentence within an
    /// hour are counted, but not written again.
    void Acted(std::string_view key, const std::string& what);
    /// Returns how often each safeguard acted since the start.
    const std::map<std::string, std::size_t, LessNoCase>& Counts() const { return counts_; }
    /// Returns the same as a sentence for the operator.
    std::string CountsText() const;

private:
    const SettingsCollection& settings_;
    const Clock& clock_;
    Log& log_;
    StatusLog& status_;
    std::map<std::string, std::size_t, LessNoCase> counts_;
    std::map<std::string, std::chrono::milliseconds> written_;  ///< the lines of the last hour, with the clock's tick count
    std::vector<std::string> toldProblems_;
};

}  // namespace korvane
