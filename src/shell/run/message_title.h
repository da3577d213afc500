// The title of the messages to the operator.
#pragma once

namespace korvane {

constexpr const char* kMessageTitle = "Korvane";

}  // namespace korvane
