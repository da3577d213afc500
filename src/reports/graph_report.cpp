// The response times of one server as bars, one row per hour or one row per day: two pages of one design.
#include "base/error.h"
#include "base/numbers.h"
#include "reports/page_parts.h"
#include "reports/pages.h"

namespace korvane {
namespace {

constexpr double kNewestWidth = 200;
constexpr std::chrono::hours kDay{24};

struct GraphKind {
    const char* txtType;
    const char* firstHeading;
    const char* secondHeading;
    int mostRows;   ///< 0: all
    bool showGaps;  ///< a row for each day without data
    const char* file;
};
constexpr GraphKind kHourly = {"hour", "Last 24 hours:", "Hourly Average Response Time", 26, false, "hourly"};
constexpr GraphKind kDaily = {"day", "Daily Date:", "Daily Average Response Time", 0, true, "daily"};

DateTime OnTheHour(DateTime when) {
    return when - std::chrono::minutes(when.Minute()) - std::chrono::seconds(when.Second());
}

std::string GraphRow(DateTime when, const std::string& bar) {
    return std::string(kRowBegin) + Cell("\r\n" + when.Text()) + Cell("\r\n" + bar);
}

/// The rows of a growing page, with the sum and the count for their average. Rows are never closed.
struct Bars {
    double scale = 0;
    std::int32_t sum = 0;
    int count = 0;
    std::string rows;

    void SetScale(double newest) {
        if (newest == 0) throw Error("Division by zero", 11);
        scale = kNewestWidth / newest;
    }

    void Add(Recordset& rs, DateTime dtCur) {
        const double nAveResponse = rs.Fields("nAveResponse").Value().Double();
        rows += GraphRow(OnTheHour(dtCur), "<img src=\"../../i/bargraph.gif\" border=0  width=" +
                                               std::to_string(RoundHalfEven(nAveResponse * scale)) + " height=10> " +
                                               FormatSeconds(FormatGeneral(nAveResponse / 1000)));
        sum = CheckedInt32(RoundHalfEven(sum + nAveResponse));
        ++count;
    }

    std::string Averages() const { return count == 0 ? "" : GreyRow({BoldCell("-"), AverageCell(AverageText(sum, count))}); }
};

void WriteGraph(const GraphKind& kind, const Publication& publication, Recordset& serverRecord) {
    const auto text = [&](const char* column) { return TextOf(serverRecord, column); };
    const std::string id = text("ID");
    const auto rs = publication.Read("SELECT * FROM Response where idParent = " + id + " and txtType = '" + kind.txtType +
                                     "' order by dtCur desc");
    Bars bars;
    if (!rs->Eof()) bars.SetScale(rs->Fields("nAveResponse").Value().Double());
    DateTime walking = OnTheHour(publication.clock.Now());
    while (!rs->Eof() && (kind.mostRows == 0 || bars.count < kind.mostRows)) {
        // Only the day of the month is compared, so a gap is at most a month long.
        const DateTime dtCur = rs->Fields("dtCur").Value().When();
        if (kind.showGaps && walking.Day() != dtCur.Day()) {
            bars.rows += GraphRow(walking, "No Data");
        } else {
            bars.Add(*rs, dtCur);
            rs->MoveNext();
        }
        walking = walking - kDay;
    }
    const std::string table = TableHead({BoldCell(kind.firstHeading), BoldCell(kind.secondHeading)}) + bars.rows +
                              bars.Averages() + std::string(kTableEnd);
    const std::string page = publication.folder.Merge(
        kGraphTemplate, {table, bars.count, publication.Shown(text("strAddress_IP") + " - " + text("strDesc"))});
    publication.folder.Write(publication.folder.GroupFolder(text("idCustomer"), text("strGroup")) + "/" + kind.file + id + ".htm",
                             page);
}

}  // namespace

void PublishHourlyResponseTimeReport(const Publication& publication, Recordset& serverRecord) {
    publication.OrSay("PublishHourlyResponseTimeReport: ", [&] { WriteGraph(kHourly, publication, serverRecord); });
}

void PublishDailyResponseTimeReport(const Publication& publication, Recordset& serverRecord) {
    publication.OrSay("PublishDailyResponseTimeReport: ", [&] { WriteGraph(kDaily, publication, serverRecord); });
}

}  // namespace korvane
