#include "reports/failure_report.h"

#include <exception>

#include "reports/columns.h"
#include "reports/html_table.h"
#include "reports/write_batch.h"

namespace korvane {
namespace {

constexpr int kTrimAbove = 50;
constexpr int kKept = 40;

constexpr std::string_view kFailing =
    "<img src=../../i/failing.gif width=16 height=16 alt=\"Failed, but not yet reached the maximum failure count. No action was "
    "taken or notification sent.\">";
constexpr std::string_view kDown =
    "<img src=../../i/down.gif width=16 height=16 alt=\"Reached maximum failure count. Email Notification send and any failure "
    "commands executed.\">";

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
    try {
        Publish(id, idCustomer, strGroup, connection);
    } catch (const std::exception& error) {
        strErr += " PublishFailureReport: " + std::string(error.what());
    }
}

void FailureReport::Publish(const std::string& id, const std::string& idCustomer, const std::string& strGroup,
                            Connection& connection) {
    const std::string query = "SELECT * FROM failures where idparent=" + id + " order by datefail desc";
    const auto rs = store_.NewRecordset();
    rs->Open(query, connection, CursorType::Static, LockType::BatchOptimistic);
    const int total = rs->RecordCount();
    std::string table =
        TableHead({"<td width=10% align=center><b>Level</b></td>", "<td width=15% align=center><b>Failure Date</b></td>",
                   "<td width=15% align=center><b>Server Description</b></td>",
                   "<td width=10% align=center><b>Fail Count</b></td>", "<td width=10% align=center><b>Timeout</b></td>",
                   "<td width=25% align=center><b>Reason</b></td>", "<td width=25% align=center><b>Action Taken</b></td>"});
    for (; !rs->Eof(); rs->MoveNext())
        table += RowOf(*rs);
    rs->Close();
    if (total > kTrimAbove) Trim(query, connection);
    table += kTableEnd;
    const std::string folder = folder_.GroupFolder(idCustomer, strGroup);
    folder_.CreateFolder(folder);
    folder_.Write(folder + "/failure" + id + ".htm", folder_.Merge(kFailureTemplate, {table, total, strGroup}));
}

void FailureReport::Trim(const std::string& query, Connection& connection) {
    const auto rs = store_.NewRecordset();
    rs->Open(query, connection, CursorType::Keyset, LockType::Optimistic);
    WriteBatch batch(connection);
    for (int row = 0; !rs->Eof(); ++row, rs->MoveNext()) {
        if (row >= kKept) rs->Delete();
    }
    batch.Commit();
}

}  // namespace korvane
