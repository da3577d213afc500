// Room `list`: the list of all entries and the commands of the main window.
//
// The list of all entries as the main window shows it: a row of texts for each, and the picture of its state. Read anew from
// the table each time.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/connection.h"

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

/// The heads of the columns; the first has none.
extern const std::array<std::string_view, column::Count> kColumnHeads;

struct ServerRow {
    std::array<std::string, column::Count> cells;
    RowIcon icon = RowIcon::Good;

    const std::string& Id() const { return cells[column::ServerID]; }
    /// What messages call the entry: its short name, or its address without one.
    const std::string& Name() const { return cells[cells[column::ShortName].empty() ? column::FullName : column::ShortName]; }
};

/// All rows, the entry that is due next first. `requesting` marks the first row as the one that is being requested. Throws Error.
std::vector<ServerRow> LoadServerList(Store& store, const std::string& connectionText, DateTime now, bool requesting);

/// "1.50 min.", "2.00 hrs.", "45 secs.", "250 ms."; "N/A secs." never: a text that is no number gives "N/A".
std::string FormatDuration(const std::string& seconds);

}  // namespace korvane
