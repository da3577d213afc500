// Publishing: the pages byte for byte, averages over hours and days, and what stops and what goes on when something is wrong.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <set>

#include "base/numbers.h"
#include "reports/page_parts.h"
#include "support/world.h"

namespace korvane::reports_test {

namespace fs = std::filesystem;
using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;

/// Hears each line of the status, which comes in the middle of a publish.
struct Listener : RecordingOperator {
    std::function<void()> heard;
    int customers = 0;
    void SetCustomerCount(int count) override { customers = count; }
    void StatusLine(const std::string& time, const std::string& text) override {
        RecordingOperator::StatusLine(time, text);
        if (heard) heard();
    }
};

class ReportsTest : public testing::Test {
protected:
    ReportsTest() {
        for (const char* name : {"grouptmp.htm", "summaryreporttmp.htm", "failurereporttmp.htm", "dailyreporttmp.htm"})
            world.Write(name, "[[REPORT]]|[[TOTAL]]|[[DATE]]|[[GROUP]]");
        world.Start();
    }
    /// Columns as "name=value|name=value": blank without a value, and of a name that comes twice the last one counts.
    void Add(const std::string& table, const std::string& columns) {
        Row row;
        for (const std::string& each : Split(columns, '|')) {
            const auto end = each.find('=') + 1;
            row[each.substr(0, end - 1)] = end == each.size() ? Value() : Value(each.substr(end));
        }
        world.rows.AddRow(table, row);
    }
    void AddServer(int id, const std::string& columns = "") {
        Add("Servers", "ID=" + std::to_string(id) + "|strGroup=Web|strDesc=entry|strAddress_IP=10.0.0.1" + columns);
    }
    void AddResponse(int id, const std::string& idParent, const std::string& txtType, DateTime dtCur, double nAveResponse) {
        Add("Response", "id=" + std::to_string(id) + "|idParent=" + idParent + "|txtType=" + txtType +
                            "|dtCur=" + dtCur.Stored() + "|nAveResponse=" + FormatGeneral(nAveResponse));
    }
    /// As the cycle does it, and as an operator does who looks at the reports. What went wrong.
    std::string Publish() { return world.run.TheDesk().publisher.PublishReports(); }
    void PublishQuietly() { world.run.TheDesk().reports.PublishReports(true); }

    std::string PathOf(const std::string& page) { return root + "/R0/" + page; }
    std::string Page(const std::string& name) { return ReadAll(PathOf(name)); }
    bool HasPage(const std::string& name) { return fs::exists(PathOf(name)); }
    /// Below the folder "Reports".
    std::set<std::string> Pages() {
        std::set<std::string> pages;
        for (const auto& entry : fs::recursive_directory_iterator(world.home)) {
            const std::string path = entry.path();
            if (path.ends_with(".htm") && !path.ends_with("tmp.htm"))
                pages.insert(path.substr(std::min(root.size() + 1, path.size())));
        }
        return pages;
    }

    const DateTime now = DateTime::Of(2026, 11, 21, 15, 4, 5);
    Listener person;
    World world{{.start = now, .makeFace = [this](Timers&) { return WorldFace{.person = &person}; }}};
    const std::string root = world.PathOf("Reports");
};

TEST(FormatSeconds, WritesEachRangeInItsUnit) {
    // 60.5 are 60 when rounded to a whole number, and 61 when written.
    const char* const cases =
        "0.25=250 ms.|0.9999=1,000 ms.|1=1 secs.|5.0=5.0 secs.|9.994=9.99 secs.|9.999=10.00 secs.|30.5=31 secs.|60.4=60 secs.|"
        "60.5=61 secs.|60.6=1.01 min.|90=1.50 min.|3600=60.00 min.|3601=1.00 hrs.|360000000=100,000.00 hrs.|-2=-2,000 "
        "ms.|=N/A|soon=N/A";
    for (const std::string& each : Split(cases, '|'))
        EXPECT_EQ(each.substr(0, each.find('=') + 1) + FormatSeconds(each.substr(0, each.find('='))), each);
}

// rows.txt has the rows of the store: a table, and columns as Add takes them. In the pages a row has one line: "¶" stands for the line
// ends within it.
TEST_F(ReportsTest, GoldenPages) {
    for (const std::string& row : Split(TrimAll(ReadAll(KORVANE_SOURCE_DIR "/tests/reports/golden/rows.txt")), '\n'))
        Add(row.substr(0, row.find(' ')), row.substr(row.find(' ') + 1));
    EXPECT_EQ(Publish(), "");
    for (const std::string page :
         {"groups.htm", "Web/summary.htm", "Web/failure103.htm", "Web/hourly102.htm", "Web/daily102.htm"}) {
        const std::string golden = ReadAll(KORVANE_SOURCE_DIR "/tests/reports/golden/" + fs::path(page).filename().string());
        EXPECT_EQ(Page(page), ReplaceAll(ReplaceAll(golden, "\n", "\r\n"), "\u00B6", "\r\n")) << page;
    }
    // Of each server that failed lately, of each with an average, and of no other.
    EXPECT_EQ(Pages(),
              (std::set<std::string>{"R0/groups.htm", "R0/Web/daily102.htm", "R0/Web/failure102.htm", "R0/Web/failure103.htm",
                                     "R0/Web/hourly102.htm", "R0/Web/summary.htm", "R0/Other/summary.htm"}));
}

TEST_F(ReportsTest, AveragesBecomeHoursAndDays) {
    struct Step {
        DateTime when;
        double ave;        // of the session that ends here; 0: no check since
        int hours;         // rows of hours afterwards
        double hour, day;  // the newest of each
        bool newSession;
    };
    const auto at = [](int day, int hour, int minute = 0, int second = 0) {
        return DateTime::Of(2026, 11, day, hour, minute, second);
    };
    const Step steps[] = {
        {at(21, 15, 4, 5), 40, 1, 40, 40, true},  // the first row of an hour begins a session
        {at(21, 15, 14, 5), 0, 1, 40, 40, false},
        {at(21, 15, 24, 5), 55, 1, 55, 41, false},  // (40 * 14 + 55) / 15
        {at(21, 16, 0, 3), 57, 2, 57, 42, true},
        {at(21, 16, 30, 4), 26, 3, 26, 41, true},  // the seconds count: what was written at 4:00:03 is of another hour
        {at(22, 0, 20), 30, 4, 30, 30, true},
        {at(22, 0, 40), 35, 4, 35, 30, false},  // the day's row stays in the hour after midnight
        {at(22, 1, 30), 20, 5, 20, 20, true},
        {at(22, 2, 30), 50, 6, 50, 35, true},
        {at(22, 17, 0, 3), 18, 6, 18, 34, true},  // 15:24:05 is older than 25 hours, 16:00:03 is not
        {at(23, 0), 12, 5, 12, 12, true},         // at midnight itself a new day gets its row all the same
        {at(23, 23), -264, 2, -264, 0, true},
        {at(23, 23, 30), 46, 2, 46, 46, false},  // 0 stands for no value
    };
    AddServer(1);
    AddResponse(1, "77", "HOUR", at(21, 16), 1);
    AddResponse(2, "77", "day", now - hours(500), 1);
    for (const Step& step : steps) {
        world.world.MoveClock(step.when - world.world.clock.Now());
        world.rows.Change("Servers", 1, {{"nAveSession", step.ave}, {"nTotalSession", 9}});
        EXPECT_EQ(Publish(), "");
        const auto rows = [&](const char* type) {
            const std::string query = "SELECT * FROM Response where idParent = 1 and txtType = '";
            return world.rows.Query(query + type + "' order by dtCur desc");
        };
        EXPECT_EQ(rows("hour").size(), static_cast<std::size_t>(step.hours)) << step.when.Text();
        EXPECT_EQ(rows("hour")[0].at("nAveResponse").Double(), step.hour);
        EXPECT_EQ(rows("hour")[0].at("dtCur") == Value(step.when), step.ave != 0);
        EXPECT_EQ(rows("day").at(0).at("nAveResponse").Double(), step.day) << step.when.Text();
        EXPECT_EQ(world.rows.Server(1).at("nAveSession"), Value(step.newSession ? 0.0 : step.ave));
        EXPECT_EQ(world.rows.Server(1).at("nTotalSession"), Value(step.newSession ? 0 : 9));
    }
    EXPECT_TRUE(person.Said("SaveResponseTimeData: Division by zero"));
    EXPECT_EQ(world.rows.Count("Response", "idParent = 77"), 1) << "hours of any server go, days stay";
}

TEST_F(ReportsTest, AQuietPublishWritesGraphsOnlyAsHoursAndDaysBegin) {
    AddServer(1, "|nAveSession=30");
    AddResponse(1, "1", "hour", now - hours(26), 5);
    PublishQuietly();
    EXPECT_TRUE(HasPage("Web/daily1.htm") && Holds(Page("Web/hourly1.htm"), "|2|")) << "before the old ones go";
    for (const char* page : {"Web/hourly1.htm", "Web/daily1.htm"})
        fs::remove(PathOf(page));
    world.rows.Change("Servers", 1, {{"nAveSession", 50.0}});
    PublishQuietly();
    EXPECT_FALSE(HasPage("Web/hourly1.htm") || HasPage("Web/daily1.htm") || person.SaidPart("Publishing Group Report"));
    Publish();
    EXPECT_TRUE(HasPage("Web/hourly1.htm") && HasPage("Web/daily1.htm"));
}

TEST_F(ReportsTest, GraphsShowAtMostTwentySixHoursAndAllDaysAndAFailureTouchesNoOtherServer) {
    AddServer(1, "|nAveSession=100");
    for (int hour = 1; hour <= 30; ++hour)
        AddResponse(hour, "1", "hour", now - minutes(40 * hour), 500);
    AddResponse(40, "1", "day", now - hours(24 * 29), 500);
    AddServer(2, "|nAveSession=14");
    AddResponse(41, "2", "day", now, -1);  // blends with 14 to 0
    AddServer(3, "|nAveSession=2147483647");
    AddResponse(42, "3", "hour", now - hours(2), 1);
    AddServer(4, "|nAveSession=34");
    AddServer(5, "|nAveSession=35");
    world.store.faults.Add(
        {.operation = StoreOperation::Open, .about = "idParent = 4 and txtType = 'day'", .description = "lost"});
    world.store.faults.Add({.operation = StoreOperation::Update, .about = "Servers where ID = 5", .description = "gone"});
    EXPECT_EQ(Publish(), "");
    EXPECT_TRUE(Holds(Page("Web/hourly1.htm"), "|26|") && Holds(Page("Web/hourly1.htm"), " width=1000 "))
        << "wider than the newest";
    EXPECT_EQ(Split(ReplaceAll(Page("Web/daily1.htm"), "No Data", "~"), '~').size(), 29u);
    const std::pair<const char*, const char*> failures[] = {
        {"PublishDailyResponseTimeReport: Division by zero", "Web/daily2.htm"},
        {"PublishHourlyResponseTimeReport: Overflow", "Web/hourly3.htm"},
        {"SaveResponseTimeData: lost", "Web/daily4.htm"},
        {"SaveResponseTimeData: gone", "Web/hourly5.htm"}};
    for (const auto& [said, page] : failures)
        EXPECT_TRUE(person.Said(said) && !HasPage(page)) << said;
    EXPECT_EQ(world.rows.Server(5).at("nAveSession"), Value(35.0));
    EXPECT_EQ(world.rows.Count("Response", "id > 50"), 6) << "hours of all but 5, days of 1 and 3";
}

TEST_F(ReportsTest, FailuresHavePagesSinceTheLastCompletePublish) {
    AddServer(1, "|datelastfail=2026-11-16 15:04:05");
    AddServer(2, "|datelastfail=2026-11-16 15:04:04");
    Publish();
    EXPECT_TRUE(HasPage("Web/failure1.htm") && !HasPage("Web/failure2.htm")) << "at first of the last five days";
    const auto isPublishedAgain = [&](DateTime datelastfail) {
        fs::remove(PathOf("Web/failure1.htm"));
        world.rows.Change("Servers", 1, {{"datelastfail", datelastfail}});
        Publish();
        return HasPage("Web/failure1.htm");
    };
    EXPECT_TRUE(!isPublishedAgain(now - seconds(1)) && isPublishedAgain(now));
    world.world.MoveClock(minutes(1));
    world.store.faults.Add({.operation = StoreOperation::Open, .about = "distinct idCustomer", .description = "locked"});
    PublishQuietly();
    EXPECT_EQ(person.messages.back().text, "Reporting Error:  Err - PublishReports: locked");
    EXPECT_TRUE(person.Said("PublishReports Error:  Err - PublishReports: locked") && !person.waitCursor);
    EXPECT_TRUE(isPublishedAgain(now)) << "a publish that failed does not count";
}

TEST_F(ReportsTest, AHistoryOfMoreThanFiftyIsCutToForty) {
    const std::pair<const char*, int> servers[] = {{"Web", 50}, {"Web", 2001}, {"O'Brien", 51}, {"a/b", 51}};
    for (int id = 1, row = 0; const auto& [group, failures] : servers) {
        AddServer(id, "|datelastfail=2026-11-21 15:04:05|strGroup=" + std::string(group));
        for (int i = 0; i < failures; ++i)
            Add("Failures", "nFailMax=3|ID=" + std::to_string(++row) + "|IDParent=" + std::to_string(id) +
                                "|nFailCount=" + std::to_string(i) + "|dateFail=" + (now - minutes(i)).Stored());
        ++id;
    }
    EXPECT_NE(Publish(), "") << "the pages of the last two groups can't be written";
    for (const auto& [id, kept] : {std::pair{"1", 50}, {"2", 40}, {"3", 40}, {"4", 40}})
        EXPECT_EQ(world.rows.Count("Failures", "nFailCount < " + std::to_string(kept) + " and IDParent = " + id), kept)
            << "the newest";
    EXPECT_EQ(world.rows.Count("Failures"), 50 + 3 * 40);
    const std::string page = Page("Web/failure2.htm");
    EXPECT_TRUE(Holds(page, "|2001|") && Holds(Page("Web/failure1.htm"), "|50|"));
    std::size_t at = 0;
    for (int i = 0; i < 2001 && at != std::string::npos; ++i)
        at = page.find(std::to_string(i) + " of 3", at);
    EXPECT_NE(at, std::string::npos) << "all that there were, in their order";
}

TEST_F(ReportsTest, EachCustomerHasItsGroups) {
    EXPECT_EQ(Publish(), "");
    EXPECT_TRUE(Pages().empty() && person.Said("-->0 distinct customers returned."));
    AddServer(1);
    AddServer(2, "|idCustomer=12|strGroup=Mail");
    AddServer(3, "|idCustomer=12|strGroup=mail|nAveSession=5");  // the same group, in one folder
    AddServer(4, "|idCustomer=");
    EXPECT_TRUE(Publish().starts_with(" Err - PublishReportsPerCust: "));
    EXPECT_EQ(person.customers, 3);
    EXPECT_EQ(Pages(), (std::set<std::string>{"R0/groups.htm", "R0/Web/summary.htm", "R12/groups.htm", "R12/Mail/summary.htm",
                                              "R12/Mail/hourly3.htm", "R12/Mail/daily3.htm"}));
    EXPECT_TRUE(Holds(ReadAll(root + "/R12/groups.htm"), "|1|") && Holds(ReadAll(root + "/R12/Mail/summary.htm"), "hourly3.htm"));
}

TEST_F(ReportsTest, NamesThatCannotBeFoldersWriteNothingOutsideAndStopNobodyElse) {
    const std::string tooLong(300, 'n');
    for (int id = 0; const std::string name :
                     {"..", ".", "../../out", "a/b", "/etc", "O'Brien", tooLong.c_str(), "..\\x", "x' or '1'='1", "C# #1"})
        AddServer(++id, "|nAveSession=5|strGroup=" + name);
    AddServer(50, "|strGroup=<b>Büro & \"Co\"");
    const std::string strErr = Publish();
    EXPECT_TRUE(Holds(strErr, PathOf("../summary.htm can't be written: it is not below the report folder")) &&
                Holds(strErr, "PublishSummaryReport: near \"Brien\": syntax error"));
    EXPECT_EQ(Split(ReplaceAll(strErr, " PublishSummaryReport: ", "\n"), '\n').size(), 8u) << strErr;  // seven of the names
    std::set<std::string> expected{"R0/groups.htm", "R0/<b>Büro & \"Co\"/summary.htm"};
    for (const auto& [name, id] : {std::pair{"..\\x", "8"}, {"x' or '1'='1", "9"}, {"C# #1", "10"}}) {
        for (const std::string page : {"summary", "hourly", "daily"})
            expected.insert("R0/" + std::string(name) + "/" + page + (page == "summary" ? "" : id) + ".htm");
    }
    EXPECT_EQ(Pages(), expected);
    EXPECT_EQ(world.rows.Count("Response", "txtType = 'hour'"), 10) << "averages are kept where pages can't be";
}

TEST_F(ReportsTest, TextFromOutsideIsTextAndEachLinkLeadsToItsPageWithTheSafeguard) {
    const std::string group = "O'Br <b>&\"50%\" #1?";
    const std::string action =
        "None.<ul><li><b>cmd</b> was executed. \r\n<li>Server DOWN Email Notification <font "
        "color=red>FAILED</font>  because '</ul><img>'.<li>Server configured so <b>WILL NOT</b> be sent.</ul>";
    AddServer(1, "|strGroup=" + group + "|nAveSession=5|datelastfail=2026-11-21 15:04:05|strDesc=<script>[[TOTAL]]");
    Add("Failures", "ID=2|IDParent=1|nFailCount=4|nFailMax=3|strReason=</td> & \"x\"|strDesc=<i>|strAction=" + action);
    world.Set("EscapeReports", "True");
    EXPECT_EQ(Publish(), "");
    const std::string groups = Page("groups.htm");
    EXPECT_TRUE(Holds(groups,
                      "<a href=O%27Br%20%3Cb%3E%26%2250%25%22%20%231%3F/summary.htm>Summary Report for O&#39;Br "
                      "&lt;b&gt;&amp;&quot;50%&quot; #1?</a>"))
        << groups;
    for (const char* page : {"/summary.htm", "/failure1.htm", "/hourly1.htm"}) {
        const std::string text = Page(group + page);
        EXPECT_TRUE(Holds(text, "|O&#39;Br &lt;b&gt;") || Holds(text, "|10.0.0.1 - &lt;script&gt;&#91;&#91;TOTAL]]")) << text;
        EXPECT_FALSE(Holds(text, "<script>") || Holds(text, "<i>") || Holds(text, "</td> &") || Holds(text, "<img>"));
    }
    const std::string escaped =
        ReplaceAll(ReplaceAll(action, "<b>cmd</b>", "&lt;b&gt;cmd&lt;/b&gt;"), "</ul><img>", "&lt;/ul&gt;&lt;img&gt;");
    EXPECT_TRUE(Holds(Page(group + "/failure1.htm"), ReplaceAll(escaped, "'", "&#39;"))) << Page(group + "/failure1.htm");
    EXPECT_TRUE(world.Logged("Safeguard EscapeReports: ") && world.run.TheDesk().safeguards.Counts().at("EscapeReports") > 5);
    EXPECT_TRUE(Holds(Page(group + "/summary.htm"), "since the start of Korvane: EscapeReports "));
}

TEST_F(ReportsTest, LinksLeadNoPageOutOfTheReportFolder) {
    for (const char* folder : {"/outside", "/elsewhere/R0/Web"})
        fs::create_directories(world.home + folder);
    fs::remove(root);
    fs::create_symlink("elsewhere", root);  // may be a link itself
    fs::create_symlink(world.home + "/outside", PathOf("Out"));
    fs::create_symlink(world.home + "/outside/page", PathOf("Web/summary.htm"));
    AddServer(1);
    AddServer(2, "|strGroup=Out");
    EXPECT_EQ(Publish(), " PublishSummaryReport: The page " +
                             PathOf("Out/summary.htm can't be written: a link leads out of the report folder"));
    EXPECT_TRUE(fs::is_empty(world.home + "/outside") && fs::is_regular_file(fs::symlink_status(PathOf("Web/summary.htm"))));
}

TEST_F(ReportsTest, PagesThatCannotBeWrittenKeepTheirOlderForm) {
    AddServer(1);
    AddServer(2, "|strGroup=Zebra");
    fs::remove(world.home + "/grouptmp.htm");
    EXPECT_EQ(Publish(), "");
    EXPECT_EQ(Page("groups.htm"), "\r\n") << "a template that is missing is an empty one";
    const std::string older = Page("Web/summary.htm");
    world.world.MoveClock(hours(1));
    world.files.faults.Add({.forever = true, .about = "/Web/", .description = "No space left on device"});
    EXPECT_EQ(Publish(),
              " PublishSummaryReport: The page " + PathOf("Web/summary.htm can't be written: No space left on device"));
    EXPECT_TRUE(Page("Web/summary.htm") == older && Holds(Page("Zebra/summary.htm"), "|11/21/2026 4:04:05 PM|"));
    world.files.FillDisk();
    EXPECT_TRUE(Holds(Publish(), "groups.htm can't be written"));
}

TEST_F(ReportsTest, ThePicturesAreBroughtAgainWhenTheirMarkIsGone) {
    AddServer(1);
    world.files.faults.Add({.operation = FilesOperation::Publish, .about = "/i/up.gif"});
    EXPECT_EQ(Publish(), " PublishSummaryReport: disk I/O error");
    EXPECT_FALSE(fs::exists(root + "/i/citrix.gif")) << "the mark of the whole set comes last";
    EXPECT_EQ(Publish(), "");
    EXPECT_EQ(ReadAll(root + "/i/up.gif"), world.Text("i/up.gif"));
    EXPECT_EQ(world.disk.FileNames(root + "/i"), world.disk.FileNames(world.PathOf("i")));
    fs::remove(root + "/i/up.gif");
    Publish();
    EXPECT_FALSE(fs::exists(root + "/i/up.gif")) << "nothing is refreshed as long as the mark is there";
}

// What parsers of both formats read: a line for each figure of an entry.
constexpr const char* kReadFigures = R"(
import json
from prometheus_client.parser import text_string_to_metric_families as families
entries, read = {}, open("Reports/metrics.prom", newline="").read()
for family in families(read):
    assert family.documentation and family.type in ("counter", "gauge"), family
    for sample in family.samples:
        entries.setdefault(sample.labels.pop("id", "loop"), [sample.labels]).append(sample.value)
for id, (labels, *values) in entries.items():
    if labels: print(id, *labels.values(), *values, sep="|")
status = json.load(open("Reports/status.json"))
for entry in status.pop("entries"):
    print(*entry.values(), sep="|")
print(*entry)
print(list(status), list(status.values())[1:] == entries["loop"][1:])
)";

TEST_F(ReportsTest, FiguresAreWrittenWholeForOtherProgramsOnceAMinuteAndWithEachPublicationWhileTheyAreOn) {
    if (std::system("/usr/bin/python3 -c 'import prometheus_client' 2>/dev/null") != 0)
        GTEST_SKIP() << "python3-prometheus-client: not installed (scripts/setup --test)";
    const auto figures = [&] { return ReadAll(root + "/metrics.prom"); };
    const auto turn = [&] { return TrimAll(figures().substr(figures().find("\nkorvane_loop_timestamp_seconds") + 31, 11)); };
    AddServer(7,
              "|strDesc=a \"b\" \\n\\ \n\tc|strCurStatus=Down|nSuccess=12|nFail=3|nTriesCur=2|nPercentUp=80.5|nAveResponse=137|"
              "nAveSession=1500|strType=HTTP|bIsMonitoring=0|datelastcheck=2026-11-21 15:04:00|dtNextCheck=2027-01-01 00:00:00");
    AddServer(8, "|strDesc=\xFF}|strCurStatus=|nPercentUp=|nAveResponse=|bIsMonitoring=0|dtNextCheck=2027-01-01 00:00:00");
    AddServer(9, "|strType=PING|strExpectedText=1000|nIntervalSeconds=32400");
    world.net.Host("10.0.0.1").Echo(std::chrono::milliseconds(5));
    world.rows.Connected()->Execute("UPDATE Servers SET nSuccess = 'x', nFail = 9e999, datelastcheck = '?' WHERE ID = 8");
    world.rows.Connected()->Execute("CREATE TABLE LastChecks (ID INTEGER PRIMARY KEY, dtCertificate TEXT)");
    world.rows.Connected()->Execute("INSERT INTO LastChecks VALUES (7, '2026-11-20 15:00:00'), (9, '2026-12-11 15:30:00')");
    Publish();
    world.RunFor(minutes(3));
    EXPECT_FALSE(fs::exists(root + "/metrics.prom") || fs::exists(root + "/status.json"));
    world.Set("Figures", "True");
    world.Set("KeepPhases", "True");
    world.RunFor(minutes(2));
    EXPECT_LE(world.world.clock.UtcNow().Seconds() - std::stoll(turn()), 60);
    world.Write("read.py", kReadFigures);
    EXPECT_EQ(std::system(("cd " + world.home + " && /usr/bin/python3 read.py > read 2>&1").c_str()), 0);
    EXPECT_EQ(world.Text("read"),
              R"(7|a "b" \n\   c|Web|HTTP|10.0.0.1|2.0|12.0|3.0|2.0|80.5|0.137|1795291440.0|-2.0
8|�}|Web|HTTP|10.0.0.1|3.0|0.0
9|entry|Web|PING|10.0.0.1|0.0|1.0|0.0|0.0|100.0|0.005|0.005|1795291508.0|20.0
7|a "b" \n\   c|Web|HTTP|10.0.0.1|Down|2|12|3|2|80.5|0.137|1795291440|-2
8|�}|Web|HTTP|10.0.0.1||3|0
9|entry|Web|PING|10.0.0.1|UP|0|1|0|0|100|0.005|0.005|1795291508|20
id name group type address state code passed failed failuresInARow upPercent responseSeconds recentResponseSeconds lastCheck certificateDays
['program', 'loop', 'lastCheck'] True
)");

    world.Set("KeepPhases", "False");
    world.run.cmdStopStart();
    Publish();
    EXPECT_FALSE(Holds(figures(), "korvane_entry_certificate_days{")) << "a certificate that is no longer looked at";
    const std::string last = turn();
    world.RunFor(minutes(5));
    world.rows.Change("Servers", 7, {{"nSuccess", 13}});
    EXPECT_EQ(Publish(), "");
    EXPECT_TRUE(turn() == last && Holds(figures(), "} 13\n")) << "a loop that does not turn is seen";
    world.run.cmdStopStart();
    world.files.faults.Add({.forever = true, .about = "/metrics.prom", .description = "disk full"});
    world.RunFor(minutes(5));
    const std::string problem = "The page " + root + "/metrics.prom can't be written: disk full";
    EXPECT_TRUE(turn() == last && person.Said("Figures: " + problem));
    EXPECT_EQ(Publish(), " Err - PublishFigures: " + problem);
    world.Set("Figures", "yes");
    world.RunFor(minutes(1));
    EXPECT_TRUE(person.Said("Figures: 'yes' is not \"True\" or \"False\"."));
}

TEST_F(ReportsTest, EventsComeBetweenServersAndFindTheStoreFree) {
    for (int id = 1; id <= 3; ++id)
        AddServer(id, "|nAveSession=5|datelastfail=2026-11-21 15:04:05");
    int events = 0;
    QtSqlStore other(KindOfColumn, std::chrono::milliseconds(0));
    const auto event = [&] {
        ++events;
        EXPECT_EQ(Publish(), "The reports are being published already.");
        TestDatabase(world.home, other).Connected()->TryWriting();
    };
    person.heard = [&] { world.world.After(seconds(0), event); };
    EXPECT_EQ(Publish(), "");
    person.heard = nullptr;
    EXPECT_GE(events, 5) << "the customer, the group, its servers";
}

}  // namespace korvane::reports_test
