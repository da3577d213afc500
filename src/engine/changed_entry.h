// What the operator's commands are told of an entry that went down or came back: variables in their environment.
#pragma once

#include <string>
#include <string_view>

#include "base/datetime.h"
#include "platform/processes.h"

namespace korvane {

struct ChangedEntry {
    std::string id = "";
    std::string name = "";
    std::string address = "";
    std::string type = "";
    std::string_view state;   ///< a word of namespace status
    std::string reason = "";  ///< of the failure; empty when it came back
    DateTime since;           ///< beginning of this state
};

/// Returns KORVANE_ID, KORVANE_NAME and so on. Servers and other people write some of these texts: each value is one line of at most
/// 1000 characters, without control characters.
Variables VariablesOf(const ChangedEntry& entry);

}  // namespace korvane
