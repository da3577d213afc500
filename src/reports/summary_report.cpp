#include "reports/summary_report.h"

#include <algorithm>
#include <exception>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "reports/columns.h"
#include "reports/format_seconds.h"
#include "reports/html_table.h"

namespace korvane {
namespace {

struct StatusCell {
    std::string_view word;  ///< in lower case
    std::string_view contents;
};
constexpr StatusCell kStatusCells[] = {
    {"up", "<img src=../../i/up.gif width=32 height=32 alt=\"Server is Up\"><br><b>UP</b>"},
    {"down", "<img src=../../i/down.gif width=32 height=32 alt=\"Server is Down and in Failure state!\"><br><b>Down!</b>"},
    {"down-time",
     "<img src=../../i/downtime.gif width=32 height=32 alt=\"Scheduled server down time.  Monitoring temporarily "
     "suspended\"><br><b>Down-Time</b>"},
    {"failing",
     "<img src=../../i/failing.gif width=32 height=32 alt=\"Failing, but not reached maximum failure count "
     "yet.\"><br><b>Failing</b>"},
    {"inactive",
     "<img src=../../i/inactive.gif width=32 height=32 alt=\"Server is Inactive - Settings are set to ignore this "
     "device.\"><br><b>Inactive</b>"},
};

constexpr std::string_view kGraphPicture =
    "<img src=\"../../i/graph_16.gif\" height=16 width=16 border=0 alt=\"CLICK HERE to see response time graph\">";

std::string StatusContents(const std::string& strCurStatus) {
    const std::string word = ToLower(strCurStatus);
    const auto* found =
        std::find_if(std::begin(kStatusCells), std::end(kStatusCells), [&](const StatusCell& cell) { return cell.word == word; });
    return found == std::end(kStatusCells) ? "" : "\r\n" + std::string(found->contents);
}

std::string TypeContents(const std::string& strType, const std::string& strPort) {
    return "\r\n<img src=\"../../i/" + ReplaceAll(ToLower(strType), " ", "_") +
           ".gif\" width=32 height=32 alt=\"TCP/IP server\"><br><b>" + strType + "</b> - port [" + strPort + "]";
}

std::string AverageLine(double nAveResponse) {
    const std::string opening = "<br>Average Response Time: <b><font color=red>";
    if (nAveResponse > 1000) return opening + FormatGrouped(nAveResponse / 1000, 2) + " sec.</font></b>";
    return opening + FormatGrouped(nAveResponse, 0) + " ms.</font></b>";
}

std::string DescriptionContents(Recordset& rs) {
    return "\r\n<b>" + TextOf(rs, "strDesc") + "</b> (" + TextOf(rs, "strAddress_IP") + ") \r\n" +
           AverageLine(NumberOf(rs, "nAveResponse")) + "\r\n<br>Maximum Time-out Value: " + TextOf(rs, "nTimeout") +
           (TextOf(rs, "strType") == "PING" ? " ms" : " seconds.");
}

std::string FailureLink(const std::string& id, const std::string& text) {
    return "<a href=failure" + id + ".htm>" + text + "</a>";
}

// A server that never succeeded has its date here but no link in the up-time cell: the two conditions differ at 0.
std::string ActivityContents(Recordset& rs, const std::string& id, double nPercentUp) {
    const bool failed = nPercentUp < 100 && nPercentUp >= 0;
    return "\r\nLast Check: " + TextOf(rs, "dateLastCheck") +
           "<br>Last Failure: " + (failed ? FailureLink(id, TextOf(rs, "dateLastFail")) : "[N/A]") +
           "\r\n<br>Stats Reset: " + TextOf(rs, "dateLastReset");
}

std::string UpTimeContents(Recordset& rs, const std::string& id, double nPercentUp) {
    const std::string counts = "\r\n" + TextOf(rs, "nSuccess") + " successful requests.\r\n<br>" + TextOf(rs, "nFail") +
                               " failed requests.\r\n<br>Percent UP-Time: <b>" + FormatGrouped(nPercentUp, 2) + "%</b>";
    return nPercentUp < 100 && nPercentUp > 0 ? counts + "\r\n<br>" + FailureLink(id, "Failure Report") : counts;
}

bool FailedSince(DateTime lastPublish, Recordset& rs) {
    const Value dateLastFail = rs.Fields("dateLastFail").Value();
    return !dateLastFail.IsEmpty() && dateLastFail.When() >= lastPublish;
}

}  // namespace

/// Averages of the servers that are up.
struct SummaryReport::Averages {
    int up = 0;
    double response = 0;
    double percentUp = 0;

    void Add(Recordset& rs) {
        if (ToLower(TextOf(rs, "strCurStatus")) != "up") return;
        ++up;
        response += NumberOf(rs, "nAveResponse");
        percentUp += NumberOf(rs, "nPercentUp");
    }

    std::string Row() const {
        if (up == 0) return "";
        const std::string dash = CentredCell("-");
        return GreyRow({dash, dash, dash, AverageCell(AverageText(response, up)), dash,
                        AverageCell(FormatGrouped(percentUp / up, 2) + "</b>%"), dash});
    }
};

void SummaryReport::PublishSummaryReport(const std::string& strGroup, Connection& connection, std::string& strErr, bool bQuiet,
                                         DateTime lastPublish) {
    try {
        Publish(strGroup, connection, strErr, bQuiet, lastPublish);
    } catch (const std::exception& error) {
        strErr += " PublishSummaryReport: " + std::string(error.what());
        IgnoreErrors([&] { TrimFailures(strGroup, connection, lastPublish); });
    }
}

// For a group whose page failed before all of its servers were handled.
void SummaryReport::TrimFailures(const std::string& strGroup, Connection& connection, DateTime lastPublish) {
    const auto rs = ports_.store.NewRecordset();
    rs->Open("SELECT * FROM Servers where strGroup = '" + ReplaceAll(strGroup, "'", "''") + "'", connection, CursorType::Static,
             LockType::BatchOptimistic);
    for (; !rs->Eof(); rs->MoveNext()) {
        if (FailedSince(lastPublish, *rs)) ports_.failures.Trim(TextOf(*rs, "ID"), connection);
    }
}

void SummaryReport::Publish(const std::string& strGroup, Connection& connection, std::string& strErr, bool bQuiet,
                            DateTime lastPublish) {
    ports_.status.setStatusMSG("Summary Report: Getting " + strGroup + " Records...");
    const std::string query =
        "SELECT * FROM Servers where strGroup = '" + strGroup + "' order by strCurStatus, nAveResponse desc";
    const auto rs = ports_.store.NewRecordset();
    rs->Open(query, connection, CursorType::Static, LockType::BatchOptimistic);
    const int total = rs->RecordCount();
    ports_.status.setStatusMSG("     " + std::to_string(total) + " " + strGroup + " records found.");
    const std::string idCustomer = TextOf(*rs, "idCustomer");
    ports_.folder.EnterGroup(strGroup);
    const std::string groupFolder = ports_.folder.GroupFolder(idCustomer, strGroup);
    ports_.folder.CreateFolder(groupFolder);  // the pages of its servers are written first

    std::string table = TableHead({"<td  align=center><b>Status</b></td>", "<td  align=center><b>Type</b></td>",
                                   "<td  align=center><b>Interval</b></td>", "<td  align=center><b>Server Description</b></td>",
                                   "<td  align=center><b>Recent Activity</b></td>", "<td  align=center><b>Up-Time</b></td>",
                                   "<td  align=center><b>Graphs</b></td>"});
    const std::vector<bool> saved = SaveAverages(query, connection);
    Averages averages;
    for (std::size_t row = 0; !rs->Eof(); ++row, rs->MoveNext()) {
        ports_.events.DoEvents();
        if (!bQuiet && row < saved.size() && saved[row]) PublishGraphs(connection, *rs);
        table += RowOf(*rs, groupFolder);
        averages.Add(*rs);
        if (!FailedSince(lastPublish, *rs)) continue;
        ports_.status.setStatusMSG("Recent failure recorded for " + TextOf(*rs, "strAddress_IP") +
                                   ". Updating Failure Report...");
        ports_.failures.PublishFailureReport(TextOf(*rs, "ID"), idCustomer, strGroup, connection, strErr);
    }
    table += averages.Row();
    table += kTableEnd;
    ports_.folder.Write(groupFolder + "/summary.htm", ports_.folder.Merge(kSummaryTemplate, {table, total, strGroup}));
    ports_.folder.EnsurePictures();
}

// Runs before the rows are written, so that it waits for the disk a few times instead of hundreds of times. Nothing else runs
// between the two queries, so their rows are the same.
std::vector<bool> SummaryReport::SaveAverages(const std::string& query, Connection& connection) {
    const auto servers = ports_.store.NewRecordset();
    servers->Open(query, connection, CursorType::Static, LockType::BatchOptimistic);
    std::vector<bool> saved;
    while (!servers->Eof()) {
        if (!saved.empty()) ports_.events.DoEvents();
        ports_.responseTimes.SaveSome(connection, *servers, saved);
    }
    return saved;
}

void SummaryReport::PublishGraphs(Connection& connection, Recordset& server) {
    ports_.graphs.PublishHourlyResponseTimeReport(connection, server);
    ports_.graphs.PublishDailyResponseTimeReport(connection, server);
}

std::string SummaryReport::RowOf(Recordset& rs, const std::string& groupFolder) {
    const std::string id = TextOf(rs, "ID");
    const double nPercentUp = NumberOf(rs, "nPercentUp");
    std::string row(kRowBegin);
    row += Cell(StatusContents(TextOf(rs, "strCurStatus")));
    row += Cell(TypeContents(TextOf(rs, "strType"), TextOf(rs, "strPort")));
    row += Cell("\r\n" + FormatSeconds(TextOf(rs, "nIntervalSeconds")));
    row += Cell(DescriptionContents(rs));
    row += Cell(ActivityContents(rs, id, nPercentUp));
    row += Cell(UpTimeContents(rs, id, nPercentUp));
    row += Cell(GraphLinks(groupFolder, id));
    return row.append(kRowEnd);
}

std::string SummaryReport::GraphLinks(const std::string& groupFolder, const std::string& id) {
    const auto link = [&](const char* kind, const char* label, const std::string& before) {
        const std::string page = kind + id + ".htm";
        if (!ports_.folder.Exists(groupFolder + "/" + page)) return before + "None yet";
        return before + "<a href=\"" + page + "\">" + std::string(kGraphPicture) + " " + label + "</a>";
    };
    return link("hourly", "Hourly", "\r\n") + link("daily", "Daily", "\r\n<br>");
}

}  // namespace korvane
