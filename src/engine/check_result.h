// The result of a checker.
#pragma once

#include <chrono>
#include <string>

namespace korvane {

struct CheckResult {
    std::string response;   ///< what the server said; empty when there is nothing to show
    std::string strReason;  ///< why the check failed; empty means success
};

struct TimedCheckResult : CheckResult {
    std::chrono::milliseconds nResponseMs{0};
};

}  // namespace korvane
