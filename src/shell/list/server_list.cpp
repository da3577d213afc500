#include "shell/list/server_list.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "engine/server_table.h"
#include "store/database_files.h"

namespace korvane {

namespace {

constexpr std::string_view kListQuery = "SELECT * from servers order by dtNextCheck ";
constexpr std::string_view kRequesting = "Requesting...";
constexpr std::string_view kNow = "Now...";

constexpr std::pair<std::string_view, RowIcon> kIcons[] = {
    {status::kDown, RowIcon::Bad},          {status::kFailing, RowIcon::Warn}, {status::kInactive, RowIcon::Inactive},
    {status::kDownTime, RowIcon::DownTime}, {status::kUp, RowIcon::Good},      {status::kOwnNetworkDown, RowIcon::Warn},
    {status::kNotChecked, RowIcon::Warn},
};

struct ListColumn {
    std::string_view head;
    std::string_view stored = "";  ///< what its cells show unchanged; empty: they are made of several values
};

/// In the order of column::Column.
constexpr ListColumn kListColumns[column::Count] = {
    {""},
    {"Server ID"},
    {"Group", "strGroup"},
    {"Status"},
    {"Next Try"},
    {"Interval"},
    {"Average"},
    {"Type", "strType"},
    {"Port", "strPort"},
    {"Scan Text", "strExpectedText"},
    {"Short Name", "strDesc"},
    {"Full Server Name or IP", "strAddress_IP"},
    {"Last Response", "strLastResponse"},
};

std::string RowNumber(int n) {
    return (n < 10 ? "0" : "") + std::to_string(n) + " ";
}

std::string StatusCell(Recordset& rs, const std::string& strCurStatus) {
    if (strCurStatus != status::kFailing && strCurStatus != status::kDown) return strCurStatus;
    return strCurStatus + " " + rs.Fields("ntriescur").Value().Text() + " of " + rs.Fields("ntries").Value().Text();
}

std::string NextTryCell(const Value& dtNextCheck, DateTime now, bool requested) {
    if (dtNextCheck.IsEmpty()) return "";
    const std::int64_t seconds = (dtNextCheck.When() - now).count();
    if (seconds >= 0) return FormatDuration(std::to_string(seconds));
    return requested ? std::string(kNow) : FormatDuration(std::to_string(-seconds)) + " overdue";
}

ServerRow ReadRow(Recordset& rs, int n, DateTime now, bool requested) {
    ServerRow row;
    const auto cell = [&](column::Column column) -> std::string& { return row.cells[column]; };
    row.strCurStatus = rs.Fields("strCurStatus").Value().Text();
    row.icon = requested ? RowIcon::Cur : StateOf(row.strCurStatus);
    cell(column::Number) = RowNumber(n);
    cell(column::ServerID) = std::to_string(rs.Fields("id").Value().Int64());
    cell(column::Status) = requested ? std::string(kRequesting) : StatusCell(rs, row.strCurStatus);
    for (std::size_t at = 0; at < column::Count; ++at)
        if (!kListColumns[at].stored.empty()) row.cells[at] = rs.Fields(kListColumns[at].stored).Value().Text();
    // One invalid value must hide neither its entry nor the others.
    row.isMonitored = true;  // as for the cycle, if it cannot be read
    IgnoreErrors([&] { row.isMonitored = rs.Fields("bIsMonitoring").Value().Bool(); });
    IgnoreErrors([&] { row.nTriesCur = rs.Fields("ntriescur").Value().Int64(); });
    IgnoreErrors([&] {
        row.dtNextCheck = rs.Fields("dtnextcheck").Value();
        cell(column::NextTry) = NextTryCell(row.dtNextCheck, now, requested);
    });
    cell(column::Interval) = FormatDuration(rs.Fields("nIntervalSeconds").Value().Text());
    IgnoreErrors([&] {
        const Value average = rs.Fields("nAveResponse").Value();
        cell(column::Average) = FormatGrouped(average.IsBlank() ? 0.0 : average.Double(), 2) + " sec.";
    });
    return row;
}

void AddWarning(Recordset& rs, const AlertPath& alertPath, ServerRow& row) {
    const std::string warning = alertPath.WarningOf(rs);
    row.warns = !warning.empty();
    if (row.warns) row.cells[column::Status] += ", " + warning;
}

std::string LongDuration(double seconds) {
    const double minutes = seconds / 60;
    return minutes > 60 ? FormatGrouped(minutes / 60, 2) + " hrs." : FormatGrouped(minutes, 2) + " min.";
}

}  // namespace

std::string_view ColumnHead(int column) {
    return kListColumns[column].head;
}

RowIcon StateOf(std::string_view strCurStatus) {
    for (const auto& [word, icon] : kIcons) {
        if (word == strCurStatus) return icon;
    }
    return RowIcon::Inactive;
}

std::string FormatDuration(const std::string& seconds) {
    double x = 0;
    std::int64_t whole = 0;
    const bool number = IgnoreErrors([&] {
        x = ParseNumber(seconds);
        whole = RoundHalfEven(x);
    });
    if (!number) return "N/A";
    if (x < 1) return FormatGrouped(x * 1000, 0) + " ms.";
    if (whole > 60) return LongDuration(x);
    const bool hasFraction = x < 10 && std::floor(x) != x;
    return FormatGrouped(x, hasFraction ? 2 : 0) + " secs.";
}

std::vector<ServerRow> LoadServerList(Store& store, const std::string& connectionText, DateTime now, bool requesting,
                                      const AlertPath* alertPath) {
    const auto conn = store.NewConnection();
    conn->SetConnectionString(connectionText);
    conn->Open();
    const auto rs = OpenRows(store, *conn, kListQuery, CursorType::Static);
    const bool warns = alertPath != nullptr && alertPath->IsShown();
    std::vector<ServerRow> rows;
    rows.reserve(static_cast<std::size_t>(rs->RecordCount()));
    for (int n = 1; !rs->Eof(); rs->MoveNext(), ++n) {
        rows.push_back(ReadRow(*rs, n, now, requesting && n == 1));
        if (warns) AddWarning(*rs, *alertPath, rows.back());
    }
    return rows;
}

}  // namespace korvane
