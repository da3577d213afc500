// Where the time of a check went, in lines for the terminal.
#pragma once

#include <QJsonObject>
#include <string>
#include <vector>

#include "base/datetime.h"
#include "platform/check_phases.h"

namespace korvane {

/// Returns a line for each phase, such as "first byte    31.2 ms", in columns, and one for the end of the certificate. Phases that
/// did not run have none; nothing was measured: no line.
std::vector<std::string> PrintPhases(const CheckPhases& phases, DateTime now);

/// Returns the same in milliseconds, with the texts of a conversation under "steps"; what did not run is absent.
QJsonObject PhasesForJson(const CheckPhases& phases);

}  // namespace korvane
