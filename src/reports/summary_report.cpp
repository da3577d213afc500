// The page of a group.
#include <algorithm>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "reports/page_parts.h"
#include "reports/pages.h"
#include "store/instances.h"

namespace korvane {
namespace {

struct StatusCell {
    std::string_view word;  ///< in lower case
    std::string_view contents;
};
constexpr std::string_view kNotChecked = "not checked";
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
    {"own network down",
     "<img src=../../i/failing.gif width=32 height=32 alt=\"The network of the monitor itself is down.\"><br><b>Own network "
     "down</b>"},
    {kNotChecked, "<img src=../../i/failing.gif width=32 height=32 alt=\"Cannot be checked.\"><br>"},
};

constexpr std::string_view kGraphPicture =
    "<img src=\"../../i/graph_16.gif\" height=16 width=16 border=0 alt=\"CLICK HERE to see response time graph\">";

std::string StatusContents(const std::string& strCurStatus) {
    const std::string word = ToLower(strCurStatus);
    const auto* found =
        std::find_if(std::begin(kStatusCells), std::end(kStatusCells), [&](const StatusCell& cell) { return cell.word == word; });
    return found == std::end(kStatusCells) ? "" : "\r\n" + std::string(found->contents);
}

std::string WarningOf(const Publication& publication, Recordset& rs) {
    const std::string warning = publication.alertPath.IsShown() ? publication.alertPath.WarningOf(rs) : "";
    return warning.empty() ? "" : "<br><font color=red><b>" + warning + "</b></font>";
}

// Stands below the table, only if there are safeguards.
std::string AboutSafeguards(const Publication& publication) {
    const std::string proven = publication.alertPath.Proven();
    std::string text = proven.empty() ? "" : "\r\n<br>" + proven;
    if (publication.alertPath.IsShown()) text += "\r\n<br><font size=1>" + publication.safeguards.CountsText() + "</font>";
    return text;
}

// Stands below the table, only if instances share the list.
std::string AboutInstances(const Publication& publication) {
    Instances instances(publication.store);
    const auto now = publication.connection.Now();
    const std::vector<Instance> all = now ? instances.ReadAll(publication.connection) : std::vector<Instance>();
    if (all.empty()) return "";
    std::string table = "\r\n<br>" + TableHead({BoldCell("Instance"), BoldCell("Machine"), BoldCell("Since"), BoldCell("Checks"),
                                                BoldCell("Last seen")});
    const auto text = [&](const std::string& value) { return Cell("\r\n" + publication.outside.Text(value)); };
    for (const Instance& each : all) {
        const std::string seen = each.seen.Text() + (*now - each.seen > kSilentAfter ? ", silent" : "");
        table.append(kRowBegin).append(text(each.name) + text(each.host) + text(each.started.Text()));
        table.append(text(instances.NameOf(publication.connection, each.checking)) + text(seen)).append(kRowEnd);
    }
    return table.append(kTableEnd);
}

// The last response of an entry that a safeguard set aside is the reason.
std::string WhyNotChecked(const Publication& publication, Recordset& rs) {
    if (ToLower(TextOf(rs, "strCurStatus")) != kNotChecked) return "";
    return "<b>" + ReplaceAll(ReplaceAll(publication.Hidden(TextOf(rs, "strLastResponse")), "&", "&amp;"), "<", "&lt;") + "</b>";
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

std::string DescriptionContents(const Publication& publication, Recordset& rs) {
    return "\r\n<b>" + publication.Shown(rs, "strDesc") + "</b> (" + publication.Shown(rs, "strAddress_IP") + ") \r\n" +
           AverageLine(NumberOf(rs, "nAveResponse")) + "\r\n<br>Maximum Time-out Value: " + publication.Shown(rs, "nTimeout") +
           (TextOf(rs, "strType") == "PING" ? " ms" : " seconds.");
}

std::string FailureLink(const std::string& id, const std::string& text) {
    return "<a href=failure" + id + ".htm>" + text + "</a>";
}

// A server that never succeeded has its date here but no link in the up-time cell: the two conditions differ at 0.
std::string ActivityContents(const Publication& publication, Recordset& rs, const std::string& id, double nPercentUp) {
    const bool failed = nPercentUp < 100 && nPercentUp >= 0;
    return "\r\nLast Check: " + publication.Shown(rs, "dateLastCheck") +
           "<br>Last Failure: " + (failed ? FailureLink(id, publication.Shown(rs, "dateLastFail")) : "[N/A]") +
           "\r\n<br>Stats Reset: " + publication.Shown(rs, "dateLastReset");
}

std::string UpTimeContents(const Publication& publication, Recordset& rs, const std::string& id, double nPercentUp) {
    const std::string counts = "\r\n" + publication.Shown(rs, "nSuccess") + " successful requests.\r\n<br>" +
                               publication.Shown(rs, "nFail") + " failed requests.\r\n<br>Percent UP-Time: <b>" +
                               FormatGrouped(nPercentUp, 2) + "%</b>";
    return nPercentUp < 100 && nPercentUp > 0 ? counts + "\r\n<br>" + FailureLink(id, "Failure Report") : counts;
}

bool FailedSince(DateTime lastPublish, Recordset& rs) {
    const Value dateLastFail = rs.Fields("dateLastFail").Value();
    return !dateLastFail.IsEmpty() && dateLastFail.When() >= lastPublish;
}

std::string GraphLinks(const Publication& publication, const std::string& groupFolder, const std::string& id) {
    const auto link = [&](const char* kind, const char* label, const std::string& before) {
        const std::string page = kind + id + ".htm";
        if (!publication.folder.Exists(groupFolder + "/" + page)) return before + "None yet";
        return before + "<a href=\"" + publication.outside.Link(page) + "\">" + std::string(kGraphPicture) + " " + label + "</a>";
    };
    return link("hourly", "Hourly", "\r\n") + link("daily", "Daily", "\r\n<br>");
}

std::string ServerRow(const Publication& publication, Recordset& rs, const std::string& groupFolder) {
    const std::string id = TextOf(rs, "ID");
    const std::string link = publication.outside.Link(id);
    const double nPercentUp = NumberOf(rs, "nPercentUp");
    std::string row(kRowBegin);
    row += Cell(StatusContents(TextOf(rs, "strCurStatus")) + WhyNotChecked(publication, rs) + WarningOf(publication, rs));
    row += Cell(TypeContents(publication.Shown(rs, "strType"), publication.Shown(rs, "strPort")));
    row += Cell("\r\n" + publication.outside.Text(FormatSeconds(TextOf(rs, "nIntervalSeconds"))));
    row += Cell(DescriptionContents(publication, rs));
    row += Cell(ActivityContents(publication, rs, link, nPercentUp));
    row += Cell(UpTimeContents(publication, rs, link, nPercentUp));
    row += Cell(GraphLinks(publication, groupFolder, id));
    return row.append(kRowEnd);
}

/// Averages of the servers that are up.
struct UpAverages {
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
        const std::string dash = BoldCell("-");
        return GreyRow({dash, dash, dash, AverageCell(AverageText(response, up)), dash,
                        AverageCell(FormatGrouped(percentUp / up, 2) + "</b>%"), dash});
    }
};

// Runs before the rows are written, so that it waits for the disk a few times instead of hundreds of times. Nothing else runs
// between the two queries, so their rows are the same.
std::vector<bool> SaveAverages(const Publication& publication, const std::string& query) {
    const auto servers = publication.Read(query);
    std::vector<bool> saved;
    while (!servers->Eof()) {
        if (!saved.empty()) publication.events.DoEvents();
        SaveSomeResponseTimes(publication, *servers, saved);
    }
    return saved;
}

void WriteSummary(const Publication& publication, const std::string& strGroup) {
    StatusLog& status = publication.status;
    ReportFolder& folder = publication.folder;
    status.setStatusMSG("Summary Report: Getting " + strGroup + " Records...");
    const std::string query = "SELECT * FROM Servers where strGroup = '" + publication.outside.InQuery(strGroup) +
                              "' order by strCurStatus, nAveResponse desc";
    const auto rs = publication.Read(query);
    const int total = rs->RecordCount();
    status.setStatusMSG("     " + std::to_string(total) + " " + strGroup + " records found.");
    const std::string idCustomer = TextOf(*rs, "idCustomer");
    folder.EnterGroup(strGroup);
    const std::string groupFolder = folder.GroupFolder(idCustomer, strGroup);
    folder.CreateFolder(groupFolder);  // the pages of its servers are written first

    std::string table = TableHead({BoldCell("Status"), BoldCell("Type"), BoldCell("Interval"), BoldCell("Server Description"),
                                   BoldCell("Recent Activity"), BoldCell("Up-Time"), BoldCell("Graphs")});
    const std::vector<bool> saved = SaveAverages(publication, query);
    UpAverages averages;
    for (std::size_t row = 0; !rs->Eof(); ++row, rs->MoveNext()) {
        publication.events.DoEvents();
        if (!publication.bQuiet && row < saved.size() && saved[row]) {
            PublishHourlyResponseTimeReport(publication, *rs);
            PublishDailyResponseTimeReport(publication, *rs);
        }
        table += ServerRow(publication, *rs, groupFolder);
        averages.Add(*rs);
        if (!FailedSince(publication.lastPublish, *rs)) continue;
        status.setStatusMSG("Recent failure recorded for " + TextOf(*rs, "strAddress_IP") + ". Updating Failure Report...");
        PublishFailureReport(publication, TextOf(*rs, "ID"), idCustomer, strGroup);
    }
    table += averages.Row();
    table += kTableEnd;
    table += AboutSafeguards(publication);
    table += AboutInstances(publication);
    folder.Write(groupFolder + "/summary.htm", folder.Merge(kSummaryTemplate, {table, total, publication.Shown(strGroup)}));
    folder.EnsurePictures();
}

// For a group whose page failed before all of its servers were handled.
void TrimFailuresOf(const Publication& publication, const std::string& strGroup) {
    const auto rs = publication.Read("SELECT * FROM Servers where strGroup = '" + ReplaceAll(strGroup, "'", "''") + "'");
    for (; !rs->Eof(); rs->MoveNext()) {
        if (FailedSince(publication.lastPublish, *rs)) TrimFailures(publication, TextOf(*rs, "ID"));
    }
}

}  // namespace

void PublishSummaryReport(const Publication& publication, const std::string& strGroup) {
    if (publication.OrAdd(" PublishSummaryReport: ", [&] { WriteSummary(publication, strGroup); })) return;
    IgnoreErrors([&] { TrimFailuresOf(publication, strGroup); });
}

}  // namespace korvane
