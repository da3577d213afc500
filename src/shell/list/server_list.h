// Room `list`: the list of all entries and the commands of the main window.
//
// The list of all entries in the main window: each row has texts and a picture of its state. It is read from the table each time.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/connection.h"
#include "store/alert_path.h"

namespace korvane {

/// The pictures of a row, with the keys "good", "warn", "bad", "inactive", "downtime" and "cur".
enum class RowIcon { Good, Warn, Bad, Inactive, DownTime, Cur };

namespace column {
enum Column {
    Number,
    ServerID,
    Group,
    Status,
    NextTry,
    Interval,
    Average,
    Type,
    Port,
    ScanText,
    ShortName,
    FullName,
    LastResponse,
    Count
};
}

/// Returns the heading of the column; the first column has none.
std::string_view ColumnHead(int column);

struct ServerRow {
    bool isMonitored = false;
    std::array<std::string, column::Count> cells;
    RowIcon icon = RowIcon::Good;
    bool warns = false;        ///< the status contains a warning
    std::string strCurStatus;  ///< as it is stored, also while the row is being requested
    Value dtNextCheck = {};    ///< as it is stored: another one after each check
    std::int64_t nTriesCur = 0;
    std::optional<DateTime> since = {};  ///< of the outage or the failing, once OutageStarts has found it

    const std::string& Id() const { return cells[column::ServerID]; }
    /// Returns the entry's name in messages: its short name, or its address if there is none.
    const std::string& Name() const { return cells[cells[column::ShortName].empty() ? column::FullName : column::ShortName]; }
};

/// Returns the picture of the status as it is stored. An unknown one, written by another tool, has that of an inactive entry; own
/// network down and not checked count as failing.
RowIcon StateOf(std::string_view strCurStatus);

/// Returns all rows, starting with the entry that is due next. `requesting` marks the first row as the one that is being
/// requested. With `alertPath`, a status contains the warning of its entry. Throws Error.
std::vector<ServerRow> LoadServerList(Store& store, const std::string& connectionText, DateTime now, bool requesting,
                                      const AlertPath* alertPath = nullptr);

/// Returns "1.50 min.", "2.00 hrs.", "45 secs." or "250 ms."; for a text that is not a number "N/A", without a unit.
std::string FormatDuration(const std::string& seconds);

}  // namespace korvane
