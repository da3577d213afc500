// The result of a check, and the rules by which the text of an HTTP or HTTPS answer makes it fail: a text of the entry's list that
// means failure, then the one text that must be there.
#pragma once

#include <chrono>
#include <string>

#include "platform/check_phases.h"
#include "platform/connection.h"

namespace korvane {

struct CheckResult {
    std::string response;     ///< what the server said; empty when there is nothing to show
    std::string strReason;    ///< why the check failed; empty means success
    CheckPhases phases = {};  ///< what was measured; of a web page only when it was asked for
};

struct TimedCheckResult : CheckResult {
    std::chrono::milliseconds nResponseMs{0};
};

struct UrlFailure {
    bool bFailed = false;
    std::string strFailText;
    std::string strFailCommand;
};

/// Searches the answer for the texts of `ResponseFailText`, case-sensitively; the first row that matches decides. An empty fail
/// text matches every answer that is not empty. Store errors are passed to the caller.
UrlFailure IsURLFailure(Store& store, Connection& conn, const std::string& strResponse, const std::string& strID);

}  // namespace korvane
