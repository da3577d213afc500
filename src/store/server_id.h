// Ids of entries, failures and response rows: a time stamp with a counter behind it that never goes down. The counter is what
// keeps ids apart.
#pragma once

#include <cstdint>
#include <string>

#include "platform/clock.h"

namespace korvane {

class IniFile;

/// The fourth digit of next year, then month, day, hour, minute and second without leading zeros, joined. Different moments
/// can give the same text.
std::string NewTimeStampID(const Clock& clock);

class ServerIds {
public:
    ServerIds(IniFile& settingsFile, const Clock& clock) : file_(settingsFile), clock_(clock) {}

    /// A new id: all digits, above 0, within 64 bits. Counts `LASTID` of section `KEYGEN` in the settings file up, at once. Two
    /// ids of one run never have the same number, even when the file cannot be written.
    std::string NewServerID();

private:
    IniFile& file_;
    const Clock& clock_;
    std::int64_t lastNumber_ = 0;
};

}  // namespace korvane
