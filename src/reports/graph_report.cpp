#include "reports/graph_report.h"

#include <exception>

#include "base/error.h"
#include "base/numbers.h"
#include "reports/columns.h"
#include "reports/format_seconds.h"
#include "reports/html_table.h"

namespace korvane {
namespace {

constexpr double kNewestWidth = 200;
constexpr int kMostHours = 26;
constexpr std::chrono::hours kDay{24};

DateTime OnTheHour(DateTime when) {
    return when - std::chrono::minutes(when.Minute()) - std::chrono::seconds(when.Second());
}

std::string Row(DateTime when, const std::string& bar) {
    return std::string(kRowBegin) + Cell("\r\n" + when.Text()) + Cell("\r\n" + bar);
}

}  // namespace

struct GraphReports::Kind {
    const char* txtType;
    std::string_view firstHeading;
    std::string_view secondHeading;
    int mostRows;   ///< 0: all
    bool showGaps;  ///< a row for each day without data
    const char* file;
    const char* routine;
};

const GraphReports::Kind GraphReports::kHourly = {"hour",
                                                  "<td  align=center><b>Last 24 hours:</b></td>",
                                                  "<td  align=center><b>Hourly Average Response Time</b></td>",
                                                  kMostHours,
                                                  false,
                                                  "hourly",
                                                  "PublishHourlyResponseTimeReport: "};
const GraphReports::Kind GraphReports::kDaily = {
    "day",   "<td  align=center><b>Daily Date:</b></td>", "<td  align=center><b>Daily Average Response Time</b></td>", 0, true,
    "daily", "PublishDailyResponseTimeReport: "};

/// The rows of a growing page, with the sum and the count for their average. Rows are never closed.
struct GraphReports::Bars {
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
        rows += Row(OnTheHour(dtCur),
                    "<img src=\"../../i/bargraph.gif\" border=0  width=" + std::to_string(RoundHalfEven(nAveResponse * scale)) +
                        " height=10> " + FormatSeconds(FormatGeneral(nAveResponse / 1000)));
        sum = CheckedInt32(RoundHalfEven(sum + nAveResponse));
        ++count;
    }

    std::string Averages() const { return count == 0 ? "" : GreyRow({CentredCell("-"), AverageCell(AverageText(sum, count))}); }
};

void GraphReports::PublishHourlyResponseTimeReport(Connection& connection, Recordset& serverRecord) {
    PublishOrSay(kHourly, connection, serverRecord);
}

void GraphReports::PublishDailyResponseTimeReport(Connection& connection, Recordset& serverRecord) {
    PublishOrSay(kDaily, connection, serverRecord);
}

void GraphReports::PublishOrSay(const Kind& kind, Connection& connection, Recordset& serverRecord) {
    try {
        Publish(kind, connection, serverRecord);
    } catch (const std::exception& error) {
        ports_.status.setStatusMSG(kind.routine + std::string(error.what()));
    }
}

void GraphReports::Publish(const Kind& kind, Connection& connection, Recordset& serverRecord) {
    const auto text = [&](const char* column) { return TextOf(serverRecord, column); };
    const std::string id = text("ID");
    const auto rs = ports_.store.NewRecordset();
    rs->Open("SELECT * FROM Response where idParent = " + id + " and txtType = '" + kind.txtType + "' order by dtCur desc",
             connection, CursorType::Static, LockType::Optimistic);
    Bars bars;
    if (!rs->Eof()) bars.SetScale(rs->Fields("nAveResponse").Value().Double());
    DateTime walking = OnTheHour(ports_.clock.Now());
    while (!rs->Eof() && (kind.mostRows == 0 || bars.count < kind.mostRows)) {
        // Only the day of the month is compared, so a gap is at most a month long.
        const DateTime dtCur = rs->Fields("dtCur").Value().When();
        if (kind.showGaps && walking.Day() != dtCur.Day()) {
            bars.rows += Row(walking, "No Data");
        } else {
            bars.Add(*rs, dtCur);
            rs->MoveNext();
        }
        walking = walking - kDay;
    }
    const std::string table =
        TableHead({kind.firstHeading, kind.secondHeading}) + bars.rows + bars.Averages() + std::string(kTableEnd);
    const std::string page =
        ports_.folder.Merge(kGraphTemplate, {table, bars.count, text("strAddress_IP") + " - " + text("strDesc")});
    ports_.folder.Write(ports_.folder.GroupFolder(text("idCustomer"), text("strGroup")) + "/" + kind.file + id + ".htm", page);
}

}  // namespace korvane
