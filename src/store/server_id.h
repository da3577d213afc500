// Ids of entries, failures and response rows: a time stamp followed by a counter that never decreases. The counter makes ids
// unique.
#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <string>

#include "platform/clock.h"

namespace korvane {

class IniFile;

/// Joins the fourth digit of next year with month, day, hour, minute and second, all without leading zeros. Different moments can
/// give the same text.
std::string NewTimeStampID(const Clock& clock);

class ServerIds {
public:
    ServerIds(IniFile& settingsFile, const Clock& clock) : file_(settingsFile), clock_(clock) {}

    /// Returns a new id: digits only, above 0, within 64 bits. Immediately increments `LASTID` of section `KEYGEN` in the
    /// settings file. Two ids of one run never have the same number, even when the file cannot be written.
    std::string NewServerID();

    /// For a list that others add rows to as well: from now on the number is a random one of seven digits, and the settings file
    /// stays as it is.
    void Scatter(std::uint32_t seed) { scattered_.emplace(seed); }

private:
    IniFile& file_;
    const Clock& clock_;
    std::int64_t lastNumber_ = 0;
    std::optional<std::mt19937> scattered_;
};

}  // namespace korvane
