// One ICMP echo to a dotted address, measured against a limit.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "engine/check_result.h"
#include "platform/clock.h"
#include "platform/icmp_echo.h"
#include "platform/operator.h"
#include "store/log.h"
#include "store/status_log.h"

namespace korvane {

/// Results of PingHost besides a round trip time.
constexpr int kPingNoHandle = -1;
constexpr int kPingTimeout = -2;
constexpr int kPingBadReply = -3;
constexpr int kPingNotAnAddress = -4;

class PingChecker {
public:
    struct Ports {
        IcmpEcho& echo;
        const Clock& clock;
        Operator& person;
        StatusLog& status;
        Log& log;
    };

    explicit PingChecker(const Ports& ports) : ports_(ports) {}

    /// Passes when the echo came back within `nLimitMs` of wall-clock time. Blocks for up to 2 seconds; no events are delivered
    /// meanwhile, and a longer limit does not lengthen the wait.
    CheckResult DoPingRequest(const std::string& strServer, std::int16_t nLimitMs);

    /// Returns the round trip time in milliseconds, or one of the codes above. After a timeout the code may be 0; `strReason`
    /// then shows the failure.
    int PingHost(const std::string& strServer, std::string& strReason);

private:
    void LogWhatToAllow(const std::string& whyNot);

    Ports ports_;
    std::string loggedWhyNot_;
};

/// Returns whether the text is four numbers from 0 to 255 separated by ".".
bool IsValidIPAddress(std::string_view text);

}  // namespace korvane
