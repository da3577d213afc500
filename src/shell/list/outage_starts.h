// Since when entries are DOWN or fail, for a list that shows the longest outage first.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "shell/list/entry_detail.h"
#include "shell/list/server_list.h"

namespace korvane {

/// Finds since when the entry is DOWN or fails: by its state and its failures, the newest first.
void FindStart(EntryDetail& detail);

class OutageStarts {
public:
    /// Fills in `since` of the rows that are DOWN or fail. The failures of an entry are read once in each outage. Throws nothing.
    void AddTo(const Desk& desk, std::vector<ServerRow>& rows);

private:
    struct Known {
        std::string strCurStatus;
        std::int64_t nTriesCur = 0;
        std::optional<DateTime> since;
    };

    std::map<std::string, Known> known_;  ///< by id
};

}  // namespace korvane
