// How averages become rows of hours and of days, what goes after a day, and how the two graph pages show them.
#include "reports/reports_test_base.h"

namespace korvane {
namespace {

class ResponseTimesTest : public ReportsTest {
protected:
    std::vector<Row> Rows(const std::string& txtType) {
        return database.Query("SELECT * FROM Response where txtType = '" + txtType + "' order by dtCur desc");
    }
    double Average(const std::string& txtType) { return Rows(txtType).at(0).at("nAveResponse").Double(); }
    void SetSession(double nAveSession) { database.Change("Servers", 1, {{"nAveSession", nAveSession}, {"nTotalSession", 9}}); }
    void GoTo(DateTime when) { world.MoveClock(when - world.clock.Now()); }
};

TEST_F(ResponseTimesTest, ASessionBeginsWithTheHour) {
    AddServer(1, {{"nAveSession", 40.0}, {"nTotalSession", 9}});
    EXPECT_EQ(rig.Publish(), "");
    ASSERT_EQ(Rows("hour").size(), 1U);
    EXPECT_EQ(Rows("hour")[0].at("idParent"), Value(1));
    EXPECT_EQ(Rows("hour")[0].at("dtCur"), Value(now));
    EXPECT_EQ(Average("hour"), 40);
    EXPECT_EQ(Average("day"), 40);  // with the average that was read before the session began anew
    EXPECT_EQ(database.Server(1).at("nAveSession"), Value(0.0));
    EXPECT_EQ(database.Server(1).at("nTotalSession"), Value(0));

    world.RunFor(std::chrono::minutes(10));
    EXPECT_EQ(rig.Publish(), "");  // no check since: nothing happens
    EXPECT_EQ(Rows("hour")[0].at("dtCur"), Value(now));

    SetSession(55);
    rig.Publish();
    ASSERT_EQ(Rows("hour").size(), 1U);
    EXPECT_EQ(Average("hour"), 55);
    EXPECT_EQ(Rows("hour")[0].at("dtCur"), Value(now + std::chrono::minutes(10)));
    EXPECT_EQ(database.Server(1).at("nAveSession"), Value(55.0));
    EXPECT_DOUBLE_EQ(Average("day"), (40.0 * 14 + 55) / 15);

    // The seconds count: at 4:00:03 the row of 3:14:05 is of another hour, and so is what was written at 4:00:03 for one at
    // 4:30:04.
    GoTo(DateTime::Of(2026, 11, 21, 16, 0, 3));
    rig.Publish();
    EXPECT_EQ(Rows("hour").size(), 2U);
    SetSession(60);
    GoTo(DateTime::Of(2026, 11, 21, 16, 30, 4));
    rig.Publish();
    EXPECT_EQ(Rows("hour").size(), 3U);
}

TEST_F(ResponseTimesTest, AServerWithoutAnAverageLeavesNothing) {
    AddServer(1, {{"nAveSession", 0.0}});
    AddServer(2, {{"nAveSession", Value()}});
    EXPECT_EQ(rig.Publish(), "");
    EXPECT_EQ(database.Count("Response"), 0);
    EXPECT_EQ(disk.FileNames(rig.root + "/R0/Web"), std::vector<std::string>{"summary.htm"});
}

TEST_F(ResponseTimesTest, TheDayIsABlendThatFollowsTheHours) {
    struct Case {
        int hour;
        double stored, ave, expected;
    };
    for (const Case& day : {Case{1, 80, 20, 20}, Case{2, 80, 20, 50}, Case{23, 0, 46, 46}, Case{4, 100, 20, 80}}) {
        GoTo(DateTime::Of(2026, 11, 21, day.hour, 30));
        database.AddRow("Servers", {{"ID", 100 + day.hour}, {"strGroup", "Web"}, {"nAveSession", day.ave}});
        AddResponse(1000 + day.hour, 100 + day.hour, "day", DateTime::Of(2026, 11, 21), day.stored);
        EXPECT_EQ(rig.Publish(), "");
        const auto rows = database.Query("SELECT * FROM Response where id = " + std::to_string(1000 + day.hour));
        EXPECT_DOUBLE_EQ(rows.at(0).at("nAveResponse").Double(), day.expected) << day.hour;
        EXPECT_EQ(rows[0].at("dtCur"), Value(world.clock.Now()));
        database.Remove("Servers", 100 + day.hour);
    }
}

TEST_F(ResponseTimesTest, TheHourAfterMidnightStopsAtTheDaysRow) {
    GoTo(DateTime::Of(2026, 11, 22, 0, 20));
    AddServer(1, {{"nAveSession", 30.0}});
    AddResponse(1, 1, "hour", DateTime::Of(2026, 11, 22, 0, 10), 10);
    AddResponse(2, 1, "day", DateTime::Of(2026, 11, 22, 0, 10), 10);
    EXPECT_EQ(rig.Publish(), "");
    EXPECT_TRUE(rig.person.Said("SaveResponseTimeData: Division by zero"));
    EXPECT_EQ(Average("hour"), 30);  // what came before stays
    EXPECT_EQ(Average("day"), 10);
    EXPECT_EQ(Rows("day")[0].at("dtCur"), Value(DateTime::Of(2026, 11, 22, 0, 10)));
    EXPECT_FALSE(HasPage("R0/Web/hourly1.htm"));
    // At midnight itself a new day gets its row all the same.
    GoTo(DateTime::Of(2026, 11, 23));
    rig.Publish();
    EXPECT_EQ(Rows("day").size(), 2U);
}

TEST_F(ResponseTimesTest, HoursOfAnyServerGoAfterTwentyFive) {
    AddServer(1, {{"nAveSession", 30.0}});
    AddResponse(1, 77, "hour", now - std::chrono::hours(25), 1);
    AddResponse(2, 77, "hour", now - std::chrono::hours(25) - std::chrono::seconds(1), 1);
    AddResponse(3, 1, "HOUR", now - std::chrono::hours(26), 1);
    AddResponse(4, 77, "day", now - std::chrono::hours(500), 1);
    EXPECT_EQ(rig.Publish(), "");
    EXPECT_EQ(database.Count("Response", "idParent = 77"), 2);
    EXPECT_EQ(database.Count("Response", "id = 2 or id = 3"), 0);
}

TEST_F(ResponseTimesTest, AQuietPublishWritesGraphsOnlyAsHoursAndDaysBegin) {
    AddServer(1, {{"nAveSession", 30.0}});
    AddResponse(1, 1, "hour", now - std::chrono::hours(26), 5);
    rig.Publish(true);
    EXPECT_TRUE(HasPage("R0/Web/hourly1.htm") && HasPage("R0/Web/daily1.htm"));
    EXPECT_TRUE(Holds(Page("R0/Web/hourly1.htm"), "|2|")) << "the page of a new hour comes before the old ones go";
    EXPECT_EQ(Rows("hour").size(), 1U);
    disk.Remove(rig.root + "/R0/Web/hourly1.htm");
    disk.Remove(rig.root + "/R0/Web/daily1.htm");
    SetSession(50);
    rig.Publish(true);
    EXPECT_FALSE(HasPage("R0/Web/hourly1.htm") || HasPage("R0/Web/daily1.htm"));
    EXPECT_FALSE(rig.person.SaidPart("Publishing Group Report"));
    EXPECT_TRUE(Holds(Page("R0/Web/summary.htm"), "None yet"));
    rig.Publish(false);
    EXPECT_TRUE(HasPage("R0/Web/hourly1.htm") && HasPage("R0/Web/daily1.htm"));
    EXPECT_TRUE(Holds(Page("R0/Web/summary.htm"), "hourly1.htm"));
}

TEST_F(ResponseTimesTest, AFailureKeepsWhatWasWrittenAndTouchesNoOtherServer) {
    for (const int id : {1, 2, 3})
        AddServer(id, {{"nAveSession", 30.0 + id}});
    store.faults.Add({.operation = StoreOperation::Open, .about = "idParent = 1 and txtType = 'day'", .description = "lost"});
    store.faults.Add({.operation = StoreOperation::Update, .about = "Servers where ID = 2", .description = "gone"});
    EXPECT_EQ(rig.Publish(), "");
    EXPECT_TRUE(rig.person.Said("SaveResponseTimeData: lost") && rig.person.Said("SaveResponseTimeData: gone"));
    EXPECT_EQ(Rows("hour").size(), 2U);
    EXPECT_EQ(Rows("day").size(), 1U);
    EXPECT_EQ(database.Server(2).at("nAveSession"), Value(32.0));
    EXPECT_TRUE(HasPage("R0/Web/daily3.htm") && !HasPage("R0/Web/daily1.htm") && !HasPage("R0/Web/hourly2.htm"));
}

TEST_F(ResponseTimesTest, GraphsShowAtMostTwentySixHoursAndAllDays) {
    AddServer(1, {{"nAveSession", 100.0}});
    for (int hour = 1; hour <= 30; ++hour)
        AddResponse(hour, 1, "hour", now - std::chrono::minutes(40 * hour), 500);
    AddResponse(40, 1, "day", now - std::chrono::hours(24 * 29), 500);
    rig.Publish();
    const std::string hourly = Page("R0/Web/hourly1.htm");
    EXPECT_TRUE(Holds(hourly, "|26|"));
    EXPECT_TRUE(Holds(hourly, " width=200 ")) << hourly;
    EXPECT_TRUE(Holds(hourly, " width=1000 "));  // wider than the newest: no cap
    const std::string daily = Page("R0/Web/daily1.htm");
    EXPECT_TRUE(Holds(daily, "|2|"));
    EXPECT_EQ((daily.size() - ReplaceAll(daily, "No Data", "").size()) / 7, 28U);
}

TEST_F(ResponseTimesTest, ANewestAverageOfNothingKeepsTheOlderPage) {
    AddServer(1, {{"nAveSession", 0.000001}});
    rig.Publish();
    const std::string older = Page("R0/Web/daily1.htm");
    database.Change("Response", database.Query("SELECT * FROM Response where txtType='day'")[0].at("id").Int64(),
                    {{"nAveResponse", -0.000014}});  // which the next blend brings to 0
    SetSession(0.000014 * 14);
    rig.Publish();
    EXPECT_TRUE(rig.person.SaidPart("PublishDailyResponseTimeReport: Division by zero"));
    EXPECT_EQ(Page("R0/Web/daily1.htm"), older);
}

TEST_F(ResponseTimesTest, ASumBeyondThirtyTwoBitsFails) {
    AddServer(1, {{"nAveSession", 2147483647.0}});
    AddResponse(1, 1, "hour", now - std::chrono::hours(2), 1);
    rig.Publish();
    EXPECT_TRUE(rig.person.Said("PublishHourlyResponseTimeReport: Overflow"));
    EXPECT_FALSE(HasPage("R0/Web/hourly1.htm"));
    EXPECT_TRUE(HasPage("R0/Web/daily1.htm"));
}

}  // namespace
}  // namespace korvane
