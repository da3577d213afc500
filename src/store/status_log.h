// The running commentary for the operator: short lines with the time, newest first in the window, one after the other on a
// terminal.
#pragma once

#include <string_view>

#include "platform/clock.h"
#include "platform/operator.h"

namespace korvane {

class StatusLog {
public:
    StatusLog(Operator& person, const Clock& clock) : person_(person), clock_(clock) {}

    /// Says the text with the present time. Each carriage return and line feed pair becomes " : ", so a text is one line.
    void setStatusMSG(std::string_view text);

private:
    Operator& person_;
    const Clock& clock_;
};

}  // namespace korvane
