// Whole pages, byte for byte, from a small database in which each rule of a cell is met. The files hold LF where the pages have
// CRLF.
#include "reports/format_seconds.h"
#include "reports/reports_test_base.h"
#include "support/temporary_folder.h"

namespace korvane {
namespace {

std::string Golden(const std::string& name) {
    return ReplaceAll(ReadAll(KORVANE_SOURCE_DIR "/tests/reports/golden/" + name), "\n", "\r\n");
}

TEST(FormatSeconds, WritesEachRangeInItsUnit) {
    const std::pair<const char*, const char*> cases[] = {
        {"0.25", "250 ms."},
        {"0.9999", "1,000 ms."},
        {"1", "1 secs."},
        {"5.0", "5.0 secs."},
        {"9.994", "9.99 secs."},
        {"9.999", "10.00 secs."},
        {"30.5", "31 secs."},
        {"60.4", "60 secs."},
        {"60.5", "61 secs."},  // 60 when rounded to a whole number, 61 when written
        {"60.6", "1.01 min."},
        {"90", "1.50 min."},
        {"3600", "60.00 min."},
        {"3601", "1.00 hrs."},
        {"360000000", "100,000.00 hrs."},
        {"-2", "-2,000 ms."},
        {"", "N/A"},
        {"soon", "N/A"},
    };
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(FormatSeconds(seconds), text) << seconds;
}

class GoldenPages : public ReportsTest {
protected:
    GoldenPages() {
        const DateTime afternoon = DateTime::Of(2026, 11, 21, 15, 4);
        AddServer(101, {{"strCurStatus", "UP"}, {"nAveResponse", 1000.0}, {"nIntervalSeconds", 300}});
        AddServer(102, {{"strDesc", "gate"},
                        {"strAddress_IP", "10.0.0.2"},
                        {"strType", "PING"},
                        {"strPort", "ICMP"},
                        {"nTimeout", 2000},
                        {"strCurStatus", "up"},
                        {"nAveResponse", 1500500.0},
                        {"nIntervalSeconds", 5},
                        {"nPercentUp", 99.456},
                        {"nSuccess", 1234},
                        {"nFail", 5},
                        {"nAveSession", 250.0},
                        {"datelastcheck", DateTime::Of(2026, 11, 21, 15, 3)},
                        {"datelastfail", DateTime::Of(2026, 11, 20)},
                        {"datelastreset", DateTime::Of(2026, 1, 1)}});
        AddServer(103, {{"strDesc", "<i>x</i> as of [[DATE]]"},
                        {"strAddress_IP", "10.0.0.3"},
                        {"strType", "OTHER PORT"},
                        {"strPort", "4000"},
                        {"strCurStatus", "DOWN"},
                        {"nPercentUp", 0.0},
                        {"nFail", 7},
                        {"datelastcheck", afternoon},
                        {"datelastfail", afternoon},
                        {"datelastreset", DateTime::Of(2026, 1, 2, 9, 5)}});
        AddServer(104, {{"strDesc", Value()},
                        {"strAddress_IP", Value()},
                        {"nTimeout", Value()},
                        {"strCurStatus", "Down-Time"},
                        {"nAveResponse", Value()},
                        {"nAveSession", Value()},
                        {"nIntervalSeconds", 7200},
                        {"nPercentUp", -1.0},
                        {"nSuccess", Value()},
                        {"nFail", Value()}});
        AddServer(105, {{"strType", "ping"},
                        {"strPort", "ICMP"},
                        {"strCurStatus", "Failing"},
                        {"nAveResponse", 12.4},
                        {"nIntervalSeconds", 90},
                        {"nPercentUp", 50.0},
                        {"nSuccess", 1},
                        {"nFail", 1}});
        AddServer(106, {{"strCurStatus", "Inactive"}, {"nIntervalSeconds", Value()}});
        AddServer(107, {{"strCurStatus", "odd"}, {"nIntervalSeconds", 1}});
        AddServer(108, {{"strGroup", "Other"}});

        const auto add = [&](int id, int nFailCount, DateTime dateFail, Row columns) {
            columns.merge(
                Row{{"nFailCount", nFailCount}, {"dateFail", dateFail}, {"strDesc", "d"}, {"strAddress_IP", "10.0.0.3"}});
            AddFailure(id, 103, std::move(columns));
        };
        add(1, 2, DateTime::Of(2026, 11, 21), {});
        add(2, 4, DateTime::Of(2026, 11, 21, 15), {{"strReason", "slow & late"}, {"strAction", "None.<ul><li>noted</ul>"}});
        add(3, 3, DateTime::Of(2026, 11, 21, 14), {{"strReason", "r"}, {"strAction", "a"}});

        AddResponse(1, 102, "hour", DateTime::Of(2026, 11, 21, 14, 59, 59), 500.5);
        AddResponse(2, 102, "hour", DateTime::Of(2026, 11, 21, 0, 10), 3.125);
        AddResponse(3, 102, "day", DateTime::Of(2026, 11, 19, 23, 50), 2000);
        AddResponse(4, 102, "day", DateTime::Of(2026, 11, 17, 23, 50), 1000);
        AddResponse(5, 102, "day", DateTime::Of(2026, 10, 16, 23, 50), 9000);
    }
};

TEST_F(GoldenPages, AreWhatTheyHaveAlwaysBeen) {
    EXPECT_EQ(rig.Publish(), "");
    for (const char* page : {"summary.htm", "failure103.htm", "hourly102.htm", "daily102.htm"})
        EXPECT_EQ(Page(std::string("R0/Web/") + page), Golden(page)) << page;
    EXPECT_EQ(
        Page("R0/groups.htm"),
        "<table width=90% border=0 cellpadding=2 cellspacing=1><tr><td bgcolor=#CCCCCC align=center><b>Group Names:  Click on "
        "a link to see reports for each server group (Company or Network)</b></td></tr>\r\n"
        "<tr><td><a href=Other/summary.htm>Summary Report for Other</a></td></tr>\r\n"
        "<tr><td><a href=Web/summary.htm>Summary Report for Web</a></td></tr></table>|2|11/21/2026 3:04:05 PM|\r\n");
    EXPECT_EQ(Page("i/up.gif"), "up.gif");
    EXPECT_TRUE(HasPage("i/citrix.gif"));
    // Of each server that failed lately, of each with an average, and of no other.
    EXPECT_EQ(disk.FileNames(dir + "/Reports/R0/Web"),
              (std::vector<std::string>{"daily102.htm", "failure102.htm", "failure103.htm", "hourly102.htm", "summary.htm"}));
}

}  // namespace
}  // namespace korvane
