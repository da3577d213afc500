// Where the time of a check went, in lines for the terminal.
#pragma once

#include <string>
#include <vector>

#include "base/datetime.h"
#include "platform/check_phases.h"

namespace korvane {

/// Returns a line for each phase, such as "first byte    31.2 ms", in columns, and one for the end of the certificate. Phases that
/// did not run have none; nothing was measured: no line.
std::vector<std::string> PrintPhases(const CheckPhases& phases, DateTime now);

}  // namespace korvane
