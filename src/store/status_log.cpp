#include "store/status_log.h"

#include "base/text.h"

namespace korvane {

void StatusLog::setStatusMSG(std::string_view text) {
    std::string line = ReplaceAll(WithoutControls(filter_ ? filter_(text) : text), "\r\n", " : ");
    // Texts from this system's own libraries contain bare line feeds.
    line = ReplaceAll(ReplaceAll(line, "\n", " : "), "\r", " : ");

    // At exactly midnight the text is the date alone: without a space nothing is cut.
    std::string time = clock_.Now().Text();
    time.erase(0, time.find(' ') + 1);
    person_.StatusLine(time, line);
}

}  // namespace korvane
