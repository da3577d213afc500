// The rules by which an HTTP or HTTPS answer fails on its text: a text of the entry's list that means failure, then the one text
// that must be there.
#pragma once

#include <string>

#include "platform/connection.h"

namespace korvane {

struct UrlFailure {
    bool bFailed = false;
    std::string strFailText;
    std::string strFailCommand;
};

/// Looks for the texts of `ResponseFailText` in the answer, upper and lower case told apart; the first row that matches decides.
/// An empty fail text is found in every answer that is not blank. Store errors are the caller's.
UrlFailure IsURLFailure(Store& store, Connection& conn, const std::string& strResponse, const std::string& strID);

}  // namespace korvane
