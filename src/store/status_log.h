// Status messages for the operator: short lines with the time, newest first in the window, oldest first on a terminal.
#pragma once

#include <string>
#include <string_view>

#include "base/text.h"
#include "platform/clock.h"
#include "platform/operator.h"

namespace korvane {

class StatusLog {
public:
    StatusLog(Operator& user, const Clock& clock) : user_(user), clock_(clock) {}

    /// Shows the text with the current time. Each CR LF pair becomes " : ", so that a text is one line.
    void setStatusMSG(std::string_view text) {
        std::string line = WithoutControls(text);
        for (const char* end : {"\r\n", "\n", "\r"})  // texts from this system's own libraries contain bare line feeds
            line = ReplaceAll(line, end, " : ");
        // At exactly midnight the text is the date alone: without a space nothing is cut.
        const std::string now = clock_.Now().Text();
        user_.StatusLine(now.substr(now.find(' ') + 1), line);
    }

private:
    Operator& user_;
    const Clock& clock_;
};

}  // namespace korvane
