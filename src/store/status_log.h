// Status messages for the operator: short lines with the time, newest first in the window, oldest first on a terminal.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/clock.h"
#include "platform/operator.h"

namespace korvane {

class StatusLog {
public:
    StatusLog(Operator& person, const Clock& clock) : person_(person), clock_(clock) {}

    /// Shows the text with the current time. Each CR LF pair becomes " : ", so that a text is one line.
    void setStatusMSG(std::string_view text);

    /// From now on each text goes through `filter` first.
    void SetFilter(std::function<std::string(std::string_view text)> filter) { filter_ = std::move(filter); }

private:
    Operator& person_;
    const Clock& clock_;
    std::function<std::string(std::string_view text)> filter_;
};

}  // namespace korvane
