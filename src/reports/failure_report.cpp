// The page with the failures of one server, and the trimming of those records.
#include "reports/page_parts.h"
#include "reports/pages.h"

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

std::string FailuresOf(const std::string& id) {
    return "SELECT * FROM failures where idparent=" + id + " order by datefail desc";
}

std::string FailureHead() {
    return TableHead({BoldCell("Level", "width=10%"), BoldCell("Failure Date", "width=15%"),
                      BoldCell("Server Description", "width=15%"), BoldCell("Fail Count", "width=10%"),
                      BoldCell("Timeout", "width=10%"), BoldCell("Reason", "width=25%"), BoldCell("Action Taken", "width=25%")});
}

std::string FailureRow(const Publication& publication, Recordset& rs) {
    const auto text = [&](const char* column) { return publication.Shown(rs, column); };
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
    row += Cell("\r\n" + publication.outside.Action(publication.Hidden(TextOf(rs, "strAction"))), "<td width=25%>");
    return row.append(kRowEnd);
}

void WriteFailures(const Publication& publication, const std::string& id, const std::string& idCustomer,
                   const std::string& strGroup) {
    const int total = publication.Change(FailuresOf(id))->RecordCount();
    const auto table = [&](const TakeText& take) {
        take(FailureHead());
        for (int first = 0; first < total; first += kRowsHeld) {
            const auto rs =
                publication.Read(FailuresOf(id) + " limit " + std::to_string(kRowsHeld) + " offset " + std::to_string(first));
            std::string rows;
            for (; !rs->Eof(); rs->MoveNext())
                rows += FailureRow(publication, *rs);
            take(rows);
        }
        take(kTableEnd);
    };
    const std::string folder = publication.folder.GroupFolder(idCustomer, strGroup);
    publication.folder.CreateFolder(folder);
    publication.folder.WriteLong(folder + "/failure" + id + ".htm", kFailureTemplate, {"", total, publication.Shown(strGroup)},
                                 table);
}

}  // namespace

void PublishFailureReport(const Publication& publication, const std::string& id, const std::string& idCustomer,
                          const std::string& strGroup) {
    constexpr const char* kRoutine = " PublishFailureReport: ";
    publication.OrAdd(kRoutine, [&] { WriteFailures(publication, id, idCustomer, strGroup); });
    publication.OrAdd(kRoutine, [&] { TrimFailures(publication, id); });
}

// The page of this run still shows all of them.
void TrimFailures(const Publication& publication, const std::string& id) {
    if (!publication.stores) return;
    const auto rs = publication.Change(FailuresOf(id));
    if (rs->RecordCount() <= kTrimAbove) return;
    WriteBatch batch(publication.connection);
    for (int row = 0; !rs->Eof(); ++row, rs->MoveNext()) {
        if (row >= kKept) rs->Delete();
    }
    batch.Commit();
}

}  // namespace korvane
