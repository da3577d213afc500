#include "reports/failure_report.h"

#include <exception>

#include "reports/columns.h"
#include "reports/html_table.h"
#include "reports/write_batch.h"

namespace korvane {
namespace {

constexpr int kTrimAbove = 50;
constexpr int kKept = 40;

/// Rows of the page in memory at once: after a long time without publishing there may be too many for memory.
constexpr int kRowsHeld = 2000;

constexpr std::string_view kFailing =
    "<img src=../../i/failing.gif width=16 height=16 alt=\"Failed, but not yet reached the maximum failure count. No action was "
    "taken or notification sent.\">";
constexpr std::string_view kDown =
    "<img src=../../i/down.gif width=16 height=16 alt=\"Reached maximum failure count. Email Notification send and any failure "
    "commands executed.\">";

std::string QueryOf(const std::string& id) {
    return "SELECT * FROM failures where idparent=" + id + " order by datefail desc";
}

std::string RowOf(Recordset& rs) {
    const auto text = [&](const char* column) { return TextOf(rs, column); };
    const double nFailCount = NumberOf(rs, "nFailCount");
    const double nFailMax = NumberOf(rs, "nFailMax");
    const std::string counts = text("nFailCount") + " of " + text("nFailMax");
    std::string row(kRowBegin);
    row += Cell(nFailCount < nFailMax ? kFailing : kDown, "<td align=center width=10%>");
    row += Cell("\r\n" + text("dateFail"), "<td width=15%>");
    row += Cell("\r\n<b>" + text("strDesc") + "</b> (" + text("strAddress_IP") + ") ", "<td width=15%>");
    row += Cell("\r\nFailure " + (nFailCount == nFailMax ? "<b><font color=red>" + counts + "</b></font>" : counts),
                "<td width=10%>");
    row += Cell("\r\nTime-Out: " + text("nTimeout") + "\r\n<br>Port: [" + text("strPort") + "]", "<td width=25%>");
    row += Cell("\r\n" + text("strReason"), "<td width=25%>");
    row += Cell("\r\n" + text("strAction"), "<td width=25%>");
    return row.append(kRowEnd);
}

}  // namespace

void FailureReport::PublishFailureReport(const std::string& id, const std::string& idCustomer, const std::string& strGroup,
                                         Connection& connection, std::string& strErr) {
    const auto orAdd = [&](const auto& work) {
        try {
            work();
        } catch (const std::exception& error) {
            strErr += " PublishFailureReport: " + std::string(error.what());
        }
    };
    orAdd([&] { Publish(id, idCustomer, strGroup, connection); });
    orAdd([&] { Trim(id, connection); });
}

void FailureReport::Publish(const std::string& id, const std::string& idCustomer, const std::string& strGroup,
                            Connection& connection) {
    const int total = RecordsOf(id, connection)->RecordCount();
    const auto table = [&](const TakeText& take) {
        take(TableHead({"<td width=10% align=center><b>Level</b></td>", "<td width=15% align=center><b>Failure Date</b></td>",
                        "<td width=15% align=center><b>Server Description</b></td>",
                        "<td width=10% align=center><b>Fail Count</b></td>", "<td width=10% align=center><b>Timeout</b></td>",
                        "<td width=25% align=center><b>Reason</b></td>", "<td width=25% align=center><b>Action Taken</b></td>"}));
        for (int first = 0; first < total; first += kRowsHeld)
            TakeRows(QueryOf(id) + " limit " + std::to_string(kRowsHeld) + " offset " + std::to_string(first), connection, take);
        take(kTableEnd);
    };
    const std::string folder = folder_.GroupFolder(idCustomer, strGroup);
    folder_.CreateFolder(folder);
    folder_.WriteLong(folder + "/failure" + id + ".htm", kFailureTemplate, {"", total, strGroup}, table);
}

void FailureReport::TakeRows(const std::string& query, Connection& connection, const TakeText& take) {
    const auto rs = store_.NewRecordset();
    std::string rows;
    for (rs->Open(query, connection, CursorType::Static, LockType::BatchOptimistic); !rs->Eof(); rs->MoveNext())
        rows += RowOf(*rs);
    take(rows);
}

void FailureReport::Trim(const std::string& id, Connection& connection) {
    const auto rs = RecordsOf(id, connection);
    if (rs->RecordCount() <= kTrimAbove) return;
    WriteBatch batch(connection);
    for (int row = 0; !rs->Eof(); ++row, rs->MoveNext()) {
        if (row >= kKept) rs->Delete();
    }
    batch.Commit();
}

std::unique_ptr<Recordset> FailureReport::RecordsOf(const std::string& id, Connection& connection) {
    auto rs = store_.NewRecordset();
    rs->Open(QueryOf(id), connection, CursorType::Keyset, LockType::Optimistic);
    return rs;
}

}  // namespace korvane
