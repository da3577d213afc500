// Status messages for the operator: short lines with the time, newest first in the window, oldest first on a terminal.
#pragma once

#include <string_view>

#include "platform/clock.h"
#include "platform/operator.h"

namespace korvane {

class StatusLog {
public:
    StatusLog(Operator& person, const Clock& clock) : person_(person), clock_(clock) {}

    /// Shows the text with the current time. Each CR LF pair becomes " : ", so that a text is one line.
    void setStatusMSG(std::string_view text);

private:
    Operator& person_;
    const Clock& clock_;
};

}  // namespace korvane
