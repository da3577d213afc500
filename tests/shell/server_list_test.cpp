// The rows of the main window's list, read from a real database.
#include "shell/list/server_list.h"

#include <gtest/gtest.h>

#include "support/test_database.h"

namespace korvane {
namespace {

const DateTime kNow = DateTime::Of(2026, 11, 21, 15, 0, 0);

TEST(FormatDuration, PicksItsUnit) {
    const std::pair<const char*, const char*> cases[] = {
        {"5", "5 secs."},         {"5.5", "5.50 secs."},
        {"9.999", "10.00 secs."}, {"60", "60 secs."},
        {"60.5", "61 secs."},     {"90", "1.50 min."},
        {"3600", "60.00 min."},   {"3601", "1.00 hrs."},
        {"7200", "2.00 hrs."},    {"4000000", "1,111.11 hrs."},
        {"0.25", "250 ms."},      {"0", "0 ms."},
        {"-2", "-2,000 ms."},     {"", "N/A"},
        {"soon", "N/A"},          {"1e300", "N/A"},
    };
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(FormatDuration(seconds), text) << seconds;
}

struct Expected {
    const char* status;
    const char* nextTry;
    RowIcon icon;
};

class ServerList : public testing::Test {
protected:
    std::vector<ServerRow> Load(bool requesting = false) {
        return LoadServerList(database_.TheStore(), database_.DriverString(), kNow, requesting);
    }
    TestDatabase database_;
};

TEST_F(ServerList, ShowsEveryStateByWordAndPicture) {
    int minute = 0;
    const auto at = [&](Value status) {
        return Entry{
            .nTries = 3, .nTriesCur = 2, .strCurStatus = std::move(status), .dtNextCheck = kNow + std::chrono::minutes(minute++)};
    };
    for (const Value& word :
         {Value("UP"), Value("Failing"), Value("DOWN"), Value("Down-Time"), Value("Inactive"), Value("up"), Value()})
        database_.Add(at(word));
    const std::pair<const char*, RowIcon> expected[] = {{"UP", RowIcon::Good},           {"Failing 2 of 3", RowIcon::Warn},
                                                        {"DOWN 2 of 3", RowIcon::Bad},   {"Down-Time", RowIcon::DownTime},
                                                        {"Inactive", RowIcon::Inactive}, {"up", RowIcon::Inactive},
                                                        {"", RowIcon::Inactive}};
    const std::vector<ServerRow> rows = Load();
    ASSERT_EQ(rows.size(), std::size(expected));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].cells[column::Status], expected[i].first);
        EXPECT_EQ(rows[i].icon, expected[i].second) << expected[i].first;
    }
}

TEST_F(ServerList, TellsWhenTheNextTryIs) {
    for (const int seconds : {-7300, -30, 0, 45})
        database_.Add({.dtNextCheck = kNow + std::chrono::seconds(seconds)});
    database_.Change("Servers", database_.Add({}), {{"dtNextCheck", Value()}});
    const auto column = [&](bool requesting) {
        std::vector<std::string> texts;
        for (const ServerRow& row : Load(requesting))
            texts.push_back(row.cells[column::Status] + "/" + row.cells[column::NextTry]);
        return texts;
    };
    // A blank time comes first in the order of the store.
    EXPECT_EQ(column(false),
              (std::vector<std::string>{"UP/", "UP/2.03 hrs. overdue", "UP/30 secs. overdue", "UP/0 ms.", "UP/45 secs."}));
    database_.Remove("Servers", 5);
    EXPECT_EQ(column(true), (std::vector<std::string>{"Requesting.../Now...", "UP/30 secs. overdue", "UP/0 ms.", "UP/45 secs."}));
    EXPECT_EQ(Load(true).front().icon, RowIcon::Cur);
}

TEST_F(ServerList, FillsTheOtherColumns) {
    database_.Add({.id = 61123150405,
                   .strGroup = "Web",
                   .strDesc = "",
                   .strAddress_IP = "www.example.com/a,b",
                   .strType = "HTTP",
                   .strPort = "8080",
                   .nIntervalSeconds = 90,
                   .strExpectedText = "Welcome",
                   .nAveResponse = 1234.567});
    const ServerRow row = Load().at(0);
    EXPECT_EQ(row.cells, (decltype(row.cells){"01 ", "61123150405", "Web", "UP", row.cells[column::NextTry], "1.50 min.",
                                              "1,234.57 sec.", "HTTP", "8080", "Welcome", "", "www.example.com/a,b", ""}));
    EXPECT_EQ(row.Name(), "www.example.com/a,b");
}

}  // namespace
}  // namespace korvane
